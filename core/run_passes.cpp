#include "core/run_passes.h"

#include "actors/triggers.h"
#include "core/actor_passes.h"
#include "core/brush_passes.h"
#include "core/motion_passes.h"
#include "core/surroundings_passes.h"
#include "scene/brush_geometry.h"
#include "scene/mesh_light.h"
#include "t3d/brush_record.h"
#include "t3d/level_check.h"

#include <algorithm>
#include <array>
#include <string>

namespace quarvel {

namespace {

/// One class of movers, and the item texts that its sub-pass shows.
struct MoverPass {
  std::string_view ClassName;
  const char* Getting; ///< before the first
  const char* On;
  const char* Then;           ///< behind each, before the next
  bool NeedsPolygons = false; ///< nothing is known of such a class, but that one with polygons is a brush that moves
};

void ProcessMoverClass(RunState& run, const MoverPass& pass) {
  run.Context.User.ShowItem(pass.Getting);
  for (const ActorBlock* actor : run.Level.ActorsOf(pass.ClassName)) {
    const auto shown = ShownBrush(run, *actor);
    if (!shown) continue;
    const BrushRecord& mover = *shown;
    WaitWhilePaused(run);
    run.Context.User.ShowItem(pass.On, run.GeometryCount);
    if (mover.TooManyKeys)
      run.Result.Findings.Add(FindingCode::TooManyKeys, mover.Header.Name, mover.NumKeysText, MaxKeys);
    else if (pass.NeedsPolygons && mover.Polygons.empty() && !HasMeshForPolygons(mover, run.Context.Settings))
      run.Result.Findings.Count(FindingCode::MoversWithoutPolygons, mover.Header.Class);
    else
      ConvertBrush(run, mover);
    StepOn(run);
    run.Context.User.ShowItem(pass.Then);
  }
}

void ProcessMovers(RunState& run) {
  const std::array<MoverPass, 4> passes{{
      {"Mover", "getting mover", "on mover ", "getting mover"},
      {"LoopMover", "getting mover", "on loopingmover ", "getting looper"},
      {"RotatingMover", "getting looper", "on rotatingmover ", "getting rotator"},
      {"AttachMover", "getting rotator", "on attachmover ", "getting attacher"},
  }};
  for (const MoverPass& pass : passes)
    ProcessMoverClass(run, pass);
  const auto isOwn = [&](std::string_view name) {
    return std::none_of(passes.begin(), passes.end(), [&](const MoverPass& pass) { return pass.ClassName == name; });
  };
  for (const std::string_view className : run.Level.ClassesOf(ActorFamily::Mover))
    if (isOwn(className)) ProcessMoverClass(run, {className, "getting mover", "on mover ", "getting mover", true});
}

using Settings = ConversionSettings;

void ReportUnseen(RunState& run) { ReportUnseenActors(run.Level, run.Result.Findings); }
void CollectTriggers(RunState& run) { run.Triggers = ReadTriggers(run.Context, run.Part, run.Level); }
void WriteTriggers(RunState& run) { WriteTriggersAndLinks(run.Context, run.Triggers); }
void WriteMeshLights(RunState& run) { WriteSharedMeshLights(run.Context); }

/// Meshes take their light from the level around them, so with baked light they come behind it.
void MeshesFirst(RunState& run) {
  if (!run.Context.Settings.CheckBakeLight) ProcessMeshes(run);
}
void MeshesInBakedLight(RunState& run) {
  if (run.Context.Settings.CheckBakeLight) ProcessMeshes(run);
}

/// One pass over the level.
struct Pass {
  const char* Text;        ///< what the user is shown; empty while the text before it stays
  bool Settings::*Option;  ///< nullptr: always made
  void (*Make)(RunState&); ///< throws RunStopped
  bool InSky = true;       ///< made for the sky's own scene, too
};

constexpr Pass allPasses[] = {
    {"Pre-scan", nullptr, ReportUnseen, false},
    {"Scanning ambience", nullptr, ScanAmbience},
    {"getting triggers", nullptr, CollectTriggers},
    {"Processing meshes", &Settings::CheckDoMeshes, MeshesFirst},
    {"Processing Brushes", &Settings::CheckDoGeometry, ProcessBrushes},
    {"", &Settings::CheckDoMeshes, MeshesInBakedLight},
    {"Processing Movers", &Settings::CheckMovers, ProcessMovers},
    {"Processing terrain", &Settings::CheckDoTerrain, ProcessTerrain},
    {"Processing non-geo", nullptr, WriteMeshLights},
    {"Writing Lights", &Settings::CheckDoLights, WriteLights},
    {"Getting Interpolation Points", &Settings::CheckOutputFlyThru, WriteFlights, false},
    {"Writing Starts", &Settings::CheckOutputPlayerStarts, WriteStarts},
    {"", &Settings::CheckMakeDefaultViewpoint, WriteFirstView, false},
    {"Writing Ambient Sounds", &Settings::CheckDoSounds, WriteAmbientSounds},
    {"Writing SkyZone", &Settings::CheckSkyZone, WriteSkyZone, false},
    {"", nullptr, AnimateTextures},
    {"", nullptr, WriteTeleports},
    {"", &Settings::CheckDoLights, WriteTriggerLights},
    {"", &Settings::CheckDoSounds, WriteTriggeredSounds},
    {"", nullptr, WriteTriggers}, // last, when everything that they start has its name
};

bool IsMade(const Pass& pass, const RunState& run) {
  if (!pass.InSky && run.Part.Kept == ScenePart::Kind::Sky) return false;
  return pass.Option == nullptr || run.Context.Settings.*pass.Option;
}

} // namespace

void MakePasses(RunState& run) {
  for (const Pass& pass : allPasses) {
    if (!IsMade(pass, run)) continue;
    if (*pass.Text != '\0') run.Context.User.ShowPass(pass.Text);
    pass.Make(run);
    FlushBlock(run);
  }
}

} // namespace quarvel
