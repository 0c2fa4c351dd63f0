#include "resources/program_data.h"

namespace quarvel {

namespace fs = std::filesystem;

namespace {

bool HoldsData(const fs::path& folder) {
  std::error_code error;
  return fs::is_regular_file(folder / "TheVisTeleporter.wrl", error);
}

} // namespace

fs::path ProgramPath() {
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error);
}

fs::path FindProgramData(const fs::path& program) {
  if (program.empty()) return {};
  const fs::path folder = program.parent_path();
  for (const fs::path& installed : {folder / "data", folder.parent_path() / "share" / "quarvel"})
    if (HoldsData(installed)) return installed;
  for (fs::path above = folder; above.has_relative_path(); above = above.parent_path())
    if (HoldsData(above / "resources" / "data")) return above / "resources" / "data";
  return {};
}

} // namespace quarvel
