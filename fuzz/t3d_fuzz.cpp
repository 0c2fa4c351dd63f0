#include "core/conversion_run.h"
#include "settings/settings_store.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

/// The last byte of an input chooses options, so that a level can be fed as it is.
quarvel::ConversionSettings SettingsFrom(std::uint8_t bits, const std::string& folder) {
  quarvel::ConversionSettings settings;
  settings.TextSearchPathTxt = settings.TextSearchPathSnd = settings.TextSearchPathMesh = folder;
  settings.CheckRescanFile = false;
  settings.CheckOutputFlyThru = settings.CheckShowFlyThru = settings.CheckMakeDefaultViewpoint = true;
  settings.CheckOutputStaticLights = settings.CheckShowTriggers = true;
  settings.CheckConforming = bits & 1U;
  settings.OptionFlux = bits & 2U;
  settings.OptionVRML97 = !settings.OptionFlux;
  settings.OptionIFSs = bits & 4U;
  settings.OptionMeshes = !settings.OptionIFSs;
  settings.CheckBuildBrush = settings.CheckBreakUpBB = bits & 8U;
  settings.CheckSkyZone = settings.CheckEnclose = bits & 16U;
  return settings;
}

/// One folder for all conversions; each replaces the scenes of the last.
const std::string& Folder() {
  static const std::string folder = [] {
    const std::filesystem::path shared = "/dev/shm"; // a file system in memory, where there is one
    const auto parent = std::filesystem::exists(shared) ? shared : std::filesystem::temp_directory_path();
    std::string pattern = (parent / "quarvel_t3d_fuzzXXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    return pattern;
  }();
  return folder;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quarvel::RunInterface user;
  quarvel::MemoryStore store;
  quarvel::RunMemory memory;
  memory.T3DText.assign(reinterpret_cast<const char*>(data), size);
  const quarvel::ConversionSettings settings = SettingsFrom(size == 0 ? 0 : data[size - 1], Folder());
  const quarvel::RunResult result =
      quarvel::ConvertFile("level.t3d", Folder() + "/level.wrl", settings, store, memory, user);
  if (result.Outcome == quarvel::RunOutcome::Failed && result.Error.empty()) std::abort();
  return 0;
}
