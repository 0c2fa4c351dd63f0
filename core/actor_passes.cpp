#include "core/actor_passes.h"

#include "actors/lights.h"
#include "actors/sounds.h"
#include "core/world_nodes.h"

namespace quarvel {

namespace {

/// The brightest ambient light of the level and its zones; a brightness of 0 when there is none.
ZoneBlock BrightestAmbience(const RunState& run) {
  ZoneBlock brightest;
  const auto keep = [&](const ZoneBlock& zone) {
    if (zone.AmbientBrightness > brightest.AmbientBrightness) brightest = zone;
  };
  TextCursor cursor = 1;
  LevelRecord info;
  while (ReadShown(run.Actors.Part, ReadLevel, run.Level, cursor, LevelSearchText, info))
    keep(info.Zone);
  cursor = 1;
  ZoneRecord zone;
  while (ReadShown(run.Actors.Part, ReadZone, run.Level, cursor, ZoneSearchText, zone))
    keep(zone.Zone);
  return brightest;
}

} // namespace

void ScanAmbience(RunState& run) {
  run.User.ShowPass("Scanning ambience");
  LevelRecord info;
  TextCursor cursor = 1;
  if (ReadShown(run.Actors.Part, ReadLevel, run.Level, cursor, LevelSearchText, info)) WriteWorldInfo(run.Scene, info);
  FlushBlock(run);
  if (!run.Settings.CheckFog) return;
  const auto writeFog = [&](const auto& record) {
    if (record.Zone.bDistanceFog)
      WriteFog(run.Scene, run.Settings, record.Zone, record.Header.Name, run.Result.Findings);
  };
  ForEachActor<LevelRecord>(run, LevelSearchText, ReadLevel, writeFog);
  ForEachActor<ZoneRecord>(run, ZoneSearchText, ReadZone, writeFog);
}

void WriteLights(RunState& run) {
  if (!run.Settings.CheckDoLights) return;
  run.User.ShowPass("Writing Lights");
  const ZoneBlock ambience = BrightestAmbience(run);
  if (ambience.AmbientBrightness > 0) WriteGlobalAmbientLight(run.Actors, ambience, run.Geometry.Bounds);
  FlushBlock(run);
  for (const char* searchText : LightSearchTexts)
    ForEachActor<LightRecord>(run, searchText, ReadLight,
                              [&](const LightRecord& light) { WriteLight(run.Actors, light); });
  ForEachActor<DisplayRecord>(run, FlareSearchText, ReadDisplay,
                              [&](const DisplayRecord& flare) { WriteFlare(run.Actors, flare); });
}

void WriteAmbientSounds(RunState& run) {
  if (!run.Settings.CheckDoSounds) return;
  run.User.ShowPass("Writing Ambient Sounds");
  ForEachActor<AmbientSoundRecord>(run, AmbientSoundSearchText, ReadAmbientSound,
                                   [&](const AmbientSoundRecord& sound) { WriteAmbientSound(run.Actors, sound); });
  ForEachActor<DynamicAmbientSoundRecord>(
      run, DynamicAmbientSoundSearchText, ReadDynamicAmbientSound,
      [&](const DynamicAmbientSoundRecord& sound) { WriteRandomSounds(run.Actors, sound); });
}

void WriteSkyZone(RunState& run) {
  if (run.Sky == nullptr) return;
  run.User.ShowPass("Writing SkyZone");
  WriteSkyZoneWorld(run.Scene, run.Settings, *run.Sky);
  FlushBlock(run);
}

void WriteTriggeredEvents(RunState& run) {
  if (run.Settings.CheckDoLights)
    ForEachActor<TriggerLightRecord>(run, TriggerLightSearchText, ReadTriggerLight,
                                     [&](const TriggerLightRecord& light) { WriteTriggerLight(run.Actors, light); });
  if (run.Settings.CheckDoSounds)
    ForEachActor<TriggeredAmbientSoundRecord>(
        run, TriggeredAmbientSoundSearchText, ReadTriggeredAmbientSound,
        [&](const TriggeredAmbientSoundRecord& sound) { WriteTriggeredSound(run.Actors, sound); });
}

} // namespace quarvel
