#pragma once

#include "settings/resource_kind.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quarvel {

/// What a run looked for and did not find; each list sorted, each entry once.
using MissingResources = PerKind<std::vector<std::string>>;

/// What became of the lists of missing resources.
struct MissingListsResult {
  std::vector<std::filesystem::path> FilesWritten;
  std::vector<std::string> Messages; ///< one for each file written: "There were missing textures. Please see ..."
  std::vector<std::string> Errors;   ///< lists that could not be written, one sentence each without a full stop
};

/// The names of the three lists: "levelMissingTextures.txt", ...
std::vector<std::filesystem::path> MissingListNames(const std::filesystem::path& outFile);

/// Writes "levelMissingTextures.txt", "levelMissingSounds.txt" and "levelMissingMeshes.txt" beside the output
/// "level.wrl", one entry a line. A list with nothing in it, or that the settings do not ask for, is not written, and
/// one of an earlier run is removed.
MissingListsResult WriteMissingLists(const std::filesystem::path& outFile, const MissingResources& missing,
                                     const ConversionSettings& settings);

} // namespace quarvel
