#include "math/number_text.h"
#include "math/rotation.h"
#include "scene/brush_placement.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <sstream>

namespace quarvel {
namespace {

constexpr double worldScale = 0.5;

/// Three axes of a turned actor in the editor's left-handed coordinates, by trigonometry alone.
Vector3 TurnedByEditor(const Rotator3& rotation, const Vector3& p) {
  const double sp = std::sin(UnrealToRadians(rotation.Pitch)), cp = std::cos(UnrealToRadians(rotation.Pitch));
  const double sy = std::sin(UnrealToRadians(rotation.Yaw)), cy = std::cos(UnrealToRadians(rotation.Yaw));
  const double sr = std::sin(UnrealToRadians(rotation.Roll)), cr = std::cos(UnrealToRadians(rotation.Roll));
  const Vector3 x{cp * cy, cp * sy, sp};
  const Vector3 y{sr * sp * cy - cr * sy, sr * sp * sy + cr * cy, -sr * cp};
  const Vector3 z{-(cr * sp * cy + sr * sy), cy * sr - cr * sp * sy, cr * cp};
  return AddVector(ScaleVector(x, p.X), AddVector(ScaleVector(y, p.Y), ScaleVector(z, p.Z)));
}

/// A scale and then its sheer, as the editor does both: the axis named second moves in proportion to the first.
Vector3 ScaledByEditor(const Vector3& scale, const SheerRecord& sheer, const Vector3& p) {
  const Vector3 s = MultiplyVector(scale, p);
  const double k = sheer.Rate == 0 ? 0 : std::copysign(0.5, sheer.Rate);
  switch (sheer.Axis) {
  case SheerAxis::XY:
    return {s.X, s.Y + k * s.X, s.Z};
  case SheerAxis::XZ:
    return {s.X, s.Y, s.Z + k * s.X};
  case SheerAxis::YX:
    return {s.X + k * s.Y, s.Y, s.Z};
  case SheerAxis::YZ:
    return {s.X, s.Y, s.Z + k * s.Y};
  case SheerAxis::ZX:
    return {s.X + k * s.Z, s.Y, s.Z};
  case SheerAxis::ZY:
    return {s.X, s.Y + k * s.Z, s.Z};
  case SheerAxis::None:
    break;
  }
  return s;
}

/// Where the editor shows a vertex, in scene coordinates.
Vector3 PlacedByEditor(const BrushRecord& brush, const Vector3& vertex) {
  const Vector3 scaled = ScaledByEditor(brush.MainScale, brush.MainSheer, SubtractVector(vertex, brush.PrePivot));
  const Vector3 turned = ScaledByEditor(brush.PostScale, brush.PostSheer, TurnedByEditor(brush.Rotation, scaled));
  const Vector3 world = AddVector(brush.Location, turned);
  return ScaleVector({world.X, world.Z, world.Y}, worldScale);
}

/// Where a viewer shows it: the written vertex, then the fields of the Transform (VRML97, clause 6.52).
Vector3 PlacedByViewer(const BrushPlacement& placement, const Vector3& vertex) {
  Vector3 translation, scale;
  AxisAngle4 turn;
  std::istringstream(placement.Translation) >> translation.X >> translation.Y >> translation.Z;
  std::istringstream(placement.Scale) >> scale.X >> scale.Y >> scale.Z;
  std::istringstream(placement.Rotation) >> turn.X >> turn.Y >> turn.Z >> turn.Angle;
  const Vector3 p = MultiplyVector(scale, TransformPoint(placement.VertexMatrix, vertex));
  const Vector3 axis{turn.X, turn.Y, turn.Z};
  const Vector3 along = ScaleVector(axis, DotProduct(axis, p) * (1 - std::cos(turn.Angle)));
  const Vector3 across = ScaleVector(CrossProduct(axis, p), std::sin(turn.Angle));
  return AddVector(translation, AddVector(ScaleVector(p, std::cos(turn.Angle)), AddVector(across, along)));
}

class RandomBrushes {
 public:
  BrushRecord Next() {
    BrushRecord brush;
    brush.Location = Point(1000);
    brush.PrePivot = Half() ? Point(100) : Vector3();
    if (Half()) brush.Rotation = {Number(70000), Half() ? 0 : Number(70000), Half() ? 0 : Number(70000)};
    if (Half()) brush.MainScale = Scale();
    if (Half()) brush.PostScale = Scale();
    if (Half()) brush.MainSheer = Sheer();
    if (Half()) brush.PostSheer = Sheer();
    return brush;
  }
  Vector3 Point(double size) { return {Number(size), Number(size), Number(size)}; }

