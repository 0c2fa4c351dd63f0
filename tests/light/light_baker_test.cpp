#include "baked_room.h"
#include "csg/solid_brush.h"
#include "tests/csg/made_brushes.h"

#include <cmath>
#include <gtest/gtest.h>
#include <set>

namespace quarvel {
namespace {

using namespace test;

// The sides of BoxSides.
constexpr int floorSide = 0, lowX = 2, highX = 3;

constexpr double byte = 1.0 / 255;

double Brightest(const Image& page) {
  int most = 0;
  for (std::size_t i = 0; i < page.Values.size(); ++i)
    if (i % 4 != 3) most = std::max<int>(most, page.Values[i]);
  return most * byte;
}

TEST(LightBaker, AFloorUnderALampFollowsTheFormula) {
  const Lamp lamp = LampAt({10, 20, 150}, 50), other = LampAt({300, 20, 90}, 10);
  const std::vector<LitSurface> room = BoxSides({-1000, -1000, 0}, {1000, 1000, 400}, true);
  const BakedScene one = Bake(room, {lamp}), two = Bake(room, {lamp, other});
  for (int i = 0; i < 50; ++i) {
    const Vector3 point{10 + 19.0 * i, 20 + 3.0 * i, 0};
    const double expected = LightFrom(lamp, point, {0, 0, 1}).X;
    ASSERT_LT(expected, 0.8);
    EXPECT_NEAR(one.At(floorSide, point).X, expected, byte) << i;
    EXPECT_NEAR(two.At(floorSide, point).X, expected + LightFrom(other, point, {0, 0, 1}).X, 1.5 * byte) << i;
  }
}

TEST(LightBaker, SpecialLitAndUnlitSurfacesTakeTheirOwnLampsOnly) {
  std::vector<LitSurface> room = BoxSides({0, 0, 0}, {512, 512, 256}, true);
  room[lowX].SpecialLit = true;
  room[highX].TakesLight = false;
  room[floorSide] = Rectangle({0, 0, 0}, {300, 0, 0}, {0, 512, 0});
  room.push_back(Rectangle({300, 0, 0}, {212, 0, 0}, {0, 512, 0}));
  room.back().SpecialLit = true;
  Lamp plain = LampAt({256, 256, 128}), special = plain;
  special.SpecialLit = true;
  const BakedScene scene = Bake(room, {plain});
  EXPECT_GT(scene.At(floorSide, {256, 256, 0}).X, 0.5);
  EXPECT_EQ(scene.At(lowX, {0, 256, 128}).X, 0);
  EXPECT_EQ(scene.At(6, {350, 256, 0}).X, 0) << "in one plane with the rest of the floor";
  EXPECT_TRUE(std::isnan(scene.At(highX, {512, 256, 128}).X));
  const BakedScene ofSpecial = Bake(room, {special});
  EXPECT_EQ(ofSpecial.At(floorSide, {256, 256, 0}).X, 0);
  EXPECT_GT(ofSpecial.At(lowX, {0, 256, 128}).X, 0.5);
  EXPECT_GT(ofSpecial.At(6, {350, 256, 0}).X, 0.3);
}

TEST(LightBaker, SunlightComesFromTheNearestBackdrop) {
  constexpr int ceiling = 1;
  std::vector<LitSurface> place = BoxSides({0, 0, 0}, {512, 512, 256}, true);
  place[ceiling].BlocksSun = false;
  Append(place, BoxSides({0, 0, 400}, {512, 512, 600}, true)); // another room, above the sky
  Lamp sun;
  sun.Shape = LampShape::Directional;
  sun.Direction = {0, 0, -1};
  sun.Strength = 0.5;
  EXPECT_NEAR(Bake(place, {sun}).At(floorSide, {256, 256, 0}).X, 0.5, 0.02);
  place.push_back(Rectangle({128, 128, 128}, {0, 256, 0}, {256, 0, 0}));
  EXPECT_EQ(Bake(place, {sun}).At(floorSide, {256, 256, 0}).X, 0);
}

TEST(LightBaker, NoLightLeavesARoom) {
  // Two rooms with 8 units of solid between them, less than a texel; their floors lie in one plane.
  for (const double shift : {0.0, 3.0, 8.0, 11.0}) {
    std::vector<LitSurface> rooms = BoxSides({shift, 0, 0}, {shift + 500, 500, 250}, true);
    for (const LitSurface& side : BoxSides({shift + 508, 0, 0}, {shift + 1000, 500, 250}, true))
      rooms.push_back(side);
    std::vector<LitSurface> dark = rooms;
    for (std::size_t i = 0; i < 6; ++i)
      dark[i].TakesLight = false;
    EXPECT_EQ(Brightest(Bake(dark, {LampAt({shift + 480, 250, 40}, 255)}).Pages[0]), 0) << shift;
    EXPECT_GT(Brightest(Bake(rooms, {LampAt({shift + 480, 250, 40}, 255)}).Pages[0]), 0.8);
  }
}

/// A floor of four pieces around a wall that stands on it from y = 100 to 600, as carving leaves it.
std::vector<LitSurface> RoomWithWall(double from, double to) {
  std::vector<LitSurface> room = BoxSides({0, 0, 0}, {600, 700, 300}, true);
  room[floorSide] = Rectangle({0, 0, 0}, {from, 0, 0}, {0, 700, 0});
  room.push_back(Rectangle({to, 0, 0}, {600 - to, 0, 0}, {0, 700, 0}));
  room.push_back(Rectangle({from, 0, 0}, {to - from, 0, 0}, {0, 100, 0}));
  room.push_back(Rectangle({from, 600, 0}, {to - from, 0, 0}, {0, 100, 0}));
  for (const LitSurface& side : BoxSides({from, 100, 0}, {to, 600, 300}, false))
    if (side.Normal.Z == 0) room.push_back(side);
  return room;
}

TEST(LightBaker, NoLightLeaksUnderAWall) {
  for (const double width : {4.0, 16.0, 24.0, 40.0}) {
    const BakedScene scene = Bake(RoomWithWall(296, 296 + width), {LampAt({280, 350, 60}, 255)});
    for (double beyond = 0.5; beyond < 40; beyond += 3)
      EXPECT_EQ(scene.At(6, {296 + width + beyond, 350, 0}).X, 0) << width << " " << beyond;
    for (double before = 0.5; before < 14; before += 3)
      EXPECT_GT(scene.At(floorSide, {296 - before, 350, 0}).X, 0.8) << "no dark seam: " << width << " " << before;
  }
}

TEST(LightBaker, TexelsUnderABlockDoNotDarkenTheFloorAroundIt) {
  // The block stands on the floor without cutting it.
  for (const double x : {200.0, 205.0, 211.0}) {
    std::vector<LitSurface> room = BoxSides({0, 0, 0}, {600, 600, 300}, true);
    Append(room, BoxSides({x, 200, -20}, {x + 100, 300, 80}, false));
    const Lamp lamp = LampAt({60, 250, 120});
    const BakedScene scene = Bake(room, {lamp});
    for (double before = 0.5; before < 30; before += 2) {
      const Vector3 point{x - before, 250, 0};
      EXPECT_NEAR(scene.At(floorSide, point).X, LightFrom(lamp, point, {0, 0, 1}).X, 12 * byte) << x << " " << before;
    }
  }
}

TEST(LightBaker, TexelsCentredOnAStepDoNotDarkenTheWallAboveIt) {
  std::vector<LitSurface> room = BoxSides({0, 0, 0}, {600, 600, 300}, true);
  Append(room, BoxSides({200, 200, 0}, {400, 400, 24}, false));
  const auto wall = static_cast<int>(room.size());
  room.push_back(Rectangle({250, 250, 24 + 1e-9}, {0, 0, 150}, {0, 100, 0}));
  const Lamp lamp = LampAt({60, 300, 120});
  const BakedScene scene = Bake(room, {lamp});
  for (double above = 0.5; above < 30; above += 2) {
    const Vector3 point{250, 300, 24 + above};
    EXPECT_NEAR(scene.At(wall, point).X, LightFrom(lamp, point, {-1, 0, 0}).X, 12 * byte) << above;
  }
}

TEST(LightBaker, CoplanarNeighboursMeetWithoutASeam) {
  std::vector<LitSurface> room = BoxSides({0, 0, 0}, {640, 640, 300}, true);
  room[floorSide] = Rectangle({0, 0, 0}, {203, 0, 0}, {0, 640, 0});
  room.push_back(Rectangle({203, 0, 0}, {437, 0, 0}, {0, 640, 0}));
  const std::vector<Lamp> lamps{LampAt({100, 300, 90}), LampAt({500, 100, 60})};
  const BakedScene shared = Bake(room, lamps);
  room.back().Texture = 1;
  const BakedScene apart = Bake(room, lamps);
  EXPECT_LT(shared.Light.Texels, apart.Light.Texels);
  for (double y = 1; y < 640; y += 7) {
    EXPECT_NEAR(apart.At(floorSide, {203, y, 0}).X, apart.At(6, {203, y, 0}).X, 1e-6);
    EXPECT_NEAR(apart.At(floorSide, {150, y, 0}).X, shared.At(floorSide, {150, y, 0}).X, 1e-6);
  }
}

TEST(LightBaker, LargeSurfacesAreCutAtTexelLines) {
  const std::vector<LitSurface> floor{Rectangle({-900, -700, 0}, {1900, 0, 0}, {300, 1500, 0})};
  const Lamp lamp = LampAt({100, 100, 200});
  BakeOptions options;
  options.PageSide = 64;
  const BakedScene scene = Bake(floor, {lamp}, options);
  EXPECT_GT(scene.Light.Pieces.size(), 2U);
  for (double x = -739; x < 1160; x += 17)
    EXPECT_NEAR(scene.At(0, {x, 100, 0}).X, std::min(LightFrom(lamp, {x, 100, 0}, {0, 0, 1}).X, 0.8), byte);
  options.MaxPages = 1;
  const BakedScene coarse = Bake(floor, {lamp}, options);
  EXPECT_EQ(coarse.Light.Pages.size(), 1U);
  EXPECT_EQ(coarse.Light.Texel, 64);
}

TEST(LightBaker, ThePagesDoNotDependOnTheThreads) {
  std::vector<LitSurface> room = RoomWithWall(300, 316);
  Append(room, BoxSides({100, 100, 0}, {180, 180, 50}, false));
  BakeOptions options;
  options.Texel = 4;
  options.PageSide = 256;
  options.Threads = 1;
  const std::vector<Lamp> lamps{LampAt({50, 50, 200}), LampAt({500, 350, 60})};
  const BakedScene one = Bake(room, lamps, options);
  options.Threads = 7;
  EXPECT_GT(one.Light.Pages.size(), 1U);
  EXPECT_EQ(one.Light.Pages, Bake(room, lamps, options).Light.Pages);
}

TEST(LightBaker, TheEdgesOfShadowsHaveNoSteps) {
  const Vector3 along = NormalizeVector({3, 1, 0}), across{-along.Y, along.X, 0};
  std::vector<LitSurface> surfaces{Rectangle({0, 0, 0}, {1024, 0, 0}, {0, 1024, 0}),
                                   Rectangle({0, 300, 100}, ScaleVector(along, 1100), ScaleVector(across, 400))};
  surfaces[1].TakesLight = surfaces[1].BoundsSolid = false;
  Lamp sun;
  sun.Shape = LampShape::Directional;
  sun.Direction = {0, 0, -1};
  sun.Strength = 0.5;
  const BakedScene scene = Bake(surfaces, {sun});
  for (double t = 100; t < 900; t += 3.7) {
    const Vector3 edge = AddVector({0, 300, 0}, ScaleVector(along, t));
    EXPECT_NEAR(scene.At(0, edge).X, 0.25, 0.06) << t;
    EXPECT_NEAR(scene.At(0, AddVector(edge, ScaleVector(across, 40))).X, 0, byte) << t;
    EXPECT_NEAR(scene.At(0, AddVector(edge, ScaleVector(across, -40))).X, 0.5, 0.02) << t;
  }
}

TEST(ShadowScene, SeesWhatNothingHides) {
  std::vector<LitSurface> room = BoxSides({0, 0, 0}, {500, 500, 250}, true);
  LitSurface pane = Rectangle({250, 0, 0}, {0, 500, 0}, {0, 0, 250});
  const Vector3 floor{400, 250, 0}, up{0, 0, 1};
  const Lamp lamp = LampAt({100, 250, 249.9});
  room.push_back(pane);
  EXPECT_FALSE(ShadowScene(room).Sees(lamp, floor, up));
  room.back().BlocksLamps = false;
  const ShadowScene glass(room);
  EXPECT_TRUE(glass.Sees(lamp, floor, up));
  EXPECT_EQ(glass.Light(lamp, floor, up), LightFrom(lamp, floor, up));
  EXPECT_FALSE(glass.InSolid(floor, up));
  EXPECT_TRUE(glass.InSolid({400, 250, -10}, up));
}

TEST(ShadowScene, KnowsTheMatterThatStandsOnSurfaces) {
  std::vector<SolidMatter::Body> bodies;
  for (const CsgBrush& brush : {AddBox({100, 100, 0}, {200, 200, 100}), AddBox({120, 120, 100}, {180, 180, 250})}) {
    const PreparedBrush prepared = PrepareBrush(brush);
    bodies.push_back({prepared.Box, *prepared.Tree});
  }
  const SolidMatter matter(bodies);
  const ShadowScene shadows(BoxSides({0, 0, 0}, {500, 500, 250}, true), matter);
  const Vector3 up{0, 0, 1};
  EXPECT_TRUE(shadows.InSolid({150, 150, 0}, up)) << "though floor and ceiling see each other";
  EXPECT_FALSE(shadows.InSolid({202, 150, 0}, up));
  EXPECT_TRUE(matter.Covers(Rectangle({120, 120, 100}, {0, 60, 0}, {60, 0, 0})));
  EXPECT_TRUE(matter.Covers(Rectangle({120, 120, 100}, {60, 0, 0}, {0, 60, 0})));
  EXPECT_FALSE(matter.Covers(Rectangle({120, 120, 100}, {60, 0, 0}, {0, 63, 0})));
}

} // namespace
} // namespace quarvel
