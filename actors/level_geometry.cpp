#include "actors/level_geometry.h"

#include "actors/baked_light.h"
#include "actors/brushes.h"
#include "csg/carve.h"
#include "scene/carved_level.h"
#include "scene/lit_level.h"
#include "scene/merged_level.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <vector>

namespace quarvel {

namespace {

/// The brushes that make up the level, and their actors.
struct GatheredBrushes {
  std::vector<LevelBrush> Brushes;
  std::vector<const ActorBlock*> Actors; ///< as many
  std::vector<const ActorBlock*> Others; ///< that neither add nor subtract, as the builder brush
};

GatheredBrushes GatherBrushes(SceneRun& run) {
  GatheredBrushes gathered;
  for (const ActorBlock* actor : run.Level.ActorsOf(ActorFamily::Brush)) {
    auto brush = ShownBrush(run, *actor);
    if (!brush) continue;
    WaitWhilePaused(run);
    run.Context.User.ShowItem("getting brush");
    StepOn(run);
    if (!IsAdditive(*brush) && brush->CsgOper != "CSG_Subtract") {
      gathered.Others.push_back(actor);
      continue;
    }
    if (brush->DamagedPolygons > 0)
      run.Context.Findings.Add(FindingCode::PolygonsWithoutEnd, brush->Header.Name, brush->DamagedPolygons);
    gathered.Brushes.push_back(MakeLevelBrush(std::move(*brush)));
    gathered.Actors.push_back(actor);
  }
  return gathered;
}

/// A brush that was gathered, or passed over then, once more: its numbers are counted already.
BrushRecord ReadAgain(SceneRun& run, const ActorBlock& actor) {
  const NumberCheck counted = run.Numbers;
  BrushRecord brush = *ShownBrush(run, actor);
  run.Numbers = counted;
  return brush;
}

const char* ReasonOf(CarveFault fault) {
  switch (fault) {
  case CarveFault::NotClosed:
    return "it has a gap";
  case CarveFault::OutOfRange:
    return "its corners lie out of range";
  case CarveFault::Crossing:
    break;
  }
  return "its faces cross one another";
}

void ReportRefused(SceneRun& run, const LevelBrush& brush, CarveFault fault) {
  run.Context.Findings.Add(brush.Subtracts ? FindingCode::RoomNotCarved : FindingCode::BlockNotCarved, brush.Name,
                           ReasonOf(fault));
}

void ReportOpenEdges(SceneRun& run, const std::vector<LevelBrush>& brushes, const CarvedLevel& level) {
  std::map<int, int> edgesOf;
  for (const OpenEdge& edge : level.OpenEdges)
    ++edgesOf[level.Faces[edge.Polygon].Brush];
  for (const auto& [brush, edges] : edgesOf)
    run.Context.Findings.Add(FindingCode::OpenCarvedEdges, brushes[static_cast<std::size_t>(brush)].Name, edges);
}

void CountCarving(SceneRun& run, const CarvedLevel& level, std::size_t surfaces) {
  CarvingResult& carving = run.Totals.Carving;
  const double scale = run.Context.Space.Scale();
  carving.Done = true;
  carving.Added += level.Counts.Added;
  carving.Subtracted += level.Counts.Subtracted;
  carving.Semisolid += level.Counts.Semisolid;
  carving.NonSolid += level.Counts.NonSolid;
  carving.Portals += level.Counts.Portals;
  carving.Sheets += level.Counts.Sheets;
  carving.SurfacesBefore += level.Counts.FacesBefore;
  carving.SurfacesAfter += static_cast<int>(surfaces);
  carving.OpenEdges += static_cast<int>(level.OpenEdges.size());
  carving.EmptyVolume += level.EmptyVolume * scale * scale * scale;
  carving.PrepareSeconds += level.PrepareSeconds;
  carving.CarveSeconds += level.CarveSeconds;
  carving.WeldSeconds += level.WeldSeconds;
}

void WriteSurfaces(SceneRun& run, const std::vector<LevelSurface>& surfaces) {
  const auto start = std::chrono::steady_clock::now();
  if (!surfaces.empty() && run.GeometryCount > 1) run.Context.Scene.Line(","); // between children
  JoinBounds(run.Bounds, WriteMergedLevel(run.Context, surfaces));
  FlushBlock(run);
  if (!surfaces.empty()) ++run.GeometryCount;
  run.Totals.Faces += static_cast<int>(surfaces.size());
  run.Totals.Carving.WriteSeconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

CarvedLevel CarveBrushes(const std::vector<LevelBrush>& brushes, RunInterface& user) {
  std::vector<CsgBrush> made;
  made.reserve(brushes.size());
  for (const LevelBrush& brush : brushes)
    made.push_back(MakeCsgBrush(brush));
  CarvedLevel level = CarveLevel(made, [&](double done) {
    user.ShowItem("percent carved: ", static_cast<long>(100 * done));
    user.ProcessEvents();
    return !user.StopRequested();
  });
  if (level.Stopped) throw RunStopped();
  return level;
}

void WriteCarved(SceneRun& run, const GatheredBrushes& gathered) {
  const CarvedLevel level = CarveBrushes(gathered.Brushes, run.Context.User);
  std::vector<LevelSurface> surfaces = MakeSurfaces(run.Context, gathered.Brushes, level);
  if (run.Context.Settings.CheckBakeLight) {
    std::vector<LitSurface> lit = MakeLitSurfaces(surfaces);
    AddHiddenSurfaces(run.Context, gathered.Brushes, level, lit);
    SolidMatter matter = MakeSolidMatter(run.Context, gathered.Brushes, level);
    RemoveBuried(matter, surfaces, lit);
    BakeLight(run, surfaces, std::move(lit), std::move(matter));
  }
  CountCarving(run, level, surfaces.size());
  ReportOpenEdges(run, gathered.Brushes, level);
  run.Totals.Brushes += static_cast<int>(gathered.Brushes.size() - level.Refused.size());
  WriteSurfaces(run, surfaces);
  for (const RefusedBrush& refused : level.Refused) {
    const auto number = static_cast<std::size_t>(refused.Brush);
    ReportRefused(run, gathered.Brushes[number], refused.Fault);
    if (gathered.Brushes[number].Subtracts) continue;
    WriteNextBrush(run, ReadAgain(run, *gathered.Actors[number]));
    FlushBlock(run);
  }
}

void WriteMerged(SceneRun& run, GatheredBrushes gathered) {
  std::vector<LevelBrush> kept;
  for (std::size_t i = 0; i < gathered.Brushes.size(); ++i) {
    if (gathered.Brushes[i].Subtracts)
      SkipBrush(run, ReadAgain(run, *gathered.Actors[i]));
    else
      kept.push_back(std::move(gathered.Brushes[i]));
  }
  run.Totals.Brushes += static_cast<int>(kept.size());
  std::vector<LevelSurface> surfaces = MakeSurfaces(run.Context, kept);
  if (run.Context.Settings.CheckBakeLight) BakeLight(run, surfaces, MakeLitSurfaces(surfaces), SolidMatter());
  WriteSurfaces(run, surfaces);
}

/// False when the brushes are to be written one by one.
bool WriteWholeLevel(SceneRun& run) {
  const ConversionSettings& settings = run.Context.Settings;
  if (!settings.CheckCarve && !settings.CheckMergeLevel) return false;
  const auto doNothing = [&](const char* why) {
    if (settings.CheckCarve) run.Context.Findings.Add(FindingCode::NothingCarved, "", why);
    return false;
  };
  if (run.Level.Actors.empty()) return doNothing("the file has polygon lists only");
  if (settings.CheckBuildBrush) return doNothing("only the builder brush is converted");
  GatheredBrushes gathered = GatherBrushes(run);
  const bool carves = std::any_of(gathered.Brushes.begin(), gathered.Brushes.end(),
                                  [](const LevelBrush& brush) { return brush.Subtracts; });
  if (!carves && !doNothing("no brush subtracts, so that all would be solid") && !settings.CheckMergeLevel)
    return false;
  for (const ActorBlock* actor : gathered.Others)
    SkipBrush(run, ReadAgain(run, *actor));
  if (carves && settings.CheckCarve)
    WriteCarved(run, gathered);
  else
    WriteMerged(run, std::move(gathered));
  return true;
}

} // namespace

void WriteBrushes(SceneRun& run) {
  if (!WriteWholeLevel(run)) WriteBrushesOneByOne(run);
}

} // namespace quarvel
