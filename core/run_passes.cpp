#include "core/run_passes.h"

#include "actors/movers.h"
#include "actors/triggers.h"
#include "core/actor_passes.h"
#include "core/motion_passes.h"
#include "core/surroundings_passes.h"
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

/// The children of the enclosing node are separated by commas.
void SeparateChildren(RunState& run) {
  if (!run.FirstChild) run.Scene.Line(",");
  run.FirstChild = false;
}

void ConvertBrush(RunState& run, const BrushRecord& brush) {
  SeparateChildren(run);
  const WrittenBrush written = WriteBrush(run.Geometry, brush, MoverChildren(run, brush));
  if (brush.IsMover) WriteMover(run.Actors, brush, written);
  FlushBlock(run);
  ++run.Result.Brushes;
}

bool IsChosen(const RunState& run, const BrushRecord& brush) {
  return run.Settings.CheckBuildBrush ? brush.CsgOper.empty() : IsAdditive(brush);
}

void SkipBrush(RunState& run, const BrushRecord& brush) {
  run.User.ShowItem("skipping brush");
  if (brush.CsgOper == "CSG_Subtract")
    run.Result.Findings.Count("brushes left out as subtractive");
  else if (!brush.CsgOper.empty() && !IsAdditive(brush))
    run.Result.Findings.Count("brushes left out as " + brush.CsgOper);
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
  return ReadShown(run.Actors.Part, run.Level, actor, read);
}

void ProcessBrushes(RunState& run) {
  if (!run.Settings.CheckDoGeometry) return;
  run.User.ShowPass("Processing Brushes");
  if (run.Level.Actors.empty()) return ConvertPolyLists(run);
  run.User.ShowItem("getting brush");
  for (const ActorBlock* actor : run.Level.ActorsOf(ActorFamily::Brush)) {
    const auto brush = ShownBrush(run, *actor);
    if (!brush) continue;
    WaitWhilePaused(run);
    run.User.ShowItem("on brush ", run.Geometry.GeometryCount);
    const bool chosen = IsChosen(run, *brush);
    if (chosen)
      ConvertBrush(run, *brush);
    else
      SkipBrush(run, *brush);
    StepOn(run);
    if (chosen && run.Settings.CheckBuildBrush) return;
    run.User.ShowItem("getting brush");
  }
}

void ProcessMoverClass(RunState& run, const MoverPass& pass) {
  run.User.ShowItem(pass.Getting);
  for (const ActorBlock* actor : run.Level.ActorsOf(pass.ClassName)) {
    const auto shown = ShownBrush(run, *actor);
    if (!shown) continue;
    const BrushRecord& mover = *shown;
    WaitWhilePaused(run);
    run.User.ShowItem(pass.On, run.Geometry.GeometryCount);
    if (mover.TooManyKeys)
      run.Result.Findings.Add(mover.Header.Name, "NumKeys is " + std::to_string(mover.NumKeys) +
                                                     ", but a mover can have " + std::to_string(MaxKeys) +
                                                     " keys at most; it was left out");
    else if (pass.NeedsPolygons && mover.Polygons.empty() && !MoverChildren(run, mover))
      run.Result.Findings.Count("actors of class " + mover.Header.Class + " left out for want of polygons");
    else
      ConvertBrush(run, mover);
    StepOn(run);
  }
  run.User.ShowItem(pass.Then);
}

void ProcessMovers(RunState& run) {
  if (!run.Settings.CheckMovers) return;
  run.User.ShowPass("Processing Movers");
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
  run.User.ShowPass("Pre-scan");
  const bool isSky = run.Actors.Part.Kept == ScenePart::Kind::Sky;
  if (!isSky) ReportUnseenActors(run.Level, run.Result.Findings);
  ScanAmbience(run);
  run.User.ShowPass("getting triggers");
  ReadTriggers(run.Actors, run.Level);
  ProcessMeshes(run);
  ProcessBrushes(run);
  ProcessMovers(run);
  ProcessTerrain(run);
  run.User.ShowPass("Processing non-geo");
  WriteLights(run);
  WriteFlights(run);
  WriteStarts(run);
  WriteAmbientSounds(run);
  WriteSkyZone(run);
  AnimateTextures(run);
  WriteTeleports(run);
  WriteTriggeredEvents(run);
  WriteTriggersAndLinks(run.Actors);
  FlushBlock(run);
}

} // namespace quarvel
