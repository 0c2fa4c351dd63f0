#include "core/brush_passes.h"

#include "actors/movers.h"
#include "core/level_geometry.h"
#include "scene/brush_geometry.h"

namespace quarvel {

namespace {

bool IsChosen(const RunState& run, const BrushRecord& brush) {
  return run.Context.Settings.CheckBuildBrush ? brush.CsgOper.empty() : IsAdditive(brush);
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

} // namespace

void ConvertBrush(RunState& run, const BrushRecord& brush) {
  if (run.GeometryCount > 1) run.Context.Scene.Line(","); // between the children of the enclosing node
  const WrittenBrush written = WriteBrush(run.Context, brush, run.GeometryCount++);
  if (brush.IsMover) WriteMover(run.Context, run.Triggers, brush, written);
  FlushBlock(run);
  ++run.Result.Brushes;
  run.Result.Faces += written.Faces;
  JoinBounds(run.Bounds, written.Bounds);
}

void SkipBrush(RunState& run, const BrushRecord& brush) {
  run.Context.User.ShowItem("skipping brush");
  if (brush.CsgOper == "CSG_Subtract")
    run.Result.Findings.Count(FindingCode::SubtractiveBrushes);
  else if (!brush.CsgOper.empty() && !IsAdditive(brush))
    run.Result.Findings.Count(FindingCode::OtherBrushes, brush.CsgOper);
}

std::optional<BrushRecord> ShownBrush(RunState& run, const ActorBlock& actor) {
  NumberCheck numbers; // those of what another scene shows are counted there
  const auto read = [&](const T3DLevel& level, const ActorBlock& block) { return ReadBrush(level, block, numbers); };
  auto brush = ReadShown(run.Part, run.Level, actor, read);
  if (!brush) return brush;
  if (run.Numbers.Places == 0) run.Numbers.FirstActor = numbers.FirstActor;
  run.Numbers.Places += numbers.Places;
  return brush;
}

void ProcessBrushes(RunState& run) {
  if (ProcessWholeLevel(run)) return;
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

} // namespace quarvel
