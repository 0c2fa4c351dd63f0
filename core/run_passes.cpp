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
  if (!run.Context.Settings.CheckMovers) return;
  run.Context.User.ShowPass("Processing Movers");
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

} // namespace

void MakePasses(RunState& run) {
  run.Context.User.ShowPass("Pre-scan");
  const bool isSky = run.Part.Kept == ScenePart::Kind::Sky;
  if (!isSky) ReportUnseenActors(run.Level, run.Result.Findings);
  ScanAmbience(run);
  run.Context.User.ShowPass("getting triggers");
  run.Triggers = ReadTriggers(run.Context, run.Part, run.Level);
  if (run.Context.Settings.CheckBakeLight) {
    ProcessBrushes(run); // whose light meshes take theirs from
    ProcessMeshes(run);
  } else {
    ProcessMeshes(run);
    ProcessBrushes(run);
  }
  ProcessMovers(run);
  ProcessTerrain(run);
  run.Context.User.ShowPass("Processing non-geo");
  WriteSharedMeshLights(run.Context);
  FlushBlock(run);
  WriteLights(run);
  WriteFlights(run);
  WriteStarts(run);
  WriteAmbientSounds(run);
  WriteSkyZone(run);
  AnimateTextures(run);
  WriteTeleports(run);
  WriteTriggeredEvents(run);
  WriteTriggersAndLinks(run.Context, run.Triggers);
  FlushBlock(run);
}

} // namespace quarvel
