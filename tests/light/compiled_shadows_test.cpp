#include "baked_room.h"
#include "base/run_interface.h"
#include "scene/carved_level.h"
#include "scene/lit_level.h"
#include "t3d/level.h"
#include "t3d/light_records.h"

#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>

namespace quarvel {
namespace {

namespace fs = std::filesystem;

const fs::path packages = QUARVEL_PACKAGES_DIR;

struct ShadowPoint {
  Vector3 Place, Normal;
  std::string Lamp;
  bool Seen = false;
};

Vector3 VectorOf(const nlohmann::json& triple) {
  return {triple[0].get<double>(), triple[1].get<double>(), triple[2].get<double>()};
}

std::vector<ShadowPoint> ReadShadowPoints() {
  std::ifstream file(packages / "compiled-shadows.json");
  std::vector<ShadowPoint> points;
  for (const nlohmann::json& entry : nlohmann::json::parse(file))
    points.push_back({VectorOf(entry["point"]), VectorOf(entry["normal"]), entry["light"].get<std::string>(),
                      entry["seen"].get<int>() == 1});
  return points;
}

/// A level as light sees it, with its lamps by name.
struct ShadowLevel {
  std::vector<LitSurface> Surfaces;
  std::map<std::string, Lamp> Lamps;
};

ShadowLevel ReadShadowLevel() {
  RunInterface user;
  const std::string text = ReadWholeFile(packages / "CheckerMap.t3d", user).value_or("");
  const T3DLevel level(text);
  NumberCheck numbers;
  std::vector<CsgBrush> brushes;
  for (const ActorBlock* actor : level.ActorsOf(ActorFamily::Brush)) {
    BrushRecord brush = ReadBrush(level, *actor, numbers);
    if (IsAdditive(brush) || brush.CsgOper == "CSG_Subtract")
      brushes.push_back(MakeCsgBrush(MakeLevelBrush(std::move(brush))));
  }
  ShadowLevel made;
  const CarvedLevel carved = CarveLevel(brushes);
  for (std::size_t i = 0; i < carved.Faces.size(); ++i)
    made.Surfaces.push_back(
        MakeLitSurface(PointsOf(carved.Mesh, i), carved.Faces[i].Plane.Normal, carved.Faces[i].Flags));
  for (const ActorBlock* actor : level.ActorsOf(ActorFamily::Light)) {
    const LightRecord light = ReadLight(level, *actor);
    made.Lamps[light.Header.Name] = MakeLamp(light, 1);
  }
  return made;
}

class CompiledShadows : public testing::Test {
 protected:
  void SetUp() override {
    if (!fs::exists(packages / "compiled-shadows.json")) GTEST_SKIP() << packages << " is not there";
    points_ = ReadShadowPoints();
    level_ = ReadShadowLevel();
    ASSERT_EQ(points_.size(), 2000U);
  }

  std::vector<ShadowPoint> points_;
  ShadowLevel level_;
};

TEST_F(CompiledShadows, ThePointsSeeTheLampsThatTheEngineLetsThemSee) {
  const ShadowScene shadows(level_.Surfaces);
  std::array<int, 2> agreed{};
  for (const ShadowPoint& point : points_)
    agreed[point.Seen] += shadows.Sees(level_.Lamps.at(point.Lamp), point.Place, point.Normal) == point.Seen;
  EXPECT_EQ(agreed[0], 1000);
  EXPECT_EQ(agreed[1], 1000);
}

TEST_F(CompiledShadows, ThePagesOfOneLampAreBrightAndDarkWhereTheyShouldBe) {
  std::array<int, 2> agreed{}, asked{};
  for (const auto& [name, lamp] : level_.Lamps) {
    const test::BakedScene scene = test::Bake(level_.Surfaces, {lamp});
    for (const ShadowPoint& point : points_) {
      const double light = ToneMapped(LightFrom(lamp, point.Place, point.Normal)).X;
      if (point.Lamp != name || light < 0.02) continue;
      const auto onSurface = [&](const LitSurface& surface) {
        return DotProduct(surface.Normal, point.Normal) > 0.999 &&
               std::fabs(DotProduct(surface.Normal, SubtractVector(point.Place, surface.Points[0]))) < 0.1;
      };
      double found = NAN;
      for (std::size_t i = 0; i < level_.Surfaces.size() && std::isnan(found); ++i)
        if (onSurface(level_.Surfaces[i])) found = scene.At(static_cast<int>(i), point.Place).X;
      ++asked[point.Seen];
      agreed[point.Seen] += (found > light / 2) == point.Seen;
    }
  }
  EXPECT_GT(asked[0], 500);
  EXPECT_GE(agreed[0], asked[0] * 98 / 100) << asked[0];
  EXPECT_GE(agreed[1], asked[1] * 98 / 100) << asked[1];
}

} // namespace
} // namespace quarvel
