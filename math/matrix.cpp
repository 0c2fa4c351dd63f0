#include "math/matrix.h"

#include <cmath>

namespace quarvel {

Matrix4 IdentityMatrix() { return ScaleMatrix(1, 1, 1); }

Matrix4 ScaleMatrix(double sx, double sy, double sz) {
  Matrix4 m;
  m.At(0, 0) = sx;
  m.At(1, 1) = sy;
  m.At(2, 2) = sz;
  m.At(3, 3) = 1;
  return m;
}

namespace {

/// The rotation that turns `from` towards `to`, two of the axes 0 to 2.
Matrix4 PlaneRotation(int from, int to, double angle) {
  Matrix4 m = IdentityMatrix();
  m.At(from, from) = m.At(to, to) = std::cos(angle);
  m.At(from, to) = -std::sin(angle);
  m.At(to, from) = std::sin(angle);
  return m;
}

} // namespace

Matrix4 RotationXMatrix(double angle) { return PlaneRotation(1, 2, angle); }
Matrix4 RotationYMatrix(double angle) { return PlaneRotation(2, 0, angle); }
Matrix4 RotationZMatrix(double angle) { return PlaneRotation(0, 1, angle); }

Matrix4 MultiplyMatrix(const Matrix4& a, const Matrix4& b) {
  Matrix4 product;
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column)
      for (int k = 0; k < 4; ++k)
        product.At(row, column) += b.At(row, k) * a.At(k, column);
  return product;
}

Matrix4 TransposeMatrix(const Matrix4& m) {
  Matrix4 transposed;
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column)
      transposed.At(row, column) = m.At(column, row);
  return transposed;
}

std::optional<Matrix4> InvertMatrix(const Matrix4& m) {
  const auto minor = [&](int row, int column) {
    const int r1 = (row + 1) % 3, r2 = (row + 2) % 3, c1 = (column + 1) % 3, c2 = (column + 2) % 3;
    return m.At(r1, c1) * m.At(r2, c2) - m.At(r1, c2) * m.At(r2, c1);
  };
  const double determinant = m.At(0, 0) * minor(0, 0) + m.At(0, 1) * minor(0, 1) + m.At(0, 2) * minor(0, 2);
  if (determinant == 0 || !std::isfinite(1 / determinant)) return std::nullopt;
  Matrix4 inverse = IdentityMatrix();
  for (int row = 0; row < 3; ++row)
    for (int column = 0; column < 3; ++column)
      inverse.At(row, column) = minor(column, row) / determinant;
  const Vector3 moved = TransformPoint(inverse, {m.At(0, 3), m.At(1, 3), m.At(2, 3)});
  inverse.At(0, 3) = -moved.X;
  inverse.At(1, 3) = -moved.Y;
  inverse.At(2, 3) = -moved.Z;
  return inverse;
}

Matrix4 MakeConversionMatrix() { return RotationXMatrix(848.2300164692433 / 180); }

} // namespace quarvel
