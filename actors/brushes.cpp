#include "actors/brushes.h"

#include "actors/movers.h"
#include "scene/brush_geometry.h"
#include "t3d/brush_record.h"

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

/// The running number of the next brush or mover.
int NextNumber(const SceneRun& run) { return run.Totals.Brushes + 1; }

void ConvertBrush(SceneRun& run, const BrushRecord& brush) {
  if (run.Totals.Brushes > 0) run.Context.Scene.Line(","); // between the children of the enclosing node
  const WrittenBrush written = WriteBrush(run.Context, brush, NextNumber(run));
  if (brush.IsMover) WriteMover(run.Context, run.Triggers, brush, written);
  FlushBlock(run);
  ++run.Totals.Brushes;
  run.Totals.Faces += written.Faces;
  JoinBounds(run.Totals.Bounds, written.Bounds);
}

bool IsChosen(const SceneRun& run, const BrushRecord& brush) {
  return run.Context.Settings.CheckBuildBrush ? brush.CsgOper.empty() : IsAdditive(brush);
}

void SkipBrush(SceneRun& run, const BrushRecord& brush) {
  run.Context.User.ShowItem("skipping brush");
  if (brush.CsgOper == "CSG_Subtract")
    run.Context.Findings.Count(FindingCode::SubtractiveBrushes);
  else if (!brush.CsgOper.empty() && !IsAdditive(brush))
    run.Context.Findings.Count(FindingCode::OtherBrushes, brush.CsgOper);
}

/// A file without actors may be one builder brush, as the editor saves it alone.
void ConvertPolyLists(SceneRun& run) {
  TextCursor cursor = 1;
  BrushRecord brush;
  while (ReadPolyList(run.Level.Text, cursor, brush, run.Numbers)) {
    WaitWhilePaused(run);
    ConvertBrush(run, brush);
    StepOn(run);
  }
}

/// The brush of an actor, if this scene shows it.
std::optional<BrushRecord> ShownBrush(SceneRun& run, const ActorBlock& actor) {
  const auto read = [&](const T3DLevel& level, const ActorBlock& block) {
    return ReadBrush(level, block, run.Numbers);
  };
  return ReadShown(run.Part, run.Level, actor, read);
}

void ConvertMoverClass(SceneRun& run, const MoverPass& pass) {
  run.Context.User.ShowItem(pass.Getting);
  for (const ActorBlock* actor : run.Level.ActorsOf(pass.ClassName)) {
    const auto shown = ShownBrush(run, *actor);
    if (!shown) continue;
    const BrushRecord& mover = *shown;
    WaitWhilePaused(run);
    run.Context.User.ShowItem(pass.On, NextNumber(run));
    if (mover.TooManyKeys)
      run.Context.Findings.Add(FindingCode::TooManyKeys, mover.Header.Name, mover.NumKeys, MaxKeys);
    else if (pass.NeedsPolygons && mover.Polygons.empty() && !HasMeshForPolygons(mover, run.Context.Settings))
      run.Context.Findings.Count(FindingCode::MoversWithoutPolygons, mover.Header.Class);
    else
      ConvertBrush(run, mover);
    StepOn(run);
  }
  run.Context.User.ShowItem(pass.Then);
}

} // namespace

void ConvertBrushes(SceneRun& run) {
  if (run.Level.Actors.empty()) return ConvertPolyLists(run);
  run.Context.User.ShowItem("getting brush");
  for (const ActorBlock* actor : run.Level.ActorsOf(ActorFamily::Brush)) {
    const auto brush = ShownBrush(run, *actor);
    if (!brush) continue;
    WaitWhilePaused(run);
    run.Context.User.ShowItem("on brush ", NextNumber(run));
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

void ConvertMovers(SceneRun& run) {
  const std::array<MoverPass, 4> passes{{
      {"Mover", "getting mover", "on mover ", ""},
      {"LoopMover", "getting mover", "on loopingmover ", "getting looper"},
      {"RotatingMover", "getting looper", "on rotatingmover ", "getting rotator"},
      {"AttachMover", "getting rotator", "on attachmover ", "getting attacher"},
  }};
  for (const MoverPass& pass : passes)
    ConvertMoverClass(run, pass);
  const auto isOwn = [&](std::string_view name) {
    return std::none_of(passes.begin(), passes.end(), [&](const MoverPass& pass) { return pass.ClassName == name; });
  };
  for (const std::string_view className : run.Level.ClassesOf(ActorFamily::Mover))
    if (isOwn(className)) ConvertMoverClass(run, {className, "getting mover", "on mover ", "", true});
}

} // namespace quarvel
