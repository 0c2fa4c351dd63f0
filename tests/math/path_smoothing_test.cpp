#include "math/path_smoothing.h"

#include <gtest/gtest.h>

namespace quarvel {
namespace {

TEST(PathSmoothing, SamplesFromTheFirstToTheLastControlPoint) {
  const std::array<Vector3, 4> control{{{0, 8, 1}, {16, 8, 2}, {24, 0, 3}, {8, 0, 5}}};
  const std::vector<Vector3> points = BezierSegment(control, 0.5);
  ASSERT_EQ(points.size(), 3u);
  EXPECT_EQ(points[0], control[0]);
  EXPECT_EQ(points[1], MakeVector(16, 4, 2.625)) << "(P0 + 3 P1 + 3 P2 + P3) / 8";
  EXPECT_EQ(points[2], control[3]);
}

TEST(PathSmoothing, RoundsTheStepToWholePieces) {
  EXPECT_EQ(BezierPieces(0.01), 100);
  EXPECT_EQ(BezierPieces(0.3), 3);
  EXPECT_EQ(BezierPieces(0.4), 2) << "halves go to the even number";
  EXPECT_EQ(BezierPieces(7), 2);
  EXPECT_EQ(BezierPieces(0), 32767);
  const std::array<Vector3, 4> line{{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}}};
  const std::vector<Vector3> points = BezierSegment(line, 0.3);
  ASSERT_EQ(points.size(), 4u);
  EXPECT_NEAR(points[1].X, 1, 1e-12) << "at a third, not at 0.3";
}

TEST(PathSmoothing, BernsteinPolynomialsAddUpToOne) {
  for (const double t : {0.0, 0.2, 0.5, 1.0})
    EXPECT_NEAR(Bernstein(0, 3, t) + Bernstein(1, 3, t) + Bernstein(2, 3, t) + Bernstein(3, 3, t), 1, 1e-15);
  EXPECT_EQ(Bernstein(0, 3, 0), 1);
  EXPECT_EQ(Binomial(5, 2), 10);
}

TEST(PathSmoothing, NeighboursMakeAPathWithoutCorners) {
  const Vector3 a{0, 0, 0}, b{10, 0, 0}, c{10, 10, 4}, d{20, 10, 4};
  const auto first = NeighbourControlPoints(a, a, b, c);
  const auto second = NeighbourControlPoints(a, b, c, d);
  EXPECT_EQ(first[3], second[0]);
  const Vector3 arriving = SubtractVector(first[3], first[2]), leaving = SubtractVector(second[1], second[0]);
  EXPECT_NEAR(VectorLength(SubtractVector(arriving, leaving)), 0, 1e-12);
}

} // namespace
} // namespace quarvel
