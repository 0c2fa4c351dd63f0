#pragma once

#include <span>

namespace quarvel {

/// Fifteen digits, not the full double: every angle of a scene is computed with this value.
inline constexpr double Pi = 3.14159265358979;

struct Vector3 {
  double X = 0, Y = 0, Z = 0;
  bool operator==(const Vector3&) const = default;
};

/// Angles in Unreal units: 65536 to the turn, 16384 to the quarter turn.
struct Rotator3 {
  double Pitch = 0, Yaw = 0, Roll = 0;
  bool operator==(const Rotator3&) const = default;
};

/// A texture coordinate pair, in widths and heights of the image.
struct TexturePoint {
  double U = 0, V = 0;
  bool operator==(const TexturePoint&) const = default;
};

struct ColorRGB {
  unsigned char R = 0, G = 0, B = 0;
  bool operator==(const ColorRGB&) const = default;
};

struct Bounds3 {
  Vector3 Min, Max;
};

inline Vector3 MakeVector(double x, double y, double z) { return {x, y, z}; }

inline Vector3 AddVector(const Vector3& a, const Vector3& b) { return {a.X + b.X, a.Y + b.Y, a.Z + b.Z}; }
inline Vector3 SubtractVector(const Vector3& a, const Vector3& b) { return {a.X - b.X, a.Y - b.Y, a.Z - b.Z}; }
inline Vector3 ScaleVector(const Vector3& v, double factor) { return {v.X * factor, v.Y * factor, v.Z * factor}; }
/// Component by component.
inline Vector3 MultiplyVector(const Vector3& a, const Vector3& b) { return {a.X * b.X, a.Y * b.Y, a.Z * b.Z}; }
inline double DotProduct(const Vector3& a, const Vector3& b) { return a.X * b.X + a.Y * b.Y + a.Z * b.Z; }

double VectorLength(const Vector3& v);
/// The zero vector stays zero.
Vector3 NormalizeVector(const Vector3& v);
Vector3 CrossProduct(const Vector3& a, const Vector3& b);
Vector3 MidPoint(const Vector3& a, const Vector3& b);

/// Multiplies every component in place.
void ScaleVectors(std::span<Vector3> vectors, double factor);

/// An inverted box at plus and minus 1000000000, so that the first point sets both corners.
Bounds3 InitBounds();
/// True while no point was ever added.
bool IsEmpty(const Bounds3& bounds);
void GrowBounds(Bounds3& bounds, const Vector3& point);
void JoinBounds(Bounds3& bounds, const Bounds3& by); ///< an empty box adds nothing
Vector3 BoundsCenter(const Bounds3& bounds);

} // namespace quarvel
