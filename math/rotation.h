#pragma once

#include "math/matrix.h"
#include "math/vector.h"

#include <string>

namespace quarvel {

struct Quaternion4 {
  double X = 0, Y = 0, Z = 0, W = 1;
};

/// The order in which scene rotations are written; the angle is in radians.
struct AxisAngle4 {
  double X = 0, Y = 0, Z = 0, Angle = 0;
};

/// The rotation about X by `c`, then Y by `a`, then Z by `b` (radians). The vector part is normalized: it is the axis,
/// or zero for the identity.
Quaternion4 EulerToQuaternion(double a, double b, double c);
AxisAngle4 QuaternionToAxisAngle(const Quaternion4& q);
/// 0 for exactly 1 and exactly -1 alike.
double ArcCos(double x);

/// An Unreal angle, rounded and reduced to less than a turn, in radians.
double UnrealToRadians(double units);

/// The scene rotation of a camera-like rotator, with the quarter turn that lines Unreal's forward axis up with the
/// scene's viewing direction.
AxisAngle4 RotatorToAxisAngle(const Rotator3& rotator, const Matrix4& conversionMatrix);
std::string RotatorToAxisAngleText(const Rotator3& rotator, const Matrix4& conversionMatrix);

/// What RotatorToAxisAngle must be handed to turn a brush (or anything else that is placed) as the editor does: yaw
/// about the editor's Z, pitch about its Y, roll about its X, without the camera's quarter turn.
Rotator3 BrushRotator(const Rotator3& rotation);

/// The rotation of a brush as a matrix on right-handed Unreal axes: Rz(-yaw) Ry(-pitch) Rx(roll).
Matrix4 BrushRotationMatrix(const Rotator3& rotation);

} // namespace quarvel
