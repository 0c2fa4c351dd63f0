#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quarvel {

/// Makes a path of what a user typed; on systems where "\" is no separator it is understood as one all the same.
std::filesystem::path PathOfUserText(std::string_view text);

/// A file name or path as UTF-8 with "/" between its parts.
std::string Utf8Path(const std::filesystem::path& path);

/// The path that UTF-8 text names.
std::filesystem::path PathOfUtf8(std::string_view text);

/// A file name up to its last point, and what follows that point; a name without a point has no extension.
std::string StemOf(const std::string& name);
std::string ExtensionOf(const std::string& name);

/// True when `inner` is `outer` or lies below it; both absolute and without "." and "..".
bool LiesWithin(const std::filesystem::path& inner, const std::filesystem::path& outer);

/// An absolute path without "." and "..", symbolic links left as they are.
std::filesystem::path AbsolutePath(const std::filesystem::path& path);

} // namespace quarvel
