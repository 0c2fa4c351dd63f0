#include "core/run_passes.h"

#include "actors/movers.h"
#include "actors/triggers.h"
#include "core/actor_passes.h"
#include "core/motion_passes.h"
#include "core/surroundings_passes.h"
#include "scene/brush_geometry.h"
#include "t3d/brush_record.h"
#include "t3d/level_check.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>

namespace quarvel {

namespace {

/// One class of movers, and the item texts that its sub-pass shows.
struct MoverPass {
  std::string_view ClassName;
  const char* Getting;
  const char* On;
  const char* Then;
  bool NeedsPolygons = false; ///< nothing is known of such a class, but that one with polygons is a brush that moves
};

void ConvertBrush(RunState& run, const BrushRecord& brush) {
  if (run.GeometryCount > 1) run.Context.Scene.Line(","); // between the children of the enclosing node
  const WrittenBrush written = WriteBrush(run.Context, brush, run.GeometryCount++);
  if (brush.IsMover) WriteMover(run.Context, run.Triggers, brush, written);
  FlushBlock(run);
  ++run.Result.Brushes;
  run.Result.Faces += written.Faces;
  JoinBounds(run.Bounds, written.Bounds);
}

bool IsChosen(const RunState& run, const BrushRecord& brush) {
  return run.Context.Settings.CheckBuildBrush ? brush.CsgOper.empty() : IsAdditive(brush);
}

void SkipBrush(RunState& run, const BrushRecord& brush) {
  run.Context.User.ShowItem("skipping brush");
  if (brush.CsgOper == "CSG_Subtract")
    run.Result.Findings.Count(FindingCode::SubtractiveBrushes);
  else if (!brush.CsgOper.empty() && !IsAdditive(brush))
    run.Result.Findings.Count(FindingCode::OtherBrushes, brush.CsgOper);
}

/// A file without actors may be one builder brush, as the editor saves it alone.
void ConvertPolyLists(RunState& run) {
  TextCursor cursor = 1;
  BrushRecord brush;
  while (ReadPolyList(run.Level.Text, cursor, brush, run.Numbers)) {
    WaitWhilePaused(run);
    ConvertBrush(run, brush);
    StepOn(run);
  }
}

/// The brush of an actor, if this scene shows it.
std::optional<BrushRecord> ShownBrush(RunState& run, const ActorBlock& actor) {
  const auto read = [&](const T3DLevel& level, const ActorBlock& block) {
    return ReadBrush(level, block, run.Numbers);
  };
  return ReadShown(run.Part, run.Level, actor, read);
}

void ProcessBrushes(RunState& run) {
  if (!run.Context.Settings.CheckDoGeometry) return;
  run.Context.User.ShowPass("Processing Brushes");
  if (run.Level.Actors.empty()) return ConvertPolyLists(run);
  run.Context.User.ShowItem("getting brush");
  for (const ActorBlock* actor : run.Level.ActorsOf(ActorFamily::Brush)) {
    const auto brush = ShownBrush(run, *actor);
    if (!brush) continue;
    WaitWhilePaused(run);
    run.Context.User.ShowItem("on brush ", run.GeometryCount);
    const bool chosen = IsChosen(run, *brush);
    if (chosen)
      ConvertBrush(run, *brush);
    else
      SkipBrush(run, *brush);
    StepOn(run);
    if (chosen && run.Context.Settings.CheckBuildBrush) return;
    run.Context.User.ShowItem("getting brush");
  }
}

void ProcessMoverClass(RunState& run, const MoverPass& pass) {
  run.Context.User.ShowItem(pass.Getting);
  for (const ActorBlock* actor : run.Level.ActorsOf(pass.ClassName)) {
    const auto shown = ShownBrush(run, *actor);
    if (!shown) continue;
    const BrushRecord& mover = *shown;
    WaitWhilePaused(run);
    run.Context.User.ShowItem(pass.On, run.GeometryCount);
    if (mover.TooManyKeys)
      run.Result.Findings.Add(FindingCode::TooManyKeys, mover.Header.Name, mover.NumKeys, MaxKeys);
    else if (pass.NeedsPolygons && mover.Polygons.empty() && !HasMeshForPolygons(mover, run.Context.Settings))
      run.Result.Findings.Count(FindingCode::MoversWithoutPolygons, mover.Header.Class);
    else
      ConvertBrush(run, mover);
    StepOn(run);
  }
  run.Context.User.ShowItem(pass.Then);
}

void ProcessMovers(RunState& run) {
  if (!run.Context.Settings.CheckMovers) return;
  run.Context.User.ShowPass("Processing Movers");
  const std::array<MoverPass, 4> passes{{
      {"Mover", "getting mover", "on mover ", ""},
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
    if (isOwn(className)) ProcessMoverClass(run, {className, "getting mover", "on mover ", "", true});
}

} // namespace

void MakePasses(RunState& run) {
  run.Context.User.ShowPass("Pre-scan");
  const bool isSky = run.Part.Kept == ScenePart::Kind::Sky;
  if (!isSky) ReportUnseenActors(run.Level, run.Result.Findings);
  ScanAmbience(run);
  run.Context.User.ShowPass("getting triggers");
  run.Triggers = ReadTriggers(run.Context, run.Part, run.Level);
  ProcessMeshes(run);
  ProcessBrushes(run);
  ProcessMovers(run);
  ProcessTerrain(run);
  run.Context.User.ShowPass("Processing non-geo");
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
