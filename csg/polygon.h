#pragma once

#include "math/vector.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace quarvel {

/// How far a point may lie off a plane and still be on it; Unreal units.
inline constexpr double PlaneTolerance = 0.02;

/// All points p with Normal * p = Distance; the normal has a length of 1.
struct Plane3 {
  Vector3 Normal;
  double Distance = 0;
};

/// Positive on the side that the normal points to.
inline double DistanceFrom(const Plane3& plane, const Vector3& point) {
  return DotProduct(plane.Normal, point) - plane.Distance;
}

inline Plane3 FlipPlane(const Plane3& plane) { return {ScaleVector(plane.Normal, -1), -plane.Distance}; }

/// The plane of best fit (Newell's normal through the middle of the corners), facing the side from which the corners
/// run counterclockwise on right-handed axes. The normal is zero when the polygon has no area.
Plane3 PlaneOfPolygon(std::span<const Vector3> points);

/// Twice the area along the normal, by Newell's sum; the polygon need not be flat.
Vector3 NewellVector(std::span<const Vector3> points);

double AreaOfPolygon(std::span<const Vector3> points);

/// Cuts a polygon, which lies in the plane, into convex ones without adding a corner; one that is convex stays whole.
std::vector<std::vector<Vector3>> ConvexParts(std::vector<Vector3> points, const Plane3& plane);

/// The union of two convex polygons in one plane that share an edge, when it is convex too; else empty. Corners where
/// the shared edge ended and the outline runs straight are left out.
std::vector<Vector3> JoinAlongEdge(std::span<const Vector3> a, std::span<const Vector3> b, const Vector3& normal);

/// Convex polygons that come and go while one face is carved. Their corners lie in one list, so that none of them costs
/// an allocation.
class PieceStore {
 public:
  struct Piece {
    std::uint32_t First = 0, Count = 0;
  };
  enum class Side { Front, Back, On, Both };

  /// `tolerance`: how far a point may lie off a plane and still be on it.
  explicit PieceStore(double tolerance = PlaneTolerance) : tolerance_(tolerance) {}

  void Clear() { points_.clear(); }
  Piece Add(std::span<const Vector3> points);
  std::span<const Vector3> Points(Piece piece) const {
    return {points_.data() + piece.First, static_cast<std::size_t>(piece.Count)};
  }

  /// Where the piece lies. Fills the list of distances that Split works with.
  Side SideOf(Piece piece, const Plane3& plane);
  /// The parts in front of and behind the plane that SideOf was just asked about, when it lies on both.
  std::pair<Piece, Piece> Split(Piece piece);

 private:
  double tolerance_;
  std::vector<Vector3> points_;
  std::vector<double> distances_;
};

} // namespace quarvel
