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
  for (const LevelRecord& info : ReadAllShown(run.Part, run.Level, ActorFamily::Level, ReadLevel))
    keep(info.Zone);
  for (const ZoneRecord& zone : ReadAllShown(run.Part, run.Level, ActorFamily::Zone, ReadZone))
    keep(zone.Zone);
  return brightest;
}

} // namespace

void ScanAmbience(RunState& run) {
  const auto infos = ReadAllShown(run.Part, run.Level, ActorFamily::Level, ReadLevel);
  if (!infos.empty()) WriteWorldInfo(run.Context.Scene, infos.front());
  FlushBlock(run);
  if (!run.Context.Settings.CheckFog) return;
  const auto writeFog = [&](const auto& record) {
    if (record.Zone.bDistanceFog) WriteFog(run.Context, record.Zone, record.Header.Name);
  };
  ForEachActor(run, ActorFamily::Level, ReadLevel, writeFog);
  ForEachActor(run, ActorFamily::Zone, ReadZone, writeFog);
}

void WriteLights(RunState& run) {
  const ZoneBlock ambience = run.Context.Light ? ZoneBlock() : BrightestAmbience(run); // else it is baked
  if (ambience.AmbientBrightness > 0) WriteGlobalAmbientLight(run.Context, ambience, run.Bounds);
  FlushBlock(run);
  ForEachActor(run, ActorFamily::Light, ReadLight, [&](const LightRecord& light) { WriteLight(run.Context, light); });
  ForEachActor(run, ActorFamily::Flare, ReadDisplay,
               [&](const DisplayRecord& flare) { WriteFlare(run.Context, flare); });
}

void WriteAmbientSounds(RunState& run) {
  ForEachActor(run, ActorFamily::AmbientSound, ReadAmbientSound,
               [&](const AmbientSoundRecord& sound) { WriteAmbientSound(run.Context, sound); });
  ForEachActor(run, ActorFamily::DynamicAmbientSound, ReadDynamicAmbientSound,
               [&](const DynamicAmbientSoundRecord& sound) { WriteRandomSounds(run.Context, sound); });
}

void WriteSkyZone(RunState& run) {
  if (run.Sky == nullptr) return;
  WriteSkyZoneWorld(run.Context, *run.Sky);
  FlushBlock(run);
}

void WriteTriggerLights(RunState& run) {
  ForEachActor(run, ActorFamily::TriggerLight, ReadTriggerLight,
               [&](const TriggerLightRecord& light) { WriteTriggerLight(run.Context, run.Triggers, light); });
}

void WriteTriggeredSounds(RunState& run) {
  ForEachActor(
      run, ActorFamily::TriggeredAmbientSound, ReadTriggeredAmbientSound,
      [&](const TriggeredAmbientSoundRecord& sound) { WriteTriggeredSound(run.Context, run.Triggers, sound); });
}

} // namespace quarvel
