#include "light/lamp.h"
#include "t3d/light_records.h"

#include <cmath>
#include <gtest/gtest.h>

namespace quarvel {
namespace {

constexpr Vector3 up{0, 0, 1};

LightRecord Record(const char* effect = "0") {
  LightRecord light;
  light.Location = {0, 0, 200};
  light.LightEffect = effect;
  return light;
}

/// The red light of the lamp on the floor, `across` units from the point below it.
double OnFloor(const LightRecord& light, double across) { return LightFrom(MakeLamp(light, 1), {across, 0, 0}, up).X; }

void ExpectColor(const Vector3& color, double r, double g, double b) {
  EXPECT_NEAR(color.X, r, 1e-9);
  EXPECT_NEAR(color.Y, g, 1e-9);
  EXPECT_NEAR(color.Z, b, 1e-9);
}

TEST(Lamp, TheHueWheelIsLinearAndSaturationBlendsTowardsWhite) {
  ExpectColor(LampColor(0, 0), 1, 0, 0);
  ExpectColor(LampColor(85, 0), 0, 1, 0);
  ExpectColor(LampColor(170, 0), 0, 0, 1);
  ExpectColor(LampColor(255, 0), 1, 0, 0);
  ExpectColor(LampColor(17, 0), 0.8, 0.2, 0);
  ExpectColor(LampColor(85, 51), 0.2, 1, 0.2);
  ExpectColor(LampColor(123, 255), 1, 1, 1);
}

TEST(Lamp, LightFallsWithDistanceAndAngle) {
  // Brightness 64, radius 64: reach 1625. At 500 units, 200 above: t = 0.307692, 1 - smoothstep 0.774238, N.L 0.4.
  EXPECT_NEAR(OnFloor(Record(), std::sqrt(500.0 * 500 - 200 * 200)), 0.01265 * 64 * 0.7742376 * 0.4 - 0.0075, 1e-6);
  EXPECT_EQ(OnFloor(Record(), 1625), 0);
  EXPECT_EQ(LightFrom(MakeLamp(Record(), 1), {0, 0, 201}, up), Vector3()) << "from behind";
  LightRecord green = Record();
  green.LightHue = 85;
  green.LightSaturation = 0;
  EXPECT_EQ(OnFloor(green, 0), 0);
  EXPECT_GT(LightFrom(MakeLamp(green, 1), {}, up).Y, 0.7);
  EXPECT_NEAR(LightFrom(MakeLamp(Record(), 1.5), {}, up).X + 0.0075, 1.5 * (OnFloor(Record(), 0) + 0.0075), 1e-12);
}

TEST(Lamp, EffectsChangeTheSpread) {
  // 0.01265 x 64 = 0.8096 is the light without any loss; at 300 units across N.L is 0.5547.
  const double plain = OnFloor(Record(), 300);
  EXPECT_NEAR(OnFloor(Record("LE_NonIncidence"), 300) + 0.0075, (plain + 0.0075) / 0.5547002, 1e-6);
  EXPECT_NEAR(OnFloor(Record("LE_Cylinder"), 300), 0.8096 * 0.5547002 - 0.0075, 1e-6);
  EXPECT_EQ(OnFloor(Record("LE_Cylinder"), 1620), 0);
  EXPECT_EQ(OnFloor(Record("LE_TorchWaver"), 300), plain);

  LightRecord spot = Record("LE_StaticSpot");
  spot.Rotation.Pitch = -16384;
  spot.LightCone = 40; // u = 1 where the cosine is 1 - 0.1368, 30.3 degrees off
  EXPECT_NEAR(OnFloor(spot, 0), OnFloor(Record(), 0), 1e-9);
  const double u = (1 - 200 / std::hypot(200, 80)) / 0.1368, s = 1 - u;
  EXPECT_NEAR(OnFloor(spot, 80) + 0.0075, (OnFloor(Record(), 80) + 0.0075) * s * s * (3 - 2 * s), 1e-6);
  EXPECT_EQ(OnFloor(spot, 118), 0);
  spot.LightEffect = "LE_Spotlight";
  EXPECT_EQ(OnFloor(spot, 118), 0);
  // Yaw turns from X towards Y in the editor's axes.
  spot.Rotation = {0, 16384, 0};
  EXPECT_NEAR(MakeLamp(spot, 1).Direction.Y, 1, 1e-9);
}

TEST(Lamp, TypesAndDirectionalLamps) {
  LightRecord light = Record();
  light.LightType = "LT_None";
  EXPECT_EQ(OnFloor(light, 0), 0);
  light.LightType = "LT_Blink";
  EXPECT_NEAR(OnFloor(light, 0) + 0.0075, (OnFloor(Record(), 0) + 0.0075) / 2, 1e-9);
  LightRecord sun = Record();
  sun.Kind = LightKind::Directional;
  sun.Rotation.Pitch = -8192;
  EXPECT_NEAR(OnFloor(sun, 1e5), 0.8096 * std::sqrt(0.5) - 0.0075, 1e-6);
}

TEST(ToneMapped, IsExactUpToItsKneeAndKeepsTheHueAbove) {
  EXPECT_EQ(ToneMapped({0.8, 0.3, 0}), (Vector3{0.8, 0.3, 0}));
  const Vector3 bright = ToneMapped({2, 1, 0.5});
  EXPECT_NEAR(bright.X, 0.8 + 0.2 * (1 - std::exp(-6)), 1e-12);
  EXPECT_NEAR(bright.Y / bright.X, 0.5, 1e-12);
  EXPECT_NEAR(bright.Z / bright.X, 0.25, 1e-12);
}

} // namespace
} // namespace quarvel
