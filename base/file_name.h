#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// A name as it is compared: UTF-8 without regard to letter case. Bytes that are not UTF-8 are taken as Windows-1252,
/// as levels hold them.
std::string FoldName(std::string_view name);

/// The same text as UTF-8 without a change of case.
std::string ToUtf8(std::string_view text);

/// What a level refers to: "Name", "Package.Name", "Package.Group.Name", with or without a class and apostrophes around
/// it ("Texture'Package.Group.Name'").
struct ResourceReference {
  std::string Text;                 ///< the reference without class, apostrophes and double quotes
  std::string Name;                 ///< its last part
  std::vector<std::string> Folders; ///< the parts before it, the package first

  std::string Package() const { return Folders.empty() ? std::string() : Folders.front(); }
};

ResourceReference ParseReference(std::string_view reference);

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
