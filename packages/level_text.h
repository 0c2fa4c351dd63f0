#pragma once

#include "base/report.h"
#include "packages/package.h"

#include <string>
#include <vector>

namespace quarvel {

/// A level as the editor would export it.
struct ExportedLevel {
  std::string Text;            ///< T3D; lines end as the editor's do
  std::vector<Finding> Faults; ///< objects that could not be read, by their names
  std::string Error;           ///< why there is no text: a clause without a full stop; else empty
};

/// Writes the actors of a package's level as T3D text. Textures of faces have their full names, so that they are found
/// in their packages. What is damaged is left out and told.
ExportedLevel ExportLevel(const Package& package);

} // namespace quarvel
