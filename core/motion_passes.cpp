#include "core/motion_passes.h"

#include "actors/fly_through.h"
#include "actors/teleporters.h"
#include "actors/viewpoints.h"
#include "t3d/camera_records.h"

namespace quarvel {

namespace {

bool IsSky(const RunState& run) { return run.Actors.Part.Kept == ScenePart::Kind::Sky; }

template <typename Record, typename Read>
std::vector<Record> ReadAll(const RunState& run, Read read, std::string_view searchText) {
  std::vector<Record> records;
  TextCursor cursor = 1;
  Record record;
  while (ReadShown(run.Actors.Part, read, run.Level, cursor, searchText, record))
    records.push_back(record);
  return records;
}

/// The second generation's scene managers know their paths; without one the points themselves are the path. A special
/// event of the first generation sends visitors along a path that is a flight anyway.
std::vector<Flight> PlanFlights(RunState& run, const std::vector<InterpolationPointRecord>& points) {
  Report& findings = run.Result.Findings;
  std::vector<Flight> flights;
  if (!run.LegacyFormat)
    for (const SceneManagerRecord& scene : ReadAll<SceneManagerRecord>(run, ReadSceneManager, SceneManagerSearchText)) {
      Flight flight = FlightOfScene(scene, points, findings);
      if (!flight.Segments.empty()) flights.push_back(std::move(flight));
    }
  return flights.empty() ? FlightsOfPoints(points, findings) : flights;
}

} // namespace

void WritePrototypes(RunState& run) {
  const auto anyPoint = [&] {
    return !ReadAll<InterpolationPointRecord>(run, ReadInterpolationPoint, InterpolationPointSearchText).empty();
  };
  if (!run.Settings.CheckEnclose || !run.Settings.CheckOutputFlyThru || IsSky(run) || !anyPoint()) return;
  DeclareBooleanFilter(run.Actors);
  FlushBlock(run);
}

void WriteFlights(RunState& run) {
  if (!run.Settings.CheckOutputFlyThru || IsSky(run)) return;
  run.User.ShowPass("Getting Interpolation Points");
  const auto points = ReadAll<InterpolationPointRecord>(run, ReadInterpolationPoint, InterpolationPointSearchText);
  const std::vector<Flight> flights = PlanFlights(run, points);
  run.User.ShowPass("Writing Interpolation Points");
  WriteFlyThrough(run.Actors, flights);
  FlushBlock(run);
  if (!run.Settings.CheckOutputFlyThruViewpoints) return;
  for (const InterpolationPointRecord& point : points) {
    WriteViewpoint(run.Actors, {point.Header, point.Location, point.Rotation});
    FlushBlock(run);
  }
}

void WriteStarts(RunState& run) {
  const auto starts = ReadAll<PlacementRecord>(run, ReadPlacement, PlayerStartSearchText);
  if (run.Settings.CheckOutputPlayerStarts) {
    run.User.ShowPass("Writing Starts");
    for (const PlacementRecord& start : starts) {
      WriteViewpoint(run.Actors, start);
      FlushBlock(run);
      StepOn(run);
    }
  }
  if (!run.Settings.CheckMakeDefaultViewpoint || IsSky(run)) return;
  const Bounds3& bounds = run.Geometry.Bounds;
  WriteDefaultViewpoint(run.Actors, starts.empty() ? PlaceAbove(bounds, run.Settings.TextScale) : starts.front(),
                        bounds);
  FlushBlock(run);
}

void WriteTeleports(RunState& run) {
  std::vector<TeleporterRecord> teleporters;
  for (const char* searchText : TeleporterSearchTexts)
    for (TeleporterRecord& teleporter : ReadAll<TeleporterRecord>(run, ReadTeleporter, searchText))
      teleporters.push_back(std::move(teleporter));
  WriteTeleporters(run.Actors, teleporters, run.LevelName);
  FlushBlock(run);
}

} // namespace quarvel
