#pragma once

#include "base/output_file.h"
#include "base/report.h"
#include "page/viewer_files.h"
#include "settings/conversion_settings.h"

#include <filesystem>
#include <string>

namespace quarvel {

/// The page of a run: OUTPUT's stem and ".html".
std::filesystem::path PageFileName(const std::filesystem::path& outFile);

/// The options of the run that writes the scene inside a page: as the user's, but conforming, and with all resources
/// copied beside it whatever the user's options say about copies.
ConversionSettings PageSettings(const ConversionSettings& settings);

/// The making of one page: a folder for its scene, which goes with this object, and the viewer.
class PageRun {
 public:
  /// Throws RunFailed when there is no viewer or the page cannot be written.
  /// A link that stands at `typed`, the output that the user named, is followed.
  PageRun(const std::filesystem::path& outFile, const ConversionSettings& settings, const std::filesystem::path& typed);
  ~PageRun();
  PageRun(const PageRun&) = delete;
  PageRun& operator=(const PageRun&) = delete;

  /// The output of the run that writes the scene.
  std::filesystem::path SceneFile() const { return folder_ / "level.wrl"; }

  /// Writes the page of the scene that is now in the folder, and of its sky's when that is a file of its own, and
  /// returns the page's file. Throws RunFailed.
  std::filesystem::path Write(const ConversionSettings& settings, const std::filesystem::path& sky,
                              const std::string& levelName, Report& findings);

 private:
  std::filesystem::path page_;
  AtLink atLink_;
  std::filesystem::path folder_;
  ViewerFiles viewer_;
};

} // namespace quarvel
