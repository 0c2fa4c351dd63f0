#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace quarvel {

/// The viewer that a page carries: its script, its style sheet and the components that its scenes need.
struct ViewerFiles {
  std::string Name;                                       ///< with its version
  std::string Licence;                                    ///< the text of its licence
  std::vector<std::pair<std::string, std::string>> Parts; ///< name below the viewer's folder, and content
  std::string Error;                                      ///< why there is none: one sentence without a full stop
};

/// The viewer's script in the program's data; empty when it has not been fetched.
std::filesystem::path FindViewer(const std::filesystem::path& programData);

/// Reads the viewer whose script is `script`, with the files that stand beside it.
ViewerFiles ReadViewer(const std::filesystem::path& script);

} // namespace quarvel
