#pragma once

#include <filesystem>
#include <span>

namespace quarvel::bench {

/// A kind of level in which many things refer to one another, so that work could grow with their square.
struct CrowdKind {
  const char* What;
  int Count; ///< the time of this many is compared with that of four times as many
  /// Writes level.t3d, and the files that it refers to, into the folder.
  void (*Make)(const std::filesystem::path& folder, int count);
};

std::span<const CrowdKind> CrowdKinds();

} // namespace quarvel::bench
