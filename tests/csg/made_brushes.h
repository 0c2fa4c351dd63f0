#pragma once

#include "csg/carve.h"
#include "math/matrix.h"
#include "math/rotation.h"

#include <cmath>
#include <vector>

namespace quarvel::test {

/// A box between two corners, turned about its middle.
inline CsgBrush MakeBox(CsgOperation operation, const Vector3& low, const Vector3& high, const Rotator3& turn = {}) {
  constexpr int corners[6][4] = {{0, 4, 6, 2}, {1, 3, 7, 5}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 2, 3, 1}, {4, 5, 7, 6}};
  const Matrix4 rotation = BrushRotationMatrix(turn);
  const Vector3 middle = MidPoint(low, high);
  CsgBrush brush{operation, CsgKind::Structural, {}};
  for (const auto& face : corners) {
    CsgPolygon& polygon = brush.Polygons.emplace_back();
    for (const int corner : face) {
      const Vector3 point{corner & 1 ? high.X : low.X, corner & 2 ? high.Y : low.Y, corner & 4 ? high.Z : low.Z};
      polygon.Points.push_back(AddVector(middle, TransformPoint(rotation, SubtractVector(point, middle))));
    }
  }
  return brush;
}

inline CsgBrush AddBox(const Vector3& low, const Vector3& high, const Rotator3& turn = {}) {
  return MakeBox(CsgOperation::Add, low, high, turn);
}
inline CsgBrush SubtractBox(const Vector3& low, const Vector3& high, const Rotator3& turn = {}) {
  return MakeBox(CsgOperation::Subtract, low, high, turn);
}
inline CsgBrush OfKind(CsgBrush brush, CsgKind kind) {
  brush.Kind = kind;
  return brush;
}

/// An upright prism over an outline that runs counterclockwise on right-handed axes.
inline CsgBrush MakePrism(CsgOperation operation, const std::vector<Vector3>& outline, double height) {
  CsgBrush brush{operation, CsgKind::Structural, {}};
  CsgPolygon bottom, top;
  const std::size_t count = outline.size();
  const auto raised = [&](const Vector3& p) { return AddVector(p, {0, 0, height}); };
  for (std::size_t i = 0; i < count; ++i) {
    const Vector3 &a = outline[i], &b = outline[(i + 1) % count];
    brush.Polygons.push_back({{a, b, raised(b), raised(a)}, 0});
    top.Points.push_back(raised(a));
    bottom.Points.push_back(outline[count - 1 - i]);
  }
  brush.Polygons.push_back(bottom);
  brush.Polygons.push_back(top);
  return brush;
}

inline double AreaOf(const CarvedLevel& level, std::size_t face) { return AreaOfPolygon(PointsOf(level.Mesh, face)); }

/// The area of what is seen of a brush, or of one of its polygons.
inline double AreaOf(const CarvedLevel& level, int brush, int polygon = -1) {
  double area = 0;
  for (std::size_t i = 0; i < level.Faces.size(); ++i)
    if (level.Faces[i].Brush == brush && (polygon < 0 || level.Faces[i].Polygon == polygon)) area += AreaOf(level, i);
  return area;
}

inline double AreaOf(const CarvedLevel& level) {
  double area = 0;
  for (std::size_t i = 0; i < level.Faces.size(); ++i)
    area += AreaOf(level, i);
  return area;
}

} // namespace quarvel::test
