#pragma once

#include "resources/resource_files.h"
#include "tests/temporary_folder.h"

#include <algorithm>

namespace quarvel::test {

using Names = std::vector<std::string>;

/// A level in "in", its scene in "out", and "lib" to look in for all that it refers to.
class ResourceTest : public TempFolder {
 protected:
  ResourceTest() {
    for (const char* name : {"lib", "out", "in"})
      std::filesystem::create_directories(folder_ / name);
    settings_.TextSearchPathTxt = (folder_ / "lib").string();
    settings_.TextSearchPathSnd = settings_.TextSearchPathMesh = settings_.TextSearchPathTxt;
  }
  ResourceFiles Run() { return RunWith(report_); }
  ResourceFiles RunWith(Report& report, OutputFolders* batch = nullptr, const std::filesystem::path& own = {}) const {
    return {settings_, folder_ / "in/level.t3d", folder_ / "out/level.wrl", report, own, nullptr, batch};
  }
  /// Every file below the output folder but the list of copies, sorted.
  Names Output() const {
    Names names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_ / "out"))
      if (entry.is_regular_file() && entry.path().filename() != CopyList::FileName)
        names.push_back(entry.path().lexically_relative(folder_ / "out").generic_string());
    std::sort(names.begin(), names.end());
    return names;
  }

  ConversionSettings settings_;
  Report report_;
};

} // namespace quarvel::test
