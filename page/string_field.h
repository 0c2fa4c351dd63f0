#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// The strings of an X3D field of type MFString (ISO/IEC 19776-1, clause 5.15), or the one that stands without quotes.
std::vector<std::string> ReadStrings(std::string_view value);

/// An address without its percent-encoding (RFC 3986, clause 2.1).
std::string DecodeUrl(std::string_view url);

} // namespace quarvel
