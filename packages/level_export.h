#pragma once

#include "base/report.h"
#include "packages/package.h"

#include <map>
#include <string>
#include <vector>

namespace quarvel {

/// A level as the editor would export it.
struct ExportedLevel {
  std::string Text; ///< T3D; lines end as the editor's do
  /// Faces name their textures without the package, as the editor writes it; here are the full names, by the folded
  /// name. One of two textures of one name has its full name in the text.
  std::map<std::string, std::string> TextureNames;
  std::vector<Finding> Faults; ///< objects that could not be read, by their names
  std::string Error;           ///< why there is no text: a clause without a full stop; else empty
};

/// Writes the actors of a package's level as T3D text. What is damaged is left out and told.
ExportedLevel ExportLevel(const Package& package);

} // namespace quarvel
