#pragma once

#include "math/vector.h"

#include <array>
#include <optional>

namespace quarvel {

/// Row after row; points are column vectors, column 3 holds the translation. Row 3 is carried but never used.
struct Matrix4 {
  std::array<double, 16> M{};

  double& At(int row, int column) { return M[static_cast<std::size_t>(row * 4 + column)]; }
  double At(int row, int column) const { return M[static_cast<std::size_t>(row * 4 + column)]; }
};

Matrix4 IdentityMatrix();
Matrix4 ScaleMatrix(double sx, double sy, double sz);
/// Angles in radians, right-handed.
Matrix4 RotationXMatrix(double angle);
Matrix4 RotationYMatrix(double angle);
Matrix4 RotationZMatrix(double angle);
/// The product b times a: the matrix that applies `a` first.
Matrix4 MultiplyMatrix(const Matrix4& a, const Matrix4& b);
/// The inverse of a matrix that only rotates.
Matrix4 TransposeMatrix(const Matrix4& m);

inline Vector3 TransformPoint(const Matrix4& m, const Vector3& p) {
  return {m.M[0] * p.X + m.M[1] * p.Y + m.M[2] * p.Z + m.M[3], m.M[4] * p.X + m.M[5] * p.Y + m.M[6] * p.Z + m.M[7],
          m.M[8] * p.X + m.M[9] * p.Y + m.M[10] * p.Z + m.M[11]};
}

/// The matrix that undoes an affine one; nullopt when it flattens space.
std::optional<Matrix4> InvertMatrix(const Matrix4& m);

/// Maps Unreal's Z-up axes to the scene's Y-up axes: (x, y, z) to (x, z, -y), by three quarters of a turn about X.
Matrix4 MakeConversionMatrix();

/// The editor's axes are left-handed, the scene's are right-handed: Y changes its sign before the conversion.
inline Vector3 ToRightHanded(const Vector3& v) { return {v.X, -v.Y, v.Z}; }

/// A position, vertex or direction of the level in scene axes, still in Unreal units: (x, y, z) ends as (x, z, y).
inline Vector3 ToSceneAxes(const Matrix4& conversionMatrix, const Vector3& v) {
  return TransformPoint(conversionMatrix, ToRightHanded(v));
}

/// What ToSceneAxes was handed: a position of the scene back on the level's axes.
inline Vector3 FromSceneAxes(const Vector3& v) { return {v.X, v.Z, v.Y}; }

} // namespace quarvel
