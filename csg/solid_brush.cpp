#include "csg/solid_brush.h"

#include <algorithm>
#include <cmath>

namespace quarvel {

namespace {

/// The level's own numbers are 32-bit floats; beyond this a tolerance of a fraction of a unit means nothing.
constexpr double farthestCorner = 1e7;
/// Unreal units.
constexpr double widestGap = 1;
/// The part of its surface that a brush's tree may get wrong.
constexpr double allowedMisfit = 0.01;

bool IsUsable(const Vector3& p) {
  return std::fabs(p.X) < farthestCorner && std::fabs(p.Y) < farthestCorner && std::fabs(p.Z) < farthestCorner;
}

PolygonMesh MeshOf(const CsgBrush& brush) {
  PolygonMesh mesh;
  for (const CsgPolygon& polygon : brush.Polygons) {
    for (const Vector3& point : polygon.Points) {
      // Most brushes repeat their corners exactly.
      const auto known = std::find(mesh.Points.begin(), mesh.Points.end(), point);
      mesh.Corners.push_back(static_cast<std::uint32_t>(known - mesh.Points.begin()));
      if (known == mesh.Points.end()) mesh.Points.push_back(point);
    }
    mesh.Starts.push_back(static_cast<std::uint32_t>(mesh.Corners.size()));
  }
  return mesh;
}

bool IsClosedMesh(const PolygonMesh& mesh) {
  return FindOpenEdges(mesh, [](std::size_t) { return true; }).empty();
}

double SixfoldVolume(const std::vector<FlatFace>& faces, const Vector3& middle) {
  double volume = 0;
  for (const FlatFace& face : faces)
    volume += DotProduct(NewellVector(face.Points), SubtractVector(face.Points.front(), middle));
  return volume;
}

void TurnInsideOut(std::vector<FlatFace>& faces) {
  for (FlatFace& face : faces) {
    std::reverse(face.Points.begin(), face.Points.end());
    face.Plane = FlipPlane(face.Plane);
  }
}

/// How far the corner that lies farthest off the plane does so.
double BendOf(std::span<const Vector3> points, const Plane3& plane) {
  double bend = 0;
  for (const Vector3& point : points)
    bend = std::max(bend, std::fabs(DistanceFrom(plane, point)));
  return bend;
}

void AddFace(std::vector<FlatFace>& faces, std::vector<Vector3> points, const Plane3& plane, int polygon) {
  for (std::vector<Vector3>& part : ConvexParts(std::move(points), plane))
    faces.push_back({std::move(part), plane, polygon});
}

/// Folds a bent face along a diagonal, outward where there is a choice: a convex brush stays convex. What the carving
/// cuts off then still meets the neighbours' edges.
void AddFoldedFace(std::vector<FlatFace>& faces, std::vector<Vector3> points, const Plane3& plane, int polygon) {
  const auto addTriangle = [&](std::vector<Vector3> triangle) {
    const Plane3 own = PlaneOfPolygon(triangle);
    if (!(own.Normal == Vector3())) faces.push_back({std::move(triangle), own, polygon});
  };
  if (points.size() == 4) {
    const Plane3 half = PlaneOfPolygon(std::vector<Vector3>{points[0], points[1], points[2]});
    if (DistanceFrom(half, points[3]) > 0) std::rotate(points.begin(), points.begin() + 1, points.end());
    addTriangle({points[0], points[1], points[2]});
    addTriangle({points[0], points[2], points[3]});
    return;
  }
  for (const std::vector<Vector3>& part : ConvexParts(std::move(points), plane))
    for (std::size_t i = 1; i + 1 < part.size(); ++i)
      addTriangle({part[0], part[i], part[i + 1]});
}

std::vector<FlatFace> MakeFaces(const PolygonMesh& mesh) {
  std::vector<FlatFace> faces;
  for (std::size_t number = 0; number < mesh.Count(); ++number) {
    const std::vector<Vector3> points = PointsOf(mesh, number);
    const Plane3 plane = PlaneOfPolygon(points);
    if (AreaOfPolygon(points) < PlaneTolerance * PlaneTolerance) continue;
    if (BendOf(points, plane) <= PlaneTolerance)
      AddFace(faces, points, plane, static_cast<int>(number));
    else
      AddFoldedFace(faces, points, plane, static_cast<int>(number));
  }
  return faces;
}

/// True when the brush's own tree has the brush behind each of its faces.
bool FitsFaces(const BrushTree& tree, const std::vector<FlatFace>& faces) {
  if (tree.IsConvex()) return true;
  PieceStore store;
  std::vector<ClippedPiece> parts;
  double total = 0, misfit = 0;
  for (const FlatFace& face : faces) {
    store.Clear();
    parts.clear();
    tree.Clip(store, store.Add(face.Points), face.Plane.Normal, BothSides, parts);
    for (const ClippedPiece& part : parts) {
      const double area = AreaOfPolygon(store.Points(part.Piece));
      total += area;
      if (part.Contained != BackSide) misfit += area;
    }
  }
  return misfit <= allowedMisfit * total;
}

/// The solid angle under which a triangle is seen, by van Oosterom and Strackee; positive from behind.
double SolidAngle(const Vector3& a, const Vector3& b, const Vector3& c) {
  const double la = VectorLength(a), lb = VectorLength(b), lc = VectorLength(c);
  return 2 * std::atan2(DotProduct(a, CrossProduct(b, c)),
                        la * lb * lc + DotProduct(a, b) * lc + DotProduct(b, c) * la + DotProduct(c, a) * lb);
}

/// How often the faces wind around a point: 1 inside, 0 outside.
double WindingAround(const Vector3& point, const std::vector<FlatFace>& faces) {
  double angle = 0;
  for (const FlatFace& face : faces) {
    const auto corner = [&](std::size_t i) { return SubtractVector(face.Points[i], point); };
    for (std::size_t i = 1; i + 1 < face.Points.size(); ++i)
      angle += SolidAngle(corner(0), corner(i), corner(i + 1));
  }
  return angle / (4 * Pi);
}

/// Compares the tree with the winding of the faces, at points spread over the brush's box and around it. Where faces
/// nearly coincide a tree can take a wrong turn.
bool FitsWinding(const BrushTree& tree, const std::vector<FlatFace>& faces, const Bounds3& box) {
  constexpr int points = 256;
  const Vector3 middle = BoundsCenter(box), size = SubtractVector(box.Max, box.Min);
  int wrong = 0;
  for (int i = 0; i < points; ++i) {
    // A lattice of the plastic number's powers fills space evenly.
    const auto part = [&](double step) { return std::fmod(0.5 + step * i, 1) - 0.5; };
    const Vector3 place{part(0.8191725133961645), part(0.6710436067037893), part(0.5497004779019703)};
    const Vector3 point = AddVector(middle, MultiplyVector(ScaleVector(place, i % 2 ? 1.01 : 3), size));
    const double winding = WindingAround(point, faces);
    wrong += std::fabs(winding - (tree.Contains(point) ? 1 : 0)) > 0.9;
  }
  return wrong <= points / 100;
}

/// Makes the space inside a closed mesh; false when there is none, because faces cross. `doubtful`: the mesh was
/// mended.
bool MakeSolid(const PolygonMesh& mesh, bool doubtful, PreparedBrush& brush) {
  std::vector<FlatFace> faces = MakeFaces(mesh);
  doubtful = doubtful || faces.size() != mesh.Count();
  if (SixfoldVolume(faces, BoundsCenter(brush.Box)) < 0) TurnInsideOut(faces);
  for (const double factor : {1.0, 0.5, 2.0, 0.25}) {
    BrushTree tree(faces, PlaneTolerance * factor);
    if (FitsFaces(tree, faces) && (!doubtful || tree.IsConvex() || FitsWinding(tree, faces, brush.Box))) {
      brush.Faces = std::move(faces);
      brush.Tree = std::move(tree);
      return true;
    }
  }
  return false;
}

} // namespace

PreparedBrush PrepareBrush(const CsgBrush& brush) {
  PreparedBrush prepared;
  for (const CsgPolygon& polygon : brush.Polygons)
    for (const Vector3& point : polygon.Points) {
      if (!IsUsable(point)) return prepared;
      GrowBounds(prepared.Box, point);
    }
  const PolygonMesh mesh = MeshOf(brush);
  if (mesh.Count() > 3) {
    // The editor's own tools leave gaps in brushes: corners that lie beside an edge, and corners moved by one of the
    // faces alone.
    for (const double gap : {0.0, WeldDistance, widestGap}) {
      PolygonMesh closed = mesh;
      if (gap > 0) WeldMesh(closed, gap, closed.Count());
      if (!IsClosedMesh(closed)) continue;
      prepared.IsClosed = true;
      if (MakeSolid(closed, gap > 0, prepared)) return prepared;
    }
  }
  prepared.Faces = MakeFaces(mesh);
  return prepared;
}

} // namespace quarvel
