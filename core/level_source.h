#pragma once

#include "base/report.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace quarvel {

/// What a level is read from: the text of a file, or what a package's level comes to as text.
struct LevelSource {
  std::string Text;
  std::map<std::string, std::string> TextureNames; ///< full names of textures by folded name; of a package only
  std::vector<Finding> Faults;                     ///< what of a package could not be read
};

/// True for a game's own level file, by its content or its extension.
bool IsLevelPackage(const std::filesystem::path& file);

/// Reads the level of a package. Returns what is wrong, the end of a sentence that begins with the file's name; empty
/// when nothing is.
std::string ReadLevelPackage(const std::filesystem::path& file, LevelSource& source);

} // namespace quarvel
