#include "csg/carve.h"
#include "tests/csg/made_brushes.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace quarvel {
namespace {

using test::AddBox, test::AreaOf, test::MakePrism, test::OfKind, test::SubtractBox;
using Level = std::vector<CsgBrush>;

/// Carves and checks what holds for every level: closed surfaces that face the empty space and lie in their planes.
CarvedLevel Carve(const Level& brushes) {
  CarvedLevel level = CarveLevel(brushes);
  EXPECT_TRUE(level.OpenEdges.empty()) << level.OpenEdges.size() << " open edges";
  EXPECT_TRUE(level.Refused.empty());
  EXPECT_EQ(level.Mesh.Count(), level.Faces.size());
  for (std::size_t i = 0; i < level.Faces.size(); ++i) {
    const std::vector<Vector3> points = PointsOf(level.Mesh, i);
    EXPECT_GT(DotProduct(NewellVector(points), level.Faces[i].Plane.Normal), 0) << "face " << i;
    for (const Vector3& point : points)
      EXPECT_LT(std::fabs(DistanceFrom(level.Faces[i].Plane, point)), 2 * WeldDistance);
  }
  return level;
}

const CsgBrush room = SubtractBox({0, 0, 0}, {100, 200, 50});

TEST(Carve, ARoomIsItsOwnBoxSeenFromInside) {
  const CarvedLevel level = Carve({room});
  EXPECT_NEAR(level.EmptyVolume, 1000000, 1e-6);
  EXPECT_EQ(level.Faces.size(), 6U);
  EXPECT_EQ(level.Mesh.Points.size(), 8U) << "corners are shared";
  for (const CarvedFace& face : level.Faces)
    EXPECT_GT(DistanceFrom(face.Plane, {50, 100, 25}), 0);
}

TEST(Carve, RoomsJoin) {
  // A corridor that ends in the wall of one room and reaches into the other.
  const CarvedLevel level =
      Carve({room, SubtractBox({200, 0, 0}, {300, 200, 50}), SubtractBox({100, 90, 0}, {220, 110, 30})});
  EXPECT_NEAR(level.EmptyVolume, 2000000 + 100 * 20 * 30, 1e-3);
  EXPECT_NEAR(AreaOf(level, 0), 2 * (20000 + 5000 + 10000) - 20 * 30, 1e-3) << "a doorway in the wall";
  EXPECT_NEAR(AreaOf(level, 1), 2 * (20000 + 5000 + 10000) - 20 * 30 - 20 * 20, 1e-3) << "the later floor shows";
  EXPECT_NEAR(AreaOf(level, 2), 120 * 20 + 100 * 20 + 2 * 100 * 30, 1e-3);
}

TEST(Carve, RoomsWithinPillarsWithinRooms) {
  const Vector3 low{0, 0, 0}, high{1000, 1000, 1000};
  const Level brushes{SubtractBox(low, high), AddBox({200, 200, 0}, {800, 800, 1000}),
                      SubtractBox({300, 300, 100}, {700, 700, 900}), SubtractBox({0, 450, 100}, {350, 550, 300})};
  const CarvedLevel level = Carve(brushes);
  const double inner = 400.0 * 400 * 800, door = 100.0 * 100 * 200; // the door beyond pillar and outer room
  EXPECT_NEAR(level.EmptyVolume, 1e9 - 600.0 * 600 * 1000 + inner + door, 1e-2);
}

TEST(Carve, TheOrderDecides) {
  const CsgBrush pillar = AddBox({40, 40, 0}, {60, 60, 50});
  EXPECT_NEAR(Carve({room, pillar}).EmptyVolume, 1000000 - 20 * 20 * 50, 1e-6);
  EXPECT_NEAR(Carve({pillar, room}).EmptyVolume, 1000000, 1e-6);
  EXPECT_EQ(Carve({pillar, room}).Faces.size(), 6U) << "nothing of a pillar that was carved away, and no split";
}

TEST(Carve, OfCoincidingFacesTheLastShowsOnce) {
  const CarvedLevel twice = Carve({room, room});
  EXPECT_NEAR(twice.EmptyVolume, 1000000, 1e-6);
  EXPECT_EQ(AreaOf(twice, 0), 0);
  EXPECT_EQ(twice.Faces.size(), 6U);
  // A block outside the room whose side lies in the room's wall.
  const CarvedLevel behind = Carve({room, AddBox({-10, 50, 0}, {0, 80, 20})});
  EXPECT_NEAR(AreaOf(behind, 1), 30 * 20, 1e-6);
  EXPECT_NEAR(AreaOf(behind), 2 * (20000 + 5000 + 10000), 1e-3);
  // Two rooms that touch become one, two blocks that touch hide what is between them.
  EXPECT_NEAR(Carve({room, SubtractBox({100, 0, 0}, {200, 200, 50})}).EmptyVolume, 2000000, 1e-6);
  const CarvedLevel blocks = Carve({room, AddBox({10, 10, 10}, {20, 20, 20}), AddBox({20, 10, 10}, {30, 20, 20})});
  EXPECT_NEAR(AreaOf(blocks, 1) + AreaOf(blocks, 2), 10 * 100, 1e-3);
}

TEST(Carve, WhatALaterBrushCoversLeavesNoTrace) {
  const CsgBrush covering = AddBox({10, 10, 10}, {60, 60, 40});
  const CarvedLevel with = Carve({room, SubtractBox({20, 20, 20}, {30, 30, 30}, {100, 200, 300}), covering});
  const CarvedLevel without = Carve({room, covering});
  EXPECT_EQ(with.Faces.size(), without.Faces.size());
  EXPECT_EQ(with.EmptyVolume, without.EmptyVolume);
  // One that swallows all others.
  Level brushes;
  for (int i = 0; i < 20; ++i)
    brushes.push_back(test::MakeBox(i % 2 ? CsgOperation::Add : CsgOperation::Subtract, {i * 10.0, 0, 0},
                                    {i * 10.0 + 30, 50, 50}, {i * 100.0, i * 300.0, 0}));
  brushes.push_back(SubtractBox({-500, -500, -500}, {1000, 1000, 1000}));
  EXPECT_EQ(Carve(brushes).Faces.size(), 6U);
  brushes.push_back(AddBox({-500, -500, -500}, {1000, 1000, 1000}));
  EXPECT_TRUE(Carve(brushes).Faces.empty());
}

TEST(Carve, ConcaveBrushesCarve) {
  const std::vector<Vector3> outline{{0, 0, 0},   {90, 0, 0},  {90, 30, 0}, {60, 30, 0},
                                     {60, 60, 0}, {90, 60, 0}, {90, 90, 0}, {0, 90, 0}};
  const double area = 90 * 90 - 30 * 30;
  EXPECT_NEAR(Carve({MakePrism(CsgOperation::Subtract, outline, 40)}).EmptyVolume, area * 40, 1e-3);
  const CarvedLevel block =
      Carve({SubtractBox({-100, -100, -100}, {200, 200, 200}), MakePrism(CsgOperation::Add, outline, 40),
             SubtractBox({20, 20, -50}, {80, 70, 90})});
  EXPECT_NEAR(block.EmptyVolume, 300.0 * 300 * 300 - (area - 60 * 50 + 20 * 30) * 40, 1e-2);
}

TEST(Carve, ABentFaceFoldsOutward) {
  for (const Vector3 corner :
       {Vector3{0, 0, 100}, Vector3{100, 0, 100}, Vector3{100, 100, 100}, Vector3{0, 100, 100}}) {
    CsgBrush box = SubtractBox({0, 0, 0}, {100, 100, 100});
    for (CsgPolygon& polygon : box.Polygons)
      for (Vector3& point : polygon.Points)
        if (point == corner) point.Z += 50;
    EXPECT_NEAR(Carve({box}).EmptyVolume, 1e6 + 2 * 5000 * 50 / 3.0, 1) << corner.X << " " << corner.Y;
  }
}

TEST(Carve, OtherKindsAreCutButDoNotCut) {
  const CsgBrush block = AddBox({-20, 50, 0}, {20, 90, 20}); // half of it in the wall
  for (const CsgKind kind : {CsgKind::Semisolid, CsgKind::NonSolid, CsgKind::Portal}) {
    const CarvedLevel level = Carve({OfKind(block, kind), room});
    EXPECT_NEAR(level.EmptyVolume, 1000000, 1e-6);
    EXPECT_NEAR(AreaOf(level, 1), 2 * (20000 + 5000 + 10000), 1e-3) << "the room is whole";
    EXPECT_NEAR(AreaOf(level, 0), 20 * 40 + 40 * 20 + 2 * 20 * 20, 1e-3) << "neither bottom nor what is in the wall";
  }
  // A sheet across the door between two rooms, larger than the door.
  const CsgBrush sheet{
      CsgOperation::Add, CsgKind::Portal, {{{{100, 0, 0}, {100, 200, 0}, {100, 200, 50}, {100, 0, 50}}, 5}}};
  const CarvedLevel level = Carve({room, SubtractBox({100, 90, 0}, {220, 110, 30}), sheet});
  EXPECT_NEAR(AreaOf(level, 2), 20 * 30, 1e-3);
  EXPECT_EQ(level.Faces.back().Flags, 5U);
  EXPECT_EQ(level.Counts.Sheets, 1);
  EXPECT_EQ(level.Counts.Subtracted, 2);
}

TEST(Carve, CornersBecomeCornersOfTheirNeighbours) {
  const CarvedLevel level = Carve({room, AddBox({40, 0, 0}, {60, 10, 50})});
  // The floor is cut around the pillar, or runs around it; each wall that the pillar touches has its corners.
  for (std::size_t i = 0; i < level.Faces.size(); ++i) {
    const std::vector<Vector3> points = PointsOf(level.Mesh, i);
    for (const Vector3 corner : {Vector3{40, 10, 0}, Vector3{60, 10, 50}, Vector3{40, 0, 0}}) {
      if (std::fabs(DistanceFrom(level.Faces[i].Plane, corner)) > 0.01) continue;
      int onEdges = 0;
      for (std::size_t k = 0; k < points.size(); ++k) {
        const Vector3 &a = points[k], &b = points[(k + 1) % points.size()];
        const double length = VectorLength(SubtractVector(a, b));
        const double detour =
            VectorLength(SubtractVector(a, corner)) + VectorLength(SubtractVector(b, corner)) - length;
        onEdges += detour < 1e-6;
      }
      EXPECT_TRUE(onEdges == 0 || std::find(points.begin(), points.end(), corner) != points.end());
    }
  }
}

TEST(Carve, TellsWhatItCannotCarve) {
  CsgBrush open = SubtractBox({0, 0, 0}, {10, 10, 10});
  open.Polygons.pop_back();
  CsgBrush far = AddBox({0, 0, 0}, {10, 10, 1e9});
  CsgBrush crossed = AddBox({0, 0, 0}, {10, 10, 10});
  std::swap(crossed.Polygons[0].Points[1], crossed.Polygons[0].Points[2]);
  const CarvedLevel level = CarveLevel(Level{open, far, room});
  ASSERT_EQ(level.Refused.size(), 2U);
  EXPECT_EQ(level.Refused[0].Fault, CarveFault::NotClosed);
  EXPECT_EQ(level.Refused[1].Fault, CarveFault::OutOfRange);
  EXPECT_NEAR(level.EmptyVolume, 1000000, 1e-6);
  EXPECT_TRUE(level.OpenEdges.empty());
  // An open brush that adds is a sheet.
  open.Operation = CsgOperation::Add;
  EXPECT_NEAR(AreaOf(CarveLevel(Level{room, open}), 1), 2 * 100, 1e-6) << "one side in each of the walls";
}

TEST(Carve, StopsBetweenTwoBrushes) {
  std::vector<double> told;
  EXPECT_TRUE(CarveLevel(Level{room, room, room, room}, [&](double done) {
                told.push_back(done);
                return done < 0.5;
              }).Stopped);
  EXPECT_EQ(told, (std::vector<double>{0, 0.25, 0.5}));
}

TEST(Carve, DamagedBrushesDoNoHarm) {
  std::mt19937 random(11);
  const auto number = [&] { return static_cast<double>(random() % 2001) / 10 - 100; };
  for (int i = 0; i < 100; ++i) {
    Level brushes{room};
    for (int k = 0; k < 4; ++k) {
      CsgBrush brush = test::MakeBox(k % 2 ? CsgOperation::Add : CsgOperation::Subtract, {number(), number(), number()},
                                     {number(), number(), number()}, {number() * 300, number() * 300, number() * 300});
      CsgPolygon& polygon = brush.Polygons[random() % 6];
      if (random() % 2) polygon.Points[random() % 4] = {number(), number(), number()};
      if (random() % 4 == 0) polygon.Points.resize(random() % 4);
      brushes.push_back(brush);
    }
    const CarvedLevel level = CarveLevel(brushes);
    for (const std::uint32_t corner : level.Mesh.Corners)
      ASSERT_LT(corner, level.Mesh.Points.size());
  }
}

/// How often a ray to the right passes from outside the empty space into it, less how often out of it: 1 when it starts
/// inside.
int TimesInside(const CarvedLevel& level, const Vector3& start) {
  int times = 0;
  for (std::size_t i = 0; i < level.Faces.size(); ++i) {
    const Plane3& plane = level.Faces[i].Plane;
    if (std::fabs(plane.Normal.X) < 1e-9 || DistanceFrom(plane, start) / plane.Normal.X > 0) continue;
    const std::span<const std::uint32_t> corners = level.Mesh.CornersOf(i);
    bool hit = false;
    for (std::size_t k = 0, last = corners.size() - 1; k < corners.size(); last = k++) {
      const Vector3 &a = level.Mesh.Points[corners[k]], &b = level.Mesh.Points[corners[last]];
      if ((a.Z > start.Z) == (b.Z > start.Z)) continue;
      if (start.Y < a.Y + (start.Z - a.Z) * (b.Y - a.Y) / (b.Z - a.Z)) hit = !hit;
    }
    if (hit) times += plane.Normal.X < 0 ? 1 : -1;
  }
  return times;
}

TEST(Carve, RandomTurnedBoxesEncloseWhatTheRuleSays) {
  for (const unsigned seed : {1U, 2U}) {
    std::mt19937 random(seed);
    const auto between = [&](double low, double high) {
      return low + (high - low) * static_cast<double>(random() % 100000) / 100000;
    };
    Level brushes;
    std::vector<std::vector<Plane3>> planes;
    for (int i = 0; i < 200; ++i) {
      const Vector3 low{between(0, 900), between(0, 900), between(0, 900)};
      const Vector3 high = AddVector(low, {between(20, 300), between(20, 300), between(20, 300)});
      const Rotator3 turn = i % 3 ? Rotator3{between(0, 65536), between(0, 65536), between(0, 65536)} : Rotator3{};
      brushes.push_back(test::MakeBox(random() % 2 ? CsgOperation::Add : CsgOperation::Subtract, low, high, turn));
      for (const CsgPolygon& polygon : brushes.back().Polygons) {
        if (planes.size() < brushes.size()) planes.emplace_back();
        planes.back().push_back(PlaneOfPolygon(polygon.Points));
      }
    }
    const CarvedLevel level = Carve(brushes);
    int compared = 0, empty = 0;
    for (int i = 0; i < 500; ++i) {
      const Vector3 point{between(-50, 1250), between(-50, 1250), between(-50, 1250)};
      bool isEmpty = false, isNear = false;
      for (std::size_t k = 0; k < brushes.size(); ++k) {
        double farthest = -1e9;
        for (const Plane3& plane : planes[k])
          farthest = std::max(farthest, DistanceFrom(plane, point));
        isNear = isNear || std::fabs(farthest) < 0.2;
        if (farthest < 0) isEmpty = brushes[k].Operation == CsgOperation::Subtract;
      }
      if (isNear) continue;
      ++compared;
      empty += isEmpty;
      ASSERT_EQ(TimesInside(level, point), isEmpty ? 1 : 0) << point.X << " " << point.Y << " " << point.Z;
    }
    const double share = static_cast<double>(empty) / compared, box = 1300.0 * 1300 * 1300;
    EXPECT_NEAR(level.EmptyVolume / box, share, 4 * std::sqrt(share / compared));
  }
}

} // namespace
} // namespace quarvel
