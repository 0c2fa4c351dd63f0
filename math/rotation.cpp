#include "math/rotation.h"

#include "math/number_text.h"

#include <cmath>

namespace quarvel {

Quaternion4 EulerToQuaternion(double a, double b, double c) {
  const double ca = std::cos(a / 2), sa = std::sin(a / 2);
  const double cb = std::cos(b / 2), sb = std::sin(b / 2);
  const double cc = std::cos(c / 2), sc = std::sin(c / 2);
  const Vector3 axis =
      NormalizeVector({cb * ca * sc - sb * sa * cc, cb * sa * cc + sb * ca * sc, sb * ca * cc - cb * sa * sc});
  return {axis.X, axis.Y, axis.Z, cb * ca * cc + sb * sa * sc};
}

AxisAngle4 QuaternionToAxisAngle(const Quaternion4& q) {
  const Vector3 axis = NormalizeVector({q.X, q.Y, q.Z});
  return {axis.X, axis.Y, axis.Z, 2 * ArcCos(q.W)};
}

double ArcCos(double x) {
  // The half-angle cosines of a full turn leave [-1, 1] by a rounding error.
  if (std::fabs(x) >= 1) return 0;
  return std::atan(-x / std::sqrt(1 - x * x)) + 2 * std::atan(1.0);
}

double UnrealToRadians(double units) {
  const double reduced = std::fmod(std::nearbyint(std::isfinite(units) ? units : 0), 65536);
  return (Pi / 2) * reduced / 16384;
}

AxisAngle4 RotatorToAxisAngle(const Rotator3& rotator, const Matrix4& conversionMatrix) {
  const double yaw = -(Pi / 2 + UnrealToRadians(rotator.Yaw));
  AxisAngle4 turn =
      QuaternionToAxisAngle(EulerToQuaternion(UnrealToRadians(rotator.Roll), yaw, UnrealToRadians(rotator.Pitch)));
  if (turn.X == 0 && turn.Y == 0 && turn.Z == 0 && turn.Angle == 0) turn.Y = 1;
  const Vector3 axis = TransformPoint(conversionMatrix, {turn.X, turn.Y, turn.Z});
  return {axis.X, axis.Y, axis.Z, turn.Angle};
}

std::string RotatorToAxisAngleText(const Rotator3& rotator, const Matrix4& conversionMatrix) {
  const AxisAngle4 turn = RotatorToAxisAngle(rotator, conversionMatrix);
  return FormatVec({turn.X, turn.Y, turn.Z}) + " " + FormatFlt(turn.Angle);
}

Rotator3 BrushRotator(const Rotator3& rotation) { return {rotation.Roll, rotation.Yaw - 16384, -rotation.Pitch}; }

Matrix4 BrushRotationMatrix(const Rotator3& rotation) {
  const Matrix4 roll = RotationXMatrix(UnrealToRadians(rotation.Roll));
  const Matrix4 pitch = RotationYMatrix(-UnrealToRadians(rotation.Pitch));
  const Matrix4 yaw = RotationZMatrix(-UnrealToRadians(rotation.Yaw));
  return MultiplyMatrix(MultiplyMatrix(roll, pitch), yaw);
}

} // namespace quarvel
