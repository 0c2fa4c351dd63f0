#include "actors/flights.h"

#include "base/ascii_text.h"
#include "base/reference.h"
#include "math/path_smoothing.h"

#include <algorithm>
#include <cmath>

namespace quarvel {

namespace {

using PathPoint = const InterpolationPointRecord*;

/// The paths of the points, in the order in which their Tags come up.
std::vector<std::vector<PathPoint>> GroupByTag(const std::vector<InterpolationPointRecord>& points) {
  std::vector<std::vector<PathPoint>> paths;
  std::map<std::string, std::size_t> numbers; // of the paths, by Tag in lower case
  for (const InterpolationPointRecord& point : points) {
    const auto [at, isNew] = numbers.try_emplace(LowerCase(point.Header.Tag), paths.size());
    if (isNew) paths.emplace_back();
    paths[at->second].push_back(&point);
  }
  for (std::vector<PathPoint>& path : paths)
    std::stable_sort(path.begin(), path.end(), [](PathPoint a, PathPoint b) { return a->Position < b->Position; });
  return paths;
}

double DurationFrom(const InterpolationPointRecord& point, Report& findings) {
  // A rate that makes a segment last for a day is no rate either.
  if (point.RateModifier > 1e-5) return 1 / point.RateModifier;
  findings.Add(FindingCode::NoRate, point.Header.Name);
  return 1;
}

Flight FlightAlong(const std::vector<PathPoint>& path, Report& findings) {
  Flight flight;
  flight.Source = path.front()->Header.Tag.empty() ? path.front()->Header.Name : path.front()->Header.Tag;
  flight.Start = path.front()->Location;
  flight.StartRotation = path.front()->Rotation;
  const std::size_t last = path.size() - 1;
  for (std::size_t i = 0; i < last; ++i) {
    FlightSegment segment;
    segment.Points = NeighbourControlPoints(path[i == 0 ? 0 : i - 1]->Location, path[i]->Location,
                                            path[i + 1]->Location, path[std::min(i + 2, last)]->Location);
    segment.IsCurve = true;
    segment.Rotation = path[i + 1]->Rotation;
    segment.Duration = DurationFrom(*path[i], findings);
    flight.Segments.push_back(segment);
  }
  if (last == 0) findings.Add(FindingCode::PathOfOnePoint, flight.Source);
  return flight;
}

PathPoint FindPoint(const PointsByName& points, const std::string& reference) {
  const auto at = points.find(LowerCase(ReferenceName(reference)));
  return at == points.end() ? nullptr : at->second;
}

/// A stay where the camera is.
FlightSegment Pause(const Vector3& place, const Rotator3& rotation, double duration) {
  return {{place, place, place, place}, false, rotation, duration};
}

FlightSegment Move(const Vector3& from, const InterpolationPointRecord& to, const SceneActionRecord& action,
                   double duration) {
  return {
      {from, AddVector(from, action.StartControlPoint), AddVector(to.Location, action.EndControlPoint), to.Location},
      SameText(action.PathStyle, "PATHSTYLE_Bezier"),
      to.Rotation,
      duration};
}

/// The angle nearest to `from` that means the same as `to`.
double Nearest(double from, double to) { return from + std::remainder(to - from, 65536); }

Rotator3 NearestRotation(const Rotator3& from, const Rotator3& to) {
  return {Nearest(from.Pitch, to.Pitch), Nearest(from.Yaw, to.Yaw), Nearest(from.Roll, to.Roll)};
}

Rotator3 Between(const Rotator3& a, const Rotator3& b, double t) {
  return {a.Pitch + (b.Pitch - a.Pitch) * t, a.Yaw + (b.Yaw - a.Yaw) * t, a.Roll + (b.Roll - a.Roll) * t};
}

void AddSegment(MoverAnimation& track, const FlightSegment& segment, double step) {
  const std::vector<Vector3> points = segment.IsCurve
                                          ? BezierSegment(segment.Points, step)
                                          : std::vector<Vector3>{segment.Points.front(), segment.Points.back()};
  const Rotator3 from = track.RotationKeys.back(), to = NearestRotation(from, segment.Rotation);
  const auto pieces = static_cast<double>(points.size() - 1);
  for (std::size_t i = 1; i < points.size(); ++i) {
    track.PositionKeys.push_back(points[i]);
    track.RotationKeys.push_back(Between(from, to, static_cast<double>(i) / pieces));
    track.PositionKeyDurations.push_back(segment.Duration / pieces);
  }
}

} // namespace

std::vector<Flight> FlightsOfPoints(const std::vector<InterpolationPointRecord>& points, Report& findings) {
  std::vector<Flight> flights;
  for (const std::vector<PathPoint>& path : GroupByTag(points))
    flights.push_back(FlightAlong(path, findings));
  return flights;
}

PointsByName IndexPoints(const std::vector<InterpolationPointRecord>& points) {
  PointsByName byName;
  for (const InterpolationPointRecord& point : points)
    byName.try_emplace(LowerCase(point.Header.Name), &point);
  return byName;
}

Flight FlightOfScene(const SceneManagerRecord& scene, const PointsByName& points, Report& findings) {
  Flight flight;
  flight.Source = scene.Header.Name;
  flight.Loop = scene.bLooping;
  flight.HasActions = true;
  if (scene.MissingActions > 0) findings.Add(FindingCode::MissingActions, flight.Source, scene.MissingActions);
  for (const int gap : scene.ActionGaps)
    findings.Add(FindingCode::GapInActions, flight.Source, gap);
  for (const SceneActionRecord& action : scene.Actions) {
    const PathPoint target = action.Kind == SceneActionKind::MoveCamera ? FindPoint(points, action.IntPoint) : nullptr;
    const double duration = std::clamp(action.Duration, 0.0, 1e6);
    const Vector3 place = flight.Segments.empty() ? flight.Start : flight.Segments.back().Points.back();
    const Rotator3 rotation = flight.Segments.empty() ? flight.StartRotation : flight.Segments.back().Rotation;
    if (action.Kind == SceneActionKind::Pause) {
      if (!flight.Segments.empty()) flight.Segments.push_back(Pause(place, rotation, duration));
    } else if (target == nullptr) {
      findings.Add(FindingCode::UnknownPoint, flight.Source, action.IntPoint);
    } else if (flight.Segments.empty()) {
      flight.Start = target->Location;
      flight.StartRotation = target->Rotation;
      flight.Segments.push_back(Pause(target->Location, target->Rotation, duration));
    } else {
      flight.Segments.push_back(Move(place, *target, action, duration));
    }
  }
  if (flight.Segments.size() == 1) findings.Add(FindingCode::PathOfOnePoint, flight.Source);
  return flight;
}

MoverAnimation TrackOfFlight(const Flight& flight, double step) {
  MoverAnimation track;
  track.PositionKeys.push_back(flight.Start);
  track.RotationKeys.push_back(flight.StartRotation);
  for (const FlightSegment& segment : flight.Segments)
    AddSegment(track, segment, step);
  track.PositionKeyCount = track.RotationKeyCount = static_cast<int>(track.PositionKeys.size());
  track.RotationKeyDurations = track.PositionKeyDurations;
  track.HasPositionKeyTimes = track.HasRotationKeyTimes = true;
  track.AnimatePosition = track.AnimateRotation = true;
  track.Loop = flight.Loop;
  for (const FlightSegment& segment : flight.Segments) {
    if (flight.HasActions)
      track.ThirdKeyDurations.push_back(segment.Duration);
    else
      track.CycleInterval += segment.Duration; // rounder than the sum of its pieces
  }
  if (flight.HasActions) track.ThirdKeyCount = static_cast<int>(flight.Segments.size()) + 1;
  return track;
}

} // namespace quarvel