 private:
  double Number(double size) { return size * (static_cast<double>(random_() % 20001) / 10000 - 1); }
  bool Half() { return random_() % 2 == 0; }
  double Factor() { return (Half() ? 1 : -1) * ((Half() ? 1 : 0.25) + std::fabs(Number(3))); }
  Vector3 Scale() { return {Factor(), Half() ? 1 : Factor(), Half() ? 1 : Factor()}; }
  /// Rates that the editor snaps to one half.
  SheerRecord Sheer() { return {static_cast<SheerAxis>(random_() % 7), Half() ? 0 : Half() ? 0.6 : -0.6}; }
  std::mt19937 random_{3};
};

double Volume(const Vector3& a, const Vector3& b, const Vector3& c) { return DotProduct(CrossProduct(a, b), c); }

TEST(BrushPlacement, ViewersPlaceBrushesAsTheEditorDoes) {
  RandomBrushes brushes;
  for (int i = 0; i < 3000; ++i) {
    const BrushRecord brush = brushes.Next();
    const BrushPlacement placement = PlaceBrush(brush, SceneSpace(worldScale));
    for (int corner = 0; corner < 4; ++corner) {
      const Vector3 vertex = brushes.Point(200);
      const Vector3 expected = PlacedByEditor(brush, vertex);
      const Vector3 shown = PlacedByViewer(placement, vertex);
      const Vector3 bounded = TransformPoint(placement.WorldMatrix, vertex);
      ASSERT_LT(VectorLength(SubtractVector(shown, expected)), 0.02) << FormatVec(shown) << " " << FormatVec(expected);
      ASSERT_LT(VectorLength(SubtractVector(bounded, expected)), 1e-8);
    }
    // The scene mirrors the editor's winding once; a mirroring scale must be told of.
    const Vector3 origin = PlacedByViewer(placement, {});
    const auto edge = [&](const Vector3& v) { return SubtractVector(PlacedByViewer(placement, v), origin); };
    ASSERT_EQ(Volume(edge({1000, 0, 0}), edge({0, 1000, 0}), edge({0, 0, 1000})) > 0, placement.Mirrored);
    ASSERT_EQ(placement.Scale.find('-'), std::string::npos) << "negative scales belong into the vertices";
  }
}

TEST(BrushPlacement, TheTransformCarriesTheScaleWhereItCan) {
  BrushRecord brush;
  brush.MainScale = {2, 3, 4};
  EXPECT_EQ(PlaceBrush(brush, SceneSpace(1)).Scale, "2 4 3") << "in scene axes";
  brush.PostScale = {1, 0.5, 1};
  EXPECT_EQ(PlaceBrush(brush, SceneSpace(1)).Scale, "2 4 1.5") << "the product without a rotation";
  brush.Rotation.Yaw = 100;
  EXPECT_EQ(PlaceBrush(brush, SceneSpace(1)).Scale, "1 1 1") << "a scale behind a rotation";
  brush.PostScale = {1, 1, 1};
  EXPECT_EQ(PlaceBrush(brush, SceneSpace(1)).Scale, "2 4 3");
}

TEST(BrushPlacement, SnapsTheRateOfASheer) {
  EXPECT_EQ(SnappedSheerRate(0.05), 0);
  EXPECT_EQ(SnappedSheerRate(-0.04), 0);
  EXPECT_NEAR(SnappedSheerRate(-0.3), -0.25, 1e-12);
  EXPECT_EQ(SnappedSheerRate(0.58), 0.5);
  EXPECT_EQ(SnappedSheerRate(-0.62), -0.5);
  EXPECT_NEAR(SnappedSheerRate(1), 0.85, 1e-12);
  // A brush of a real level: its rings stand 128 above and below its pivot.
  BrushRecord brush;
  brush.MainSheer = {SheerAxis::ZX, 0.5};
  const BrushPlacement placement = PlaceBrush(brush, SceneSpace(1));
  EXPECT_NEAR(TransformPoint(placement.WorldMatrix, {0, 0, 128}).X, 57.6, 1e-9);
  EXPECT_NEAR(TransformPoint(placement.WorldMatrix, {0, 0, -128}).X, -57.6, 1e-9);
  EXPECT_EQ(placement.Scale, "1 1 1");
}

PolygonRecord WallWithTexture() {
  PolygonRecord polygon;
  polygon.Origin = {10, 0, 100};
  polygon.TextureU = {1, 0, 0};
  polygon.TextureV = {0, 0, -1}; // V runs down, as textures are stored
  return polygon;
}

TEST(TexturePlane, TexturesStandUprightOnAWall) {
  const TexturePlane plane = MakeTexturePlane(WallWithTexture(), 64, 32);
  // The upper left corner of the image is (0, 1), its lower right one (1, 0).
  EXPECT_EQ(TextureCoordinateOf(plane, {10, 0, 100}), (TexturePoint{0, 1}));
  EXPECT_EQ(TextureCoordinateOf(plane, {74, 5, 68}), (TexturePoint{1, 0}));
}

TEST(TexturePlane, PansByTexelsAndKeepsToTheFormula) {
  PolygonRecord polygon = WallWithTexture();
  polygon.PanU = -80;
  polygon.PanV = 40.4;
  const TexturePoint p = TextureCoordinateOf(MakeTexturePlane(polygon, 64, 32), {42, 0, 100});
  EXPECT_DOUBLE_EQ(p.U, (32 + -16) / 64.0) << "the remainder keeps the sign";
  EXPECT_DOUBLE_EQ(p.V, (0 + (32 - 8)) / 32.0);
}

TEST(TexturePlane, IsOneWhereNothingIsKnown) {
  PolygonRecord polygon = WallWithTexture();
  EXPECT_EQ(TextureCoordinateOf(MakeTexturePlane(polygon, 0, 32), {42, 0, 68}), (TexturePoint{1, 0}));
  EXPECT_EQ(TextureCoordinateOf(MakeTexturePlane(polygon, 64, 0), {42, 0, 68}), (TexturePoint{0.5, 1}));
  polygon.TextureV = {};
  EXPECT_EQ(TextureCoordinateOf(MakeTexturePlane(polygon, 64, 32), {42, 0, 68}), (TexturePoint{1, 1}));
}

} // namespace
} // namespace quarvel
