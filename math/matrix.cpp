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

Matrix4 MakeConversionMatrix() { return RotationXMatrix(848.2300164692433 / 180); }

} // namespace quarvel
