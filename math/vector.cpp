#include "math/vector.h"

#include <algorithm>
#include <cmath>

namespace quarvel {

namespace {
constexpr double emptyCorner = 1000000000;
}

double VectorLength(const Vector3& v) { return std::sqrt(DotProduct(v, v)); }

Vector3 NormalizeVector(const Vector3& v) {
  const double length = VectorLength(v);
  if (length == 0) return {};
  return {v.X / length, v.Y / length, v.Z / length};
}

Vector3 CrossProduct(const Vector3& a, const Vector3& b) {
  return {a.Y * b.Z - a.Z * b.Y, a.Z * b.X - a.X * b.Z, a.X * b.Y - a.Y * b.X};
}

Vector3 MidPoint(const Vector3& a, const Vector3& b) { return {(a.X + b.X) / 2, (a.Y + b.Y) / 2, (a.Z + b.Z) / 2}; }

void ScaleVectors(std::span<Vector3> vectors, double factor) {
  for (Vector3& v : vectors)
    v = ScaleVector(v, factor);
}

Bounds3 InitBounds() { return {{emptyCorner, emptyCorner, emptyCorner}, {-emptyCorner, -emptyCorner, -emptyCorner}}; }

bool IsEmpty(const Bounds3& bounds) { return bounds.Min == InitBounds().Min; }

void GrowBounds(Bounds3& bounds, const Vector3& point) {
  bounds.Min = {std::min(bounds.Min.X, point.X), std::min(bounds.Min.Y, point.Y), std::min(bounds.Min.Z, point.Z)};
  bounds.Max = {std::max(bounds.Max.X, point.X), std::max(bounds.Max.Y, point.Y), std::max(bounds.Max.Z, point.Z)};
}

void JoinBounds(Bounds3& bounds, const Bounds3& by) {
  if (IsEmpty(by)) return;
  GrowBounds(bounds, by.Min);
  GrowBounds(bounds, by.Max);
}

Vector3 BoundsCenter(const Bounds3& bounds) { return MidPoint(bounds.Max, bounds.Min); }

} // namespace quarvel
