#pragma once

#include "actors/mover_animation.h"
#include "base/report.h"
#include "t3d/camera_records.h"

#include <array>
#include <map>
#include <string>
#include <vector>

namespace quarvel {

/// One stretch of a flight. Positions in Unreal units, times in seconds.
struct FlightSegment {
  std::array<Vector3, 4> Points; ///< control points of the curve; the first and the last are its ends
  bool IsCurve = false;          ///< else straight from end to end
  Rotator3 Rotation;             ///< at its end
  double Duration = 0;
};

/// The way of a camera along the points of a level.
struct Flight {
  std::string Source; ///< the Tag of its points, or the name of its scene manager
  Vector3 Start;
  Rotator3 StartRotation;
  std::vector<FlightSegment> Segments;
  bool Loop = false;
  bool HasActions = false; ///< timed by a scene manager's actions, of which each segment is one
};

/// The flights along interpolation points: one for each Tag, in the order in which the Tags come up, each through its
/// points in the order of their Position. The rate of a point holds for the segment that begins there.
std::vector<Flight> FlightsOfPoints(const std::vector<InterpolationPointRecord>& points, Report& findings);

/// The first point of each name, in lower case. The points have to outlive it.
using PointsByName = std::map<std::string, const InterpolationPointRecord*>;
PointsByName IndexPoints(const std::vector<InterpolationPointRecord>& points);

/// The flight of a scene manager. Its first move puts the camera to the point it names. Actions whose point does not
/// exist are left out and reported; without any other the flight has no segments.
Flight FlightOfScene(const SceneManagerRecord& scene, const PointsByName& points, Report& findings);

/// The flight as a track, its curves sampled with the step.
MoverAnimation TrackOfFlight(const Flight& flight, double step);

} // namespace quarvel
