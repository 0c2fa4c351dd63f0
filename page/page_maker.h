#pragma once

#include "base/report.h"
#include "page/page_scene.h"
#include "page/viewer_files.h"

#include <filesystem>
#include <string>

namespace quarvel {

/// What a page is made of.
struct PageInput {
  std::filesystem::path Scene; ///< conforming X3D in XML
  std::filesystem::path Sky;   ///< the same of the sky, where that is a scene of its own
  std::string LevelName;       ///< the page's title when the level has none
  double UnitLength = 0;       ///< scene units per Unreal unit
  FindPageFile Find = FindBelow;
};

/// The page, or why there is none: one clause, lower case, without a full stop.
struct MadePage {
  std::string Html;
  std::string Error;
};

/// Makes one HTML file that shows the scene without another file and without a network. `viewer` was read without an
/// error.
MadePage MakePage(const PageInput& input, const ViewerFiles& viewer, Report& report);

} // namespace quarvel
