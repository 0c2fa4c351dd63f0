#include "terrain/heightfield.h"

#include <gtest/gtest.h>

namespace quarvel {
namespace {

/// Heights that no mirroring or exchange of rows and columns leaves as they are.
Heightmap SlopingMap(int width, int height) {
  Heightmap map{width, height, {}};
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      map.Samples.push_back(static_cast<std::uint16_t>(32768 + 256 * x + 1024 * y + (x == 1 && y == 0 ? 5000 : 0)));
  return map;
}

TerrainRecord MakeTerrain() {
  TerrainRecord terrain;
  terrain.Location = {1000, -2000, 300};
  terrain.TerrainScale = {64, 32, 16};
  return terrain;
}

Vector3 ScenePoint(const Heightfield& field, int x, int y) {
  return AddVector(field.Corner, {x * field.SpacingX, field.HeightAt(x, y), y * field.SpacingZ});
}

void ExpectNear(const Vector3& got, const Vector3& expected) {
  EXPECT_NEAR(got.X, expected.X, 1e-9);
  EXPECT_NEAR(got.Y, expected.Y, 1e-9);
  EXPECT_NEAR(got.Z, expected.Z, 1e-9);
}

TEST(Heightfield, SamplesStandWhereTheEditorHasThem) {
  const Heightfield field = MakeHeightfield(SlopingMap(4, 3), MakeTerrain(), 1, SceneSpace(0.5));
  // Each is Location + (index - size / 2) x 64 or 32, and 300 + (sample - 32768) x 16 / 256; times one half; (x, z, y).
  ExpectNear(ScenePoint(field, 0, 0), {436, 150, -1024});
  ExpectNear(ScenePoint(field, 3, 0), {532, 174, -1024});
  ExpectNear(ScenePoint(field, 0, 2), {436, 214, -992});
  ExpectNear(ScenePoint(field, 1, 0), {468, 150 + 8 + 156.25, -1024});
}

TEST(Heightfield, TheGroundScaleLeavesHeightsAndTheMiddleAlone) {
  const Heightmap map = SlopingMap(4, 4);
  const Heightfield plain = MakeHeightfield(map, MakeTerrain(), 1, SceneSpace(0.5));
  const Heightfield wide = MakeHeightfield(map, MakeTerrain(), 3, SceneSpace(0.5));
  EXPECT_EQ(wide.Heights, plain.Heights);
  EXPECT_DOUBLE_EQ(wide.SpacingX, 3 * plain.SpacingX);
  ExpectNear(ScenePoint(wide, 2, 2), ScenePoint(plain, 2, 2));
}

TEST(Heightfield, OversizedAndDegenerateTerrainsAreRefused) {
  EXPECT_EQ(WhyNoHeightfield(MakeTerrain(), 4096, 2), "");
  EXPECT_NE(WhyNoHeightfield(MakeTerrain(), 4097, 2), "");
  EXPECT_NE(WhyNoHeightfield(MakeTerrain(), 2, 4097), "");
  EXPECT_NE(WhyNoHeightfield(MakeTerrain(), 1, 64), "");
  TerrainRecord flat = MakeTerrain();
  flat.TerrainScale.Y = 0;
  EXPECT_NE(WhyNoHeightfield(flat, 64, 64), "");
}

TEST(Heightfield, TheBaseLayerIsTheFirstWithATexture) {
  TerrainRecord terrain = MakeTerrain();
  EXPECT_EQ(BaseLayer(terrain), nullptr);
  terrain.Layers[0].UScale = 3;
  terrain.Layers[4] = {.Texture = "Pkg.Sand",
                       .AlphaMap = {},
                       .UScale = 8,
                       .VScale = 4,
                       .XPlane = {},
                       .YPlane = {},
                       .ZPlane = {},
                       .WPlane = {}};
  EXPECT_EQ(BaseLayer(terrain), &terrain.Layers[4]);
  const Heightfield field = MakeHeightfield(SlopingMap(4, 4), terrain, 1, SceneSpace(1));
  EXPECT_EQ(TerrainTexturePoint(field, 2, 3), (TexturePoint{0.25, -0.75}));
}

TEST(TerrainPatch, CoversEverySquareOnceAndFacesUp) {
  const TerrainRecord terrain = MakeTerrain();
  const Heightfield field = MakeHeightfield(SlopingMap(70, 66), terrain, 1, SceneSpace(1));
  double area = 0;
  for (const int top : {0, PatchSquares})
    for (const int left : {0, PatchSquares}) {
      const TerrainPatch patch = MakePatch(field, terrain, left, top);
      ASSERT_EQ(patch.Points.size(), patch.TexturePoints.size());
      for (const Triangle& face : patch.Faces) {
        const auto corner = [&](std::size_t i) { return patch.Points.at(static_cast<std::size_t>(face.at(i))); };
        const Vector3 normal = CrossProduct(SubtractVector(corner(1), corner(0)), SubtractVector(corner(2), corner(0)));
        ASSERT_GT(normal.Y, 0);
        area += normal.Y / 2;
      }
      for (const Vector3& point : patch.Points) {
        const int x = static_cast<int>(point.X / field.SpacingX + 0.5),
                  y = static_cast<int>(point.Z / field.SpacingZ + 0.5);
        ASSERT_EQ(point.Y, field.HeightAt(x, y));
      }
    }
  EXPECT_NEAR(area, 69 * 64.0 * 65 * 32.0, 1e-3);
}

TEST(TerrainPatch, LeavesHiddenSquaresOut) {
  TerrainRecord terrain = MakeTerrain();
  const Heightfield field = MakeHeightfield(SlopingMap(20, 4), terrain, 1, SceneSpace(1));
  EXPECT_EQ(MakePatch(field, terrain, 0, 0).Faces.size(), 2U * 19 * 3);
  // Squares are counted along the samples, 20 to a row: number 33 is the square (13, 1), number 19 none at all.
  terrain.QuadVisibilityBitmap = {1U << 19U, 1U << 1U};
  const TerrainPatch patch = MakePatch(field, terrain, 0, 0);
  EXPECT_EQ(patch.Faces.size(), 2U);
  EXPECT_EQ(patch.Points.size(), 4U);
  EXPECT_DOUBLE_EQ(patch.Points[0].X, 13 * field.SpacingX);
  EXPECT_DOUBLE_EQ(patch.Points[0].Z, 1 * field.SpacingZ);
  EXPECT_FALSE(IsVisibleSquare(terrain, 20, 18, 3)) << "an entry that is missing";
}

} // namespace
} // namespace quarvel
