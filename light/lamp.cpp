#include "light/lamp.h"

#include "base/ascii_text.h"
#include "math/rotation.h"
#include "t3d/light_records.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quarvel {

namespace {

// Fitted to light maps that the engine itself built: 433 cells of six lamps, with an rms of 1.1 of 255.
constexpr double strengthOfBrightness = 0.01265;
constexpr double darkening = 0.0075; // taken from what each lamp gives
constexpr double unitsOfRadius = 25;
constexpr double coneOfByte = 0.00342;

constexpr double kneeOfTone = 0.8, roomAboveKnee = 1 - kneeOfTone;

double SmoothStep(double t) {
  t = std::clamp(t, 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

/// How much of its full light a type gives on average.
double MeanOfType(const std::string& type) {
  if (SameText(type, "LT_None")) return 0;
  if (SameText(type, "LT_SubtlePulse")) return 0.9;
  for (const char* changing : {"LT_Pulse", "LT_Blink", "LT_Flicker", "LT_Strobe"})
    if (SameText(type, changing)) return 0.5;
  return 1;
}

LampShape ShapeOf(const LightRecord& light) {
  if (light.Kind == LightKind::Directional) return LampShape::Directional;
  const std::string& effect = light.LightEffect;
  if (SameText(effect, "LE_NonIncidence")) return LampShape::NonIncidence;
  if (SameText(effect, "LE_Cylinder")) return LampShape::Cylinder;
  if (SameText(effect, "LE_StaticSpot") || SameText(effect, "LE_Spotlight")) return LampShape::Spot;
  return LampShape::Plain;
}

double FallOff(const Lamp& lamp, double distance) {
  if (lamp.Shape == LampShape::Directional) return 1;
  if (distance >= lamp.Reach) return 0;
  return lamp.Shape == LampShape::Cylinder ? 1 : 1 - SmoothStep(distance / lamp.Reach);
}

double InCone(const Lamp& lamp, const Vector3& toLamp) {
  if (lamp.Shape != LampShape::Spot) return 1;
  const double off = 1 + DotProduct(lamp.Direction, toLamp);
  return off < lamp.Cone ? SmoothStep(1 - off / lamp.Cone) : 0;
}

} // namespace

Vector3 LampColor(double hue, double saturation) {
  const double sector = std::fmod(std::fmod(hue, 255) + 255, 255) / 85;
  const double part = sector - std::floor(sector);
  constexpr std::array<Vector3, 4> corners{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}}};
  const auto from = std::min<std::size_t>(static_cast<std::size_t>(sector), 2);
  const Vector3 pure = AddVector(ScaleVector(corners[from], 1 - part), ScaleVector(corners[from + 1], part));
  const double white = std::clamp(saturation, 0.0, 255.0) / 255;
  return AddVector(ScaleVector(pure, 1 - white), {white, white, white});
}

Lamp MakeLamp(const LightRecord& light, double levelBrightness) {
  Lamp lamp;
  lamp.Name = light.Header.Name;
  lamp.Shape = ShapeOf(light);
  lamp.Position = light.Location;
  lamp.Direction = ToRightHanded(TransformPoint(BrushRotationMatrix(light.Rotation), {1, 0, 0}));
  lamp.Reach = unitsOfRadius * (std::clamp(light.LightRadius, -1.0, 1e6) + 1);
  lamp.Strength = strengthOfBrightness * std::clamp(light.LightBrightness, 0.0, 255.0) *
                  std::max(levelBrightness, 0.0) * MeanOfType(light.LightType);
  lamp.Cone = coneOfByte * std::clamp(light.LightCone, 0.0, 255.0);
  lamp.Color = LampColor(light.LightHue, light.LightSaturation);
  lamp.SpecialLit = light.bSpecialLit;
  return lamp;
}

Vector3 DirectionTo(const Lamp& lamp, const Vector3& point) {
  return lamp.Shape == LampShape::Directional ? ScaleVector(lamp.Direction, -1)
                                              : NormalizeVector(SubtractVector(lamp.Position, point));
}

Vector3 LightFrom(const Lamp& lamp, const Vector3& point, const Vector3& normal) {
  const Vector3 toLamp = DirectionTo(lamp, point);
  const double facing = DotProduct(normal, toLamp);
  if (facing <= 0) return {};
  const double strength = lamp.Strength * FallOff(lamp, VectorLength(SubtractVector(lamp.Position, point))) *
                          InCone(lamp, toLamp) * (lamp.Shape == LampShape::NonIncidence ? 1 : facing);
  const auto channel = [&](double color) { return std::max(strength * color - darkening, 0.0); };
  return {channel(lamp.Color.X), channel(lamp.Color.Y), channel(lamp.Color.Z)};
}

Vector3 ToneMapped(const Vector3& sum) {
  const double largest = std::max({sum.X, sum.Y, sum.Z});
  if (largest <= kneeOfTone) return sum;
  const double bent = kneeOfTone + roomAboveKnee * (1 - std::exp(-(largest - kneeOfTone) / roomAboveKnee));
  return ScaleVector(sum, bent / largest);
}

} // namespace quarvel
