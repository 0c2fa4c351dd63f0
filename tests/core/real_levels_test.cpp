#include "scene/brush_placement.h"
#include "tests/core/converted.h"
#include "tests/scene/scene_readers.h"

#include <array>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <map>

namespace quarvel {
namespace {

namespace fs = std::filesystem;

/// Real exports, which are not part of the project.
class RealLevels : public testing::Test {
 protected:
  void SetUp() override {
    if (!fs::exists(folder_)) GTEST_SKIP() << "no levels in " << folder_;
  }

  std::string Read(const std::string& name) const { return test::ReadFile(folder_ / (name + ".t3d")); }

  const fs::path folder_ = QUARVEL_LEVELS_DIR;
};

void ExpectGoodScenes(const std::string& level, const ConversionSettings& settings) {
  const test::Converted converted = test::Convert(level, settings);
  // Of a fragment without its files, or of lights that never change, nothing is to be seen.
  if (converted.Result.Reason.starts_with("has nothing that arrives in a scene with these options; it holds 1 "))
    return;
  ASSERT_EQ(converted.Result.Outcome, RunOutcome::Done) << converted.Result.Error;
  const test::ReadScene text = test::ReadVrml(converted.Text), document = test::ReadX3D(converted.Document);
  const std::vector<std::string> none;
  EXPECT_EQ(text.Faults, none);
  EXPECT_EQ(settings.CheckConforming ? document.Faults : test::WithoutQuirks(document.Faults), none);
  EXPECT_FALSE(text.Nodes.empty());
  EXPECT_EQ(test::Differences(text, document), none);
}

ConversionSettings ConformingX3D(ConversionSettings settings) {
  settings.CheckConforming = settings.CheckEnclose = settings.OptionFlux = true;
  settings.OptionVRML97 = false;
  return settings;
}

TEST_F(RealLevels, AreTakenByStrictViewers) {
  ConversionSettings settings;
  settings.TextSearchPathTxt = (folder_ / "textures").string();
  for (const auto& entry : fs::directory_iterator(folder_)) {
    const std::string name = entry.path().stem().string();
    if (entry.path().extension() != ".t3d") continue;
    SCOPED_TRACE(name);
    if (name == "utf16-actor" || name == "ue3-terrain-unsupported") {
      EXPECT_EQ(test::Convert(Read(name)).Result.Outcome, RunOutcome::Failed);
      continue;
    }
    ExpectGoodScenes(Read(name), settings);
    ExpectGoodScenes(Read(name), ConformingX3D(settings));
    ConversionSettings carving = settings;
    carving.CheckCarve = carving.CheckMergeLevel = true;
    ExpectGoodScenes(Read(name), carving);
  }
}

using TurnChange = std::function<void(Rotator3&)>;

/// Brushes that a wrong sign of pitch or roll would put elsewhere.
bool IsTilted(const Rotator3& rotation) {
  return std::fmod(rotation.Pitch, 32768) != 0 || std::fmod(rotation.Roll, 32768) != 0;
}

/// How many corners of tilted brushes meet a corner of another brush within 0.01 units, once every rotation was
/// changed.
int CoincidingCorners(const std::string& text, const TurnChange& change) {
  struct Corner {
    Vector3 Point;
    int Brush;
    bool Tilted;
  };
  const T3DLevel level(text);
  NumberCheck check;
  std::map<std::array<long, 3>, std::vector<Corner>> cells;
  const auto cellOf = [](const Vector3& p) {
    return std::array<long, 3>{std::lround(p.X), std::lround(p.Y), std::lround(p.Z)};
  };
  int number = 0;
  for (const ActorBlock* actor : level.ActorsOf(ActorFamily::Brush)) {
    BrushRecord brush = ReadBrush(level, *actor, check);
    ++number;
    if (brush.CsgOper.empty()) continue; // the builder brush stands on what it made last
    const bool tilted = IsTilted(brush.Rotation);
    change(brush.Rotation);
    const BrushPlacement placement = PlaceBrush(brush, SceneSpace(1));
    for (const PolygonRecord& polygon : brush.Polygons)
      for (const Vector3& vertex : polygon.Vertices) {
        const Vector3 point = TransformPoint(placement.WorldMatrix, vertex);
        cells[cellOf(point)].push_back({point, number, tilted});
      }
  }
  int coinciding = 0;
  for (const auto& [cell, corners] : cells)
    coinciding += static_cast<int>(std::count_if(corners.begin(), corners.end(), [&](const Corner& corner) {
      return corner.Tilted && std::any_of(corners.begin(), corners.end(), [&](const Corner& other) {
               return other.Brush != corner.Brush && VectorLength(SubtractVector(other.Point, corner.Point)) < 0.01;
             });
    }));
  return coinciding;
}

TEST_F(RealLevels, TiltedBrushesMeetTheirNeighbours) {
  const auto asIs = [](Rotator3&) {};
  const auto otherRoll = [](Rotator3& r) { r.Roll = -r.Roll; };
  const auto otherPitch = [](Rotator3& r) { r.Pitch = -r.Pitch; };
  const auto otherYaw = [](Rotator3& r) { r.Yaw = -r.Yaw; };
  const std::string rolled = Read("ut99-DM-Liandri"), pitched = Read("ue1-WheelOfTime-crlf");
  EXPECT_GE(CoincidingCorners(rolled, asIs), 170);
  EXPECT_LE(CoincidingCorners(rolled, otherRoll), 30);
  EXPECT_LE(CoincidingCorners(rolled, otherPitch), 140);
  EXPECT_GE(CoincidingCorners(pitched, asIs), 24);
  EXPECT_EQ(CoincidingCorners(pitched, otherPitch), 0);
  EXPECT_EQ(CoincidingCorners(pitched, otherYaw), 0);
}

} // namespace
} // namespace quarvel
