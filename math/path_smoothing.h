#pragma once

#include "math/vector.h"

#include <array>
#include <vector>

namespace quarvel {

/// n! for n of 0 or more.
double Factorial(int n);
double Binomial(int n, int i);
/// The i-th Bernstein polynomial of degree n at t; zero to the power of zero is 1, so both ends of a curve are exact.
double Bernstein(int i, int n, double t);

/// Into how many pieces a step divides a segment: 1 / step, rounded, from 2 to 32767.
int BezierPieces(double step);

/// Samples one cubic Bezier segment at equal parameters; `step` in (0, 0.5]. The first and the last of the
/// BezierPieces(step) + 1 points are the first and the last control point.
std::vector<Vector3> BezierSegment(const std::array<Vector3, 4>& controlPoints, double step);

/// The control points of the segment between two neighbours of a path, as a Catmull-Rom spline has them: the path
/// leaves each point in the direction of the line between its neighbours. At an end of the path the point itself stands
/// in for the neighbour it has not.
std::array<Vector3, 4> NeighbourControlPoints(const Vector3& before, const Vector3& from, const Vector3& to,
                                              const Vector3& after);

} // namespace quarvel
