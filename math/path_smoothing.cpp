#include "math/path_smoothing.h"

#include "math/number_text.h"

#include <cmath>

namespace quarvel {

double Factorial(int n) { return n <= 1 ? 1 : n * Factorial(n - 1); }

double Binomial(int n, int i) { return Factorial(n) / (Factorial(n - i) * Factorial(i)); }

double Bernstein(int i, int n, double t) { return Binomial(n, i) * std::pow(t, i) * std::pow(1 - t, n - i); }

int BezierPieces(double step) { return static_cast<int>(RoundToInteger(1 / step, 2, 32767)); }

std::vector<Vector3> BezierSegment(const std::array<Vector3, 4>& controlPoints, double step) {
  const int pieces = BezierPieces(step);
  std::vector<Vector3> points;
  points.reserve(static_cast<std::size_t>(pieces) + 1);
  for (int j = 0; j <= pieces; ++j) {
    const double t = static_cast<double>(j) / pieces;
    Vector3 point;
    for (int i = 0; i <= 3; ++i)
      point = AddVector(point, ScaleVector(controlPoints[static_cast<std::size_t>(i)], Bernstein(i, 3, t)));
    points.push_back(point);
  }
  return points;
}

std::array<Vector3, 4> NeighbourControlPoints(const Vector3& before, const Vector3& from, const Vector3& to,
                                              const Vector3& after) {
  // The tangents of a Catmull-Rom spline are half the way between the neighbours; a Bezier handle is a third of that.
  const Vector3 leaving = ScaleVector(SubtractVector(to, before), 1.0 / 6);
  const Vector3 arriving = ScaleVector(SubtractVector(after, from), 1.0 / 6);
  return {from, AddVector(from, leaving), SubtractVector(to, arriving), to};
}

} // namespace quarvel
