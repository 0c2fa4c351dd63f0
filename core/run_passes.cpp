#include "core/run_passes.h"

#include "actors/fly_through.h"
#include "actors/level_geometry.h"
#include "actors/lights.h"
#include "actors/movers.h"
#include "actors/sounds.h"
#include "actors/static_meshes.h"
#include "actors/teleporters.h"
#include "actors/triggers.h"
#include "actors/viewpoints.h"
#include "actors/world.h"
#include "scene/mesh_light.h"
#include "scene/texture_animation.h"
#include "t3d/level_check.h"
#include "t3d/terrain_record.h"
#include "terrain/terrain.h"

namespace quarvel {

namespace {

using Settings = ConversionSettings;

void ReportUnseen(SceneRun& run) { ReportUnseenActors(run.Level, run.Context.Findings); }

/// Meshes take their light from the level around them, so with baked light they come behind it.
void MeshesFirst(SceneRun& run) {
  if (!run.Context.Settings.CheckBakeLight) PlaceMeshes(run);
}
void MeshesInBakedLight(SceneRun& run) {
  if (run.Context.Settings.CheckBakeLight) PlaceMeshes(run);
}

void WriteTerrains(SceneRun& run) {
  TerrainWriter writer(run.Context);
  ForEachActor(run, ActorFamily::Terrain, ReadTerrain, [&](const TerrainRecord& terrain) { writer.Write(terrain); });
}

void WriteMeshLights(SceneRun& run) { WriteSharedMeshLights(run.Context); }

/// Sets the texture transforms in motion that the surfaces written so far asked for.
void AnimateTextures(SceneRun& run) {
  const double scale = run.Context.Settings.TextTexPanScale;
  const TexturePanSpeeds speeds{scale * run.Level.TexUPanSpeed, scale * run.Level.TexVPanSpeed};
  WriteTextureAnimations(run.Context.Scene, run.Context.Materials, speeds);
}

/// One pass over the level.
struct Pass {
  const char* Text;        ///< what the user is shown; empty while the text before it stays
  bool Settings::*Option;  ///< nullptr: always made
  void (*Make)(SceneRun&); ///< throws RunStopped
  bool InSky = true;       ///< made for the sky's own scene, too
};

constexpr Pass allPasses[] = {
    {"Pre-scan", nullptr, ReportUnseen, false},
    {"Scanning ambience", nullptr, WriteAmbience},
    {"getting triggers", nullptr, CollectTriggers},
    {"Processing meshes", &Settings::CheckDoMeshes, MeshesFirst},
    {"Processing Brushes", &Settings::CheckDoGeometry, WriteBrushes},
    {"", &Settings::CheckDoMeshes, MeshesInBakedLight},
    {"Processing Movers", &Settings::CheckMovers, WriteMovers},
    {"Processing terrain", &Settings::CheckDoTerrain, WriteTerrains},
    {"Processing non-geo", nullptr, WriteMeshLights},
    {"Writing Lights", &Settings::CheckDoLights, WriteLights},
    {"Getting Interpolation Points", &Settings::CheckOutputFlyThru, WriteFlights, false},
    {"Writing Starts", &Settings::CheckOutputPlayerStarts, WriteStarts},
    {"", &Settings::CheckMakeDefaultViewpoint, WriteFirstView, false},
    {"Writing Ambient Sounds", &Settings::CheckDoSounds, WriteAmbientSounds},
    {"Writing SkyZone", &Settings::CheckSkyZone, InlineSky, false},
    {"", nullptr, AnimateTextures},
    {"", nullptr, WriteTeleporters},
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
  for (const Pass& pass : allPasses) {
    if (!IsMade(pass, run)) continue;
    if (*pass.Text != '\0') run.Context.User.ShowPass(pass.Text);
    pass.Make(run);
    FlushBlock(run);
  }
}

} // namespace quarvel
