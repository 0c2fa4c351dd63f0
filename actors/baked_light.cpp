#include "actors/baked_light.h"

#include "actors/lights.h"
#include "base/output_file.h"
#include "math/number_text.h"
#include "resources/url.h"
#include "scene/lit_level.h"
#include "t3d/light_records.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <set>
#include <stdexcept>

namespace quarvel {

namespace {

namespace fs = std::filesystem;

// Mean light of the maps below which nothing can be made out in most places, and what makes it out.
constexpr double nearlyBlack = 0.08, evenLight = 0.1;

LevelRecord LevelInfoOf(const T3DLevel& level) {
  const auto& infos = level.ActorsOf(ActorFamily::Level);
  return infos.empty() ? LevelRecord() : ReadLevel(level, *infos.front());
}

/// The lamps that the scene does not write as lights of its own, because they never change.
std::vector<Lamp> LampsOf(const ScenePart& part, const T3DLevel& level) {
  const double brightness = LevelInfoOf(level).Brightness;
  std::vector<Lamp> lamps;
  for (const LightRecord& light : ReadAllShown(part, level, ActorFamily::Light, ReadLight)) {
    if (IsDynamicLight(light)) continue;
    const Lamp lamp = MakeLamp(light, brightness);
    if (lamp.Strength > 0) lamps.push_back(lamp);
  }
  return lamps;
}

Vector3 AmbienceOf(const ZoneBlock& zone) {
  return ScaleVector(LampColor(zone.AmbientHue, zone.AmbientSaturation),
                     std::clamp(zone.AmbientBrightness, 0.0, 255.0) / 255);
}

/// The light that is everywhere in the scene: the level's, or that of the sky zone.
Vector3 AmbienceOf(const SceneRun& run) {
  if (run.Part.Kept != ScenePart::Kind::Sky) return AmbienceOf(LevelInfoOf(run.Level).Zone);
  return AmbienceOf(ReadSkyZone(run.Level, *run.Level.ActorsOf(ActorFamily::SkyZone).front()).Zone);
}

/// What a level tells of its zones.
struct KnownZones {
  std::vector<ZoneSeed> Seeds; ///< the places of actors; none when all zones have the same light
  std::size_t Count = 0;       ///< of the zones that have a light of their own
};

/// The ambient light of each zone that is an actor, by its name; the level's own is everywhere else.
std::map<std::string, Vector3> AmbienceOfZones(const T3DLevel& level) {
  std::map<std::string, Vector3> ambience;
  for (const ActorBlock& actor : level.Actors) {
    if (!actor.IsComplete() || IsOfFamily(actor.Class, ActorFamily::Level)) continue;
    const ZoneRecord zone = ReadZone(level, actor);
    ambience.emplace(zone.Header.Name, AmbienceOf(zone.Zone));
  }
  return ambience;
}

/// A brush has its pivot anywhere, and says nothing.
KnownZones ZonesOf(const SceneRun& run, const Vector3& everywhere) {
  KnownZones zones;
  if (run.Part.Kept == ScenePart::Kind::Sky) return zones;
  const std::map<std::string, Vector3> ambience = AmbienceOfZones(run.Level);
  std::set<std::string> own;
  for (const ActorBlock& actor : run.Level.Actors) {
    if (!actor.IsComplete() || IsOfFamily(actor.Class, ActorFamily::Brush) ||
        IsOfFamily(actor.Class, ActorFamily::Mover))
      continue;
    const RegionRecord region = ReadRegion(run.Level, actor);
    const std::string& zone = actor.Class.ends_with("ZoneInfo") ? region.Header.Name : region.Zone;
    if (zone.empty()) continue;
    const auto known = ambience.find(zone);
    zones.Seeds.push_back({region.Location.value_or(Vector3()), known == ambience.end() ? everywhere : known->second});
    if (zones.Seeds.back().Ambient != everywhere) own.insert(zone);
  }
  zones.Count = own.size();
  if (own.empty()) zones.Seeds.clear();
  return zones;
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

/// Bakes once more, with even light, what comes out nearly black.
BakedLight BakeToBeSeen(SceneRun& run, LevelLight& light) {
  BakedLight baked = BakeWithProgress(run, light);
  if (baked.Texels == 0 || baked.Mean >= nearlyBlack) return baked;
  const bool isSky = run.Part.Kept == ScenePart::Kind::Sky;
  run.Context.Findings.Add(FindingCode::LightRaised, isSky ? run.SceneName : "",
                           RoundToInteger(100 * baked.Mean, 0, 100), RoundToInteger(100 * evenLight, 0, 100));
  light.AddAmbient({evenLight, evenLight, evenLight});
  return BakeWithProgress(run, light);
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
  const bool hasLevel = settings.CheckDoGeometry && !settings.CheckBuildBrush && !level.Actors.empty();
  const bool hasLamps = !LampsOf({ScenePart::Kind::World, {}}, level).empty();
  used.CheckBakeLight = hasLevel && hasLamps;
  used.CheckHeadlight = !used.CheckBakeLight && (settings.CheckHeadlight || hasLevel);
  used.CheckMergeLevel = settings.CheckMergeLevel || used.CheckBakeLight; // where nothing is carved
  if (!used.CheckBakeLight) findings.Add(hasLevel ? FindingCode::NoLampsToBake : FindingCode::LightNotBaked, "");
  return used;
}

void BakeLight(SceneRun& run, std::vector<LevelSurface>& surfaces, std::vector<LitSurface> lit, SolidMatter matter) {
  run.Context.User.ShowPass("Baking light");
  const auto start = std::chrono::steady_clock::now();
  const Vector3 ambience = AmbienceOf(run);
  KnownZones zones = ZonesOf(run, ambience);
  run.Totals.Light.Zones = zones.Count;
  run.Light = std::make_unique<LevelLight>(std::move(lit), LampsOf(run.Part, run.Level), ambience, std::move(matter),
                                           std::move(zones.Seeds));
  const BakedLight baked = BakeToBeSeen(run, *run.Light);
  run.Context.Materials.SetLightPages(WritePages(run, baked.Pages));
  run.Context.Light = run.Light.get();
  surfaces = WithLightMaps(surfaces, baked, *run.Light, !run.Context.Scene.IsX3DClassic());
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  NoteLight(run, baked, run.Light->Lamps(), seconds.count());
}

} // namespace quarvel
