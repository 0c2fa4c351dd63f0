#include "math/matrix.h"
#include "math/number_text.h"
#include "math/rotation.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <sstream>

namespace quarvel {
namespace {

void ExpectNear(const Vector3& a, const Vector3& b, double tolerance = 1e-9) {
  EXPECT_NEAR(a.X, b.X, tolerance);
  EXPECT_NEAR(a.Y, b.Y, tolerance);
  EXPECT_NEAR(a.Z, b.Z, tolerance);
}

/// Rodrigues' formula.
Vector3 Turn(const AxisAngle4& turn, const Vector3& p) {
  const Vector3 axis{turn.X, turn.Y, turn.Z};
  const Vector3 along = ScaleVector(axis, DotProduct(axis, p) * (1 - std::cos(turn.Angle)));
  const Vector3 across = ScaleVector(CrossProduct(axis, p), std::sin(turn.Angle));
  return AddVector(ScaleVector(p, std::cos(turn.Angle)), AddVector(across, along));
}

Rotator3 RandomRotator(std::mt19937& random) {
  const auto angle = [&] { return static_cast<double>(static_cast<int>(random() % 400000) - 200000); };
  return {angle(), angle(), angle()};
}

TEST(Rotation, TurnsBrushesAsTheEditorDoes) {
  // In the editor's left-handed axes a quarter of yaw takes X to Y, of pitch X to Z, of roll Z to Y.
  const auto turned = [](const Rotator3& rotation, const Vector3& p) {
    return ToRightHanded(TransformPoint(BrushRotationMatrix(rotation), ToRightHanded(p)));
  };
  ExpectNear(turned({0, 16384, 0}, {1, 0, 0}), {0, 1, 0});
  ExpectNear(turned({16384, 0, 0}, {1, 0, 0}), {0, 0, 1});
  ExpectNear(turned({0, 0, 16384}, {0, 0, 1}), {0, 1, 0});
  // Roll is applied first, yaw last.
  ExpectNear(turned({16384, 16384, 0}, {1, 0, 0}), {0, 0, 1});
  ExpectNear(turned({0, 16384, 16384}, {0, 0, 1}), {-1, 0, 0});
}

TEST(Rotation, SceneTextAndMatrixOfABrushAgree) {
  const Matrix4 conversion = MakeConversionMatrix();
  std::mt19937 random(2);
  for (int i = 0; i < 2000; ++i) {
    const Rotator3 rotation = RandomRotator(random);
    const Vector3 p{i % 7 - 3.0, i % 11 - 5.0, i % 13 - 6.0};
    const Matrix4 matrix = MultiplyMatrix(MultiplyMatrix(RotationXMatrix(UnrealToRadians(rotation.Roll)),
                                                         RotationYMatrix(-UnrealToRadians(rotation.Pitch))),
                                          RotationZMatrix(-UnrealToRadians(rotation.Yaw)));
    const Vector3 expected = TransformPoint(conversion, TransformPoint(matrix, p));
    AxisAngle4 turn;
    std::istringstream(RotatorToAxisAngleText(BrushRotator(rotation), conversion)) >> turn.X >> turn.Y >> turn.Z >>
        turn.Angle;
    ExpectNear(Turn(turn, TransformPoint(conversion, p)), expected, 1e-4);
    ExpectNear(TransformPoint(conversion, TransformPoint(BrushRotationMatrix(rotation), p)), expected);
    if (HasFailure()) FAIL() << FormatVec({rotation.Pitch, rotation.Yaw, rotation.Roll});
  }
}

TEST(Rotation, CameraRotatorsKeepTheirQuarterTurn) {
  const Matrix4 conversion = MakeConversionMatrix();
  const AxisAngle4 none = RotatorToAxisAngle({}, conversion);
  ExpectNear({none.X, none.Y, none.Z}, {0, -1, 0}, 1e-14);
  EXPECT_NEAR(none.Angle, Pi / 2, 1e-12);
  const auto text = [&](double pitch, double yaw, double roll) {
    return RotatorToAxisAngleText({pitch, yaw, roll}, conversion);
  };
  EXPECT_EQ(text(0, 65536, 0), text(0, 0, 0));
  EXPECT_EQ(text(-70000, 0.4, 0), text(-4464, 0, 0));
  // Angles that differ by a turn may be written as opposite axes, but turn alike.
  for (const Vector3& p : {Vector3{1, 2, 3}, Vector3{-2, 0, 1}})
    ExpectNear(Turn(RotatorToAxisAngle({100, -16384, 7}, conversion), p),
               Turn(RotatorToAxisAngle({100, 49152, 7}, conversion), p), 1e-7);
  // The axis of no rotation is the document's up axis, converted.
  EXPECT_EQ(RotatorToAxisAngle({0, -16384, 0}, conversion).Angle, 0);
  EXPECT_NEAR(RotatorToAxisAngle({0, -16384, 0}, conversion).Z, -1, 1e-14);
}

TEST(Rotation, ArcCosIsZeroAtBothEnds) {
  EXPECT_EQ(ArcCos(1), 0);
  EXPECT_EQ(ArcCos(-1), 0);
  EXPECT_NEAR(ArcCos(0), Pi / 2, 1e-14);
  EXPECT_NEAR(ArcCos(-0.5), 2 * Pi / 3, 1e-14);
}

TEST(Matrix, ProductsApplyTheFirstMatrixFirst) {
  const Vector3 p = TransformPoint(MultiplyMatrix(ScaleMatrix(1, 2, 3), RotationXMatrix(Pi / 2)), {1, 1, 1});
  ExpectNear(p, {1, -3, 2}, 1e-12);
  ExpectNear(TransformPoint(MakeConversionMatrix(), {1, 2, 3}), {1, 3, -2}, 1e-13);
  ExpectNear(ToSceneAxes(MakeConversionMatrix(), {1, 2, 3}), {1, 3, 2}, 1e-13);
  EXPECT_EQ(NormalizeVector({}), Vector3());
}

} // namespace
} // namespace quarvel
