#pragma once

#include <filesystem>
#include <string>

namespace quarvel {

/// Tells one file from another, however each is named: all names of one file (through links, hard links too, or another
/// spelling of the path) give the same text. A file that is not there is told by its path.
std::string FileIdentity(const std::filesystem::path& path);

/// The path of a file without links, "." and "..", whether it is there or not.
std::filesystem::path ResolvedPath(const std::filesystem::path& path);

/// Why the call that has just failed did so (`errno`), as the system words it: "Permission denied".
std::string SystemReason();

} // namespace quarvel
