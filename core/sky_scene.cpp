#include "core/sky_scene.h"

#include "actors/world.h"
#include "base/ascii_text.h"
#include "core/sky_brushes.h"

namespace quarvel {

namespace {

namespace fs = std::filesystem;

bool SameFileName(const fs::path& a, const fs::path& b) {
  return SameText(a.filename().string(), b.filename().string());
}

ConversionSettings SkySettings(const ConversionSettings& settings) {
  ConversionSettings sky = settings;
  sky.OptionVRML97 = true;
  sky.OptionFlux = sky.OptionContact = false;
  sky.CheckXMLtoo = false;
  return sky;
}

} // namespace

std::optional<SkyScene> PlanSkyScene(const T3DLevel& level, const SceneFileNames& files,
                                     const ConversionSettings& settings, Report& findings) {
  const auto& zones = level.ActorsOf(ActorFamily::SkyZone);
  if (!settings.CheckSkyZone || zones.empty()) return std::nullopt;
  SkyScene sky;
  sky.Zone = ReadSkyZone(level, *zones.front());
  const fs::path folder = files.Text.parent_path();
  const std::string name = SkySceneName(sky.Zone);
  sky.Files = {folder / (name + ".wrl"), folder / (name + ".x3d"), {}};
  if (SameFileName(sky.Files.Text, files.Text) || SameFileName(sky.Files.Document, files.Document)) {
    findings.Add(FindingCode::SkyStaysInScene, sky.Zone.Header.Name);
    return std::nullopt;
  }
  sky.Settings = SkySettings(settings);
  if (settings.CheckCarve) sky.Brushes = FindSkyBrushes(level, sky.Zone.Location);
  return sky;
}

} // namespace quarvel
