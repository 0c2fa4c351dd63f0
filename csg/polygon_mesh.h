#pragma once

#include "math/vector.h"

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace quarvel {

/// Polygons over a common list of points.
struct PolygonMesh {
  std::vector<Vector3> Points;
  std::vector<std::uint32_t> Corners;   ///< indices into the points, polygon after polygon
  std::vector<std::uint32_t> Starts{0}; ///< where each polygon begins in the corners, and at last where they end

  std::size_t Count() const { return Starts.size() - 1; }
  std::span<const std::uint32_t> CornersOf(std::size_t polygon) const {
    return std::span(Corners).subspan(Starts[polygon], Starts[polygon + 1] - Starts[polygon]);
  }
};

/// Unites points that are at most `distance` apart (the first of them stays) and makes points that lie as near to an
/// edge corners of the polygons that have the edge, unless two share it already. What then runs there and back is taken
/// out: a polygon can end without corners. The first `enclosing` polygons share edges only among themselves.
void WeldMesh(PolygonMesh& mesh, double distance, std::size_t enclosing);
/// The first half of that.
void UnitePoints(PolygonMesh& mesh, double distance);

/// The points of one polygon.
std::vector<Vector3> PointsOf(const PolygonMesh& mesh, std::size_t polygon);

/// An edge that is run through more often in this direction than in the other.
struct OpenEdge {
  std::uint32_t Polygon = 0; ///< one that has it
  std::uint32_t From = 0, To = 0;
};

/// The open edges of the polygons for which `counts` is true.
std::vector<OpenEdge> FindOpenEdges(const PolygonMesh& mesh, const std::function<bool(std::size_t)>& counts);

} // namespace quarvel
