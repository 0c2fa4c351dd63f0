#include "core/run_passes.h"

#include "actors/brushes.h"
#include "actors/fly_through.h"
#include "actors/lights.h"
#include "actors/sounds.h"
#include "actors/static_meshes.h"
#include "actors/teleporters.h"
#include "actors/triggers.h"
#include "actors/viewpoints.h"
#include "actors/world.h"
#include "scene/texture_animation.h"
#include "t3d/level_check.h"
#include "t3d/terrain_record.h"
#include "terrain/terrain.h"

namespace quarvel {

namespace {

using Settings = ConversionSettings;

void ReportUnseen(SceneRun& run) { ReportUnseenActors(run.Level, run.Context.Findings); }

void CollectTriggers(SceneRun& run) { run.Triggers = ReadTriggers(run.Context, run.Part, run.Level); }

void ConvertTerrains(SceneRun& run) {
  ForEachActor(run, ActorFamily::Terrain, ReadTerrain,
               [&](const TerrainRecord& terrain) { WriteTerrain(run.Context, terrain); });
}

/// Sets the texture transforms in motion that the surfaces written so far asked for.
void AnimateTextures(SceneRun& run) {
  const double scale = run.Context.Settings.TextTexPanScale;
  const TexturePanSpeeds speeds{scale * run.Level.TexUPanSpeed, scale * run.Level.TexVPanSpeed};
  WriteTextureAnimations(run.Context.Scene, run.Context.Materials, speeds);
}

void WriteTriggers(SceneRun& run) { WriteTriggersAndLinks(run.Context, run.Triggers); }

void ShowOnly(SceneRun& /*run*/) {}

/// One pass over the level.
struct Pass {
  const char* Text;        ///< what the user is shown; empty while the text before it stays
  bool Settings::*Option;  ///< nullptr: always made
  void (*Make)(SceneRun&); ///< throws RunStopped
  bool InSky = true;       ///< made for the sky's own scene, too
};

constexpr Pass passes[] = {
    {"Pre-scan", nullptr, ReportUnseen, false},
    {"Scanning ambience", nullptr, WriteAmbience},
    {"getting triggers", nullptr, CollectTriggers},
    {"Processing meshes", &Settings::CheckDoMeshes, PlaceMeshes},
    {"Processing Brushes", &Settings::CheckDoGeometry, ConvertBrushes},
    {"Processing Movers", &Settings::CheckMovers, ConvertMovers},
    {"Processing terrain", &Settings::CheckDoTerrain, ConvertTerrains},
    {"Processing non-geo", nullptr, ShowOnly},
    {"Writing Lights", &Settings::CheckDoLights, WriteLights},
    {"Getting Interpolation Points", &Settings::CheckOutputFlyThru, WriteFlights, false},
    {"Writing Starts", &Settings::CheckOutputPlayerStarts, WriteStarts},
    {"", &Settings::CheckMakeDefaultViewpoint, WriteFirstView, false},
    {"Writing Ambient Sounds", &Settings::CheckDoSounds, WriteAmbientSounds},
    {"Writing SkyZone", &Settings::CheckSkyZone, InlineSky, false},
    {"", nullptr, AnimateTextures},
    {"", nullptr, ConvertTeleporters},
    {"", &Settings::CheckDoLights, WriteTriggerLights},
    {"", &Settings::CheckDoSounds, WriteTriggeredSounds},
    {"", nullptr, WriteTriggers}, // last, when everything that they start has its name
};

bool IsMade(const Pass& pass, const SceneRun& run) {
  if (!pass.InSky && run.Part.Kept == ScenePart::Kind::Sky) return false;
  return pass.Option == nullptr || run.Context.Settings.*pass.Option;
}

} // namespace

void DeclarePrototypes(SceneRun& run) { DeclareFlightPrototypes(run); }

void MakePasses(SceneRun& run) {
  for (const Pass& pass : passes) {
    if (!IsMade(pass, run)) continue;
    if (*pass.Text != '\0') run.Context.User.ShowPass(pass.Text);
    pass.Make(run);
    FlushBlock(run);
  }
}

} // namespace quarvel
