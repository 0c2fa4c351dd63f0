#include "light/texel_lattice.h"

#include <algorithm>
#include <cmath>

namespace quarvel {

namespace {

/// Planes nearer to the horizontal than this take their U from the X axis. Slopes of 45 degrees are common and lie
/// clear of it.
constexpr double horizontalNormal = 0.75;

double Hypotenuse(double u, double v) { return std::sqrt(u * u + v * v); }

PlanePoint NearestOnEdge(const PlanePoint& a, const PlanePoint& b, const PlanePoint& point) {
  const double u = b.U - a.U, v = b.V - a.V;
  const double length2 = u * u + v * v;
  const double along = length2 == 0 ? 0 : ((point.U - a.U) * u + (point.V - a.V) * v) / length2;
  const double t = std::clamp(along, 0.0, 1.0);
  return {a.U + t * u, a.V + t * v};
}

/// Twice the signed area of a triangle.
double Turn(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c) {
  return (b.U - a.U) * (c.V - a.V) - (b.V - a.V) * (c.U - a.U);
}

bool IsWithin(const PlanePolygon& polygon, const PlanePoint& point) {
  bool left = false, right = false;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const double turn = Turn(polygon[i], polygon[(i + 1) % polygon.size()], point);
    left = left || turn > 0;
    right = right || turn < 0;
  }
  return left != right;
}

PlanePoint NearestOnOutline(const PlanePolygon& polygon, const PlanePoint& point) {
  PlanePoint nearest = polygon.front();
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const PlanePoint candidate = NearestOnEdge(polygon[i], polygon[(i + 1) % polygon.size()], point);
    if (DistanceOf(candidate, point) < DistanceOf(nearest, point)) nearest = candidate;
  }
  return nearest;
}

} // namespace

double DistanceOf(const PlanePoint& a, const PlanePoint& b) { return Hypotenuse(a.U - b.U, a.V - b.V); }

TexelLattice MakeLattice(const Vector3& normal, double distance, double texel) {
  TexelLattice lattice{normal, distance, {}, {}, texel};
  if (std::fabs(normal.Z) > horizontalNormal)
    lattice.U = NormalizeVector(SubtractVector({1, 0, 0}, ScaleVector(normal, normal.X)));
  else
    lattice.U = NormalizeVector(CrossProduct({0, 0, 1}, normal));
  lattice.V = CrossProduct(normal, lattice.U);
  return lattice;
}

void PlaneBox::Grow(const PlanePoint& point) {
  MinU = std::min(MinU, point.U);
  MinV = std::min(MinV, point.V);
  MaxU = std::max(MaxU, point.U);
  MaxV = std::max(MaxV, point.V);
}

void PlaneBox::Grow(const PlaneBox& box) {
  Grow(PlanePoint{box.MinU, box.MinV});
  Grow(PlanePoint{box.MaxU, box.MaxV});
}

PlaneBox BoxOf(const PlanePolygon& polygon) {
  PlaneBox box;
  for (const PlanePoint& point : polygon)
    box.Grow(point);
  return box;
}

double AreaOf(const PlanePolygon& polygon) {
  double twice = 0;
  for (std::size_t i = 2; i < polygon.size(); ++i)
    twice += Turn(polygon[0], polygon[i - 1], polygon[i]);
  return std::fabs(twice) / 2;
}

PlanePoint CenterOf(const PlanePolygon& polygon) {
  PlanePoint center;
  for (const PlanePoint& point : polygon) {
    center.U += point.U / static_cast<double>(polygon.size());
    center.V += point.V / static_cast<double>(polygon.size());
  }
  return center;
}

PlanePoint NearestPointOf(const PlanePolygon& polygon, const PlanePoint& point) {
  return IsWithin(polygon, point) ? point : NearestOnOutline(polygon, point);
}

double DistanceToEdge(const PlanePolygon& polygon, const PlanePoint& point) {
  return DistanceOf(NearestOnOutline(polygon, point), point);
}

PlanePoint MovedInside(const PlanePoint& point, const PlanePoint& center, double by) {
  const double distance = DistanceOf(point, center);
  const double part = distance <= by ? 1 : by / distance;
  return {point.U + (center.U - point.U) * part, point.V + (center.V - point.V) * part};
}

} // namespace quarvel
