#include "actors/baked_light.h"

#include "actors/lights.h"
#include "base/output_file.h"
#include "math/number_text.h"
#include "resources/url.h"
#include "scene/lit_level.h"
#include "t3d/light_records.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>

namespace quarvel {

namespace {

namespace fs = std::filesystem;

LevelRecord LevelInfoOf(const SceneRun& run) {
  const auto infos = ReadAllShown(run, ActorFamily::Level, ReadLevel);
  return infos.empty() ? LevelRecord() : infos.front();
}

/// The lamps that the scene does not write as lights of its own, because they never change.
std::vector<Lamp> LampsOf(const SceneRun& run, double levelBrightness) {
  std::vector<Lamp> lamps;
  for (const LightRecord& light : ReadAllShown(run, ActorFamily::Light, ReadLight)) {
    if (IsDynamicLight(light)) continue;
    const Lamp lamp = MakeLamp(light, levelBrightness);
    if (lamp.Strength > 0) lamps.push_back(lamp);
  }
  return lamps;
}

Vector3 AmbienceOf(const ZoneBlock& zone) {
  return ScaleVector(LampColor(zone.AmbientHue, zone.AmbientSaturation),
                     std::clamp(zone.AmbientBrightness, 0.0, 255.0) / 255);
}

BakedLight BakeWithProgress(SceneRun& run, const LevelLight& light) {
  const ConversionSettings& settings = run.Context.Settings;
  BakeOptions options;
  options.Texel = settings.TextLightTexel;
  options.PageSide = static_cast<int>(RoundToInteger(settings.TextLightMapSize, 16, 4096));
  BakedLight baked = light.Bake(options, [&](double done) {
    run.Context.User.ShowItem("percent of the light maps: ", static_cast<long>(100 * done));
    run.Context.User.ProcessEvents();
    return !run.Context.User.StopRequested();
  });
  if (baked.Stopped) throw RunStopped();
  return baked;
}

/// Writes the pages beside the scene. Returns their URLs.
std::vector<std::string> WritePages(SceneRun& run, const std::vector<std::vector<std::uint8_t>>& pages) {
  std::vector<std::string> urls;
  for (std::size_t i = 0; i < pages.size(); ++i) {
    const std::string name = run.SceneName + "Light" + std::to_string(i) + ".png";
    const fs::path path = run.File.Path().parent_path() / name;
    if (const std::string error = WriteWholeFile(path, pages[i]); pages[i].empty() || !error.empty())
      throw std::runtime_error("the light map " + name + " cannot be written" + (error.empty() ? "" : ": " + error));
    run.Totals.FilesWritten.push_back(path);
    urls.push_back(EncodeWebAddress(name));
  }
  return urls;
}

void NoteLight(SceneRun& run, const BakedLight& baked, std::size_t lamps, double seconds) {
  BakedLightSummary& summary = run.Totals.Light;
  summary.Lamps += lamps;
  summary.Texels += baked.Texels;
  summary.Pages += baked.Pages.size();
  summary.Seconds += seconds;
  if (const double wanted = run.Context.Settings.TextLightTexel; baked.Texel > wanted)
    run.Context.Findings.Add(FindingCode::CoarseLight, "", FormatFlt(baked.Texel), FormatFlt(wanted));
}

} // namespace

ConversionSettings SettingsForLight(const ConversionSettings& settings, const T3DLevel& level, Report& findings) {
  ConversionSettings used = settings;
  if (!settings.CheckBakeLight) return used;
  used.CheckBakeLight = settings.CheckDoGeometry && !settings.CheckBuildBrush && !level.Actors.empty();
  if (used.CheckBakeLight) {
    used.CheckHeadlight = false;
    used.CheckMergeLevel = true; // where nothing is carved
  } else {
    findings.Add(FindingCode::LightNotBaked, "");
  }
  return used;
}

void BakeLight(SceneRun& run, std::vector<LevelSurface>& surfaces, std::vector<LitSurface> lit) {
  run.Context.User.ShowPass("Baking light");
  const auto start = std::chrono::steady_clock::now();
  const LevelRecord info = LevelInfoOf(run);
  run.Light = std::make_unique<LevelLight>(std::move(lit), LampsOf(run, info.Brightness), AmbienceOf(info.Zone));
  const BakedLight baked = BakeWithProgress(run, *run.Light);
  run.Context.Materials.SetLightPages(WritePages(run, baked.Pages));
  run.Context.Light = run.Light.get();
  surfaces = WithLightMaps(surfaces, baked, *run.Light, !run.Context.Scene.IsX3DClassic());
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  NoteLight(run, baked, run.Light->Lamps(), seconds.count());
}

} // namespace quarvel
