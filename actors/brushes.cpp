#include "actors/brushes.h"

#include "scene/brush_geometry.h"

namespace quarvel {

namespace {

bool IsChosen(const SceneRun& run, const BrushRecord& brush) {
  return run.Context.Settings.CheckBuildBrush ? brush.CsgOper.empty() : IsAdditive(brush);
}

/// A file without actors may be one builder brush, as the editor saves it alone.
void ConvertPolyLists(SceneRun& run) {
  TextCursor cursor = 1;
  BrushRecord brush;
  while (ReadPolyList(run.Level.Text, cursor, brush, run.Numbers)) {
    WaitWhilePaused(run);
    WriteNextBrush(run, brush);
    FlushBlock(run);
    StepOn(run);
  }
}

} // namespace

WrittenBrush WriteNextBrush(SceneRun& run, const BrushRecord& brush) {
  if (run.GeometryCount > 1) run.Context.Scene.Line(","); // between the children of the enclosing node
  const WrittenBrush written = WriteBrush(run.Context, brush, run.GeometryCount++);
  ++run.Totals.Brushes;
  run.Totals.Faces += written.Faces;
  JoinBounds(run.Bounds, written.Bounds);
  return written;
}

void SkipBrush(SceneRun& run, const BrushRecord& brush) {
  run.Context.User.ShowItem("skipping brush");
  if (brush.CsgOper == "CSG_Subtract")
    run.Context.Findings.Count(FindingCode::SubtractiveBrushes);
  else if (!brush.CsgOper.empty() && !IsAdditive(brush))
    run.Context.Findings.Count(FindingCode::OtherBrushes, brush.CsgOper);
}

std::optional<BrushRecord> ShownBrush(SceneRun& run, const ActorBlock& actor) {
  NumberCheck numbers; // those of what another scene shows are counted there
  const auto read = [&](const T3DLevel& level, const ActorBlock& block) { return ReadBrush(level, block, numbers); };
  auto brush = ReadShown(run.Part, run.Level, actor, read);
  if (!brush) return brush;
  if (run.Numbers.Places == 0) run.Numbers.FirstActor = numbers.FirstActor;
  run.Numbers.Places += numbers.Places;
  return brush;
}

void WriteBrushesOneByOne(SceneRun& run) {
  if (run.Level.Actors.empty()) return ConvertPolyLists(run);
  run.Context.User.ShowItem("getting brush");
  for (const ActorBlock* actor : run.Level.ActorsOf(ActorFamily::Brush)) {
    const auto brush = ShownBrush(run, *actor);
    if (!brush) continue;
    WaitWhilePaused(run);
    run.Context.User.ShowItem("on brush ", run.GeometryCount);
    const bool chosen = IsChosen(run, *brush);
    if (chosen)
      WriteNextBrush(run, *brush);
    else
      SkipBrush(run, *brush);
    FlushBlock(run);
    StepOn(run);
    if (chosen && run.Context.Settings.CheckBuildBrush) return;
    run.Context.User.ShowItem("getting brush");
  }
}

} // namespace quarvel
