#include "core/motion_passes.h"

#include "actors/fly_through.h"
#include "actors/teleporters.h"
#include "actors/viewpoints.h"
#include "t3d/camera_records.h"

namespace quarvel {

namespace {

bool IsSky(const RunState& run) { return run.Part.Kept == ScenePart::Kind::Sky; }

template <typename Read>
auto ReadAll(const RunState& run, ActorFamily family, Read read) {
  return ReadAllShown(run.Part, run.Level, family, read);
}

/// The second generation's scene managers know their paths; without one the points themselves are the path.
std::vector<Flight> PlanFlights(RunState& run, const std::vector<InterpolationPointRecord>& points) {
  Report& findings = run.Result.Findings;
  std::vector<Flight> flights;
  if (!run.Level.LegacyFormat)
    for (const SceneManagerRecord& scene : ReadAll(run, ActorFamily::SceneManager, ReadSceneManager)) {
      Flight flight = FlightOfScene(scene, points, findings);
      if (!flight.Segments.empty()) flights.push_back(std::move(flight));
    }
  return flights.empty() ? FlightsOfPoints(points, findings) : flights;
}

/// What else an event of the first generation does than to send visitors along a path, which is a flight anyway.
void ReportSpecialEvents(RunState& run) {
  if (!run.Level.LegacyFormat) return;
  for (const SpecialEventRecord& event : ReadAll(run, ActorFamily::SpecialEvent, ReadSpecialEvent))
    run.Result.Findings.Add(FindingCode::SpecialEvent, event.Header.Name);
}

} // namespace

void WritePrototypes(RunState& run) {
  const auto anyPoint = [&] { return !ReadAll(run, ActorFamily::InterpolationPoint, ReadInterpolationPoint).empty(); };
  if (!run.Context.Settings.CheckEnclose || !run.Context.Settings.CheckOutputFlyThru || IsSky(run) || !anyPoint())
    return;
  DeclareBooleanFilter(run.Context);
  FlushBlock(run);
}

void WriteFlights(RunState& run) {
  const auto points = ReadAll(run, ActorFamily::InterpolationPoint, ReadInterpolationPoint);
  const std::vector<Flight> flights = PlanFlights(run, points);
  ReportSpecialEvents(run);
  run.Context.User.ShowPass("Writing Interpolation Points");
  WriteFlyThrough(run.Context, flights);
  FlushBlock(run);
  if (!run.Context.Settings.CheckOutputFlyThruViewpoints) return;
  for (const InterpolationPointRecord& point : points) {
    WriteViewpoint(run.Context, {point.Header, point.Location, point.Rotation});
    FlushBlock(run);
  }
}

void WriteStarts(RunState& run) {
  ForEachActor(run, ActorFamily::PlayerStart, ReadPlacement,
               [&](const PlacementRecord& start) { WriteViewpoint(run.Context, start); });
}

void WriteFirstView(RunState& run) {
  const auto starts = ReadAll(run, ActorFamily::PlayerStart, ReadPlacement);
  const Bounds3& bounds = run.Bounds;
  WriteDefaultViewpoint(run.Context, starts.empty() ? PlaceAbove(bounds, run.Context.Space) : starts.front(), bounds);
}

void WriteTeleports(RunState& run) {
  const auto teleporters = ReadAll(run, ActorFamily::Teleporter, ReadTeleporter);
  WriteTeleporters(run.Context, teleporters, run.Level.Name);
  FlushBlock(run);
}

} // namespace quarvel
