#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quarvel {

/// What came out of a package.
struct ExtractionResult {
  std::vector<std::filesystem::path> FilesWritten;
  std::vector<std::string> Notes;  ///< what is not as in the engine, one sentence each without a full stop
  std::vector<std::string> Errors; ///< what could not be read or written; as the notes
};

/// Writes textures of a package as .png and its sounds as .wav into a folder: all of them, or those with one of the
/// names (alone, or with groups and package before it; in any case). Files that are there are replaced. Palettes and
/// pictures in other packages are looked for in the folder of `package`.
ExtractionResult ExtractPackage(const std::filesystem::path& package, const std::filesystem::path& folder,
                                const std::vector<std::string>& names);

} // namespace quarvel
