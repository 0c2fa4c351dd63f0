#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// JavaScript that makes a browser load the images at once. It can stand in a file, or in a page between script tags.
/// Each URL gets `baseUrl` in front, unless it is an address by itself.
std::string MakePreloadScript(const std::vector<std::string>& urls, std::string_view baseUrl);

} // namespace quarvel
