#pragma once

#include "math/vector.h"

#include <string>

namespace quarvel {

struct LightRecord;

/// How a lamp's light is spread.
enum class LampShape {
  Plain,
  NonIncidence, ///< the angle of the surface does not count, only that it faces the lamp
  Spot,         ///< a cone around `Direction`
  Cylinder,     ///< full strength as far as it reaches
  Directional,  ///< from far away, everywhere
};

/// A static light as the baker sees it. Unreal units, the editor's axes.
struct Lamp {
  std::string Name;
  LampShape Shape = LampShape::Plain;
  Vector3 Position;
  Vector3 Direction{1, 0, 0}; ///< of length 1; the way in which the light of a spot or a directional lamp travels
  double Reach = 0;           ///< no light from here on
  double Strength = 0;        ///< right at the lamp, on a surface that faces it; 1 shows a texture as it is
  double Cone = 0;            ///< of a spot: the light ends where 1 - the cosine of the angle off its direction is this
  Vector3 Color{1, 1, 1};
  bool SpecialLit = false; ///< lights special-lit surfaces, and no others
};

/// The lamp that an actor is; its Strength is 0 when it gives no light. `levelBrightness` is the level's own factor,
/// normally 1. A changing light has its mean.
Lamp MakeLamp(const LightRecord& light, double levelBrightness);

/// The linear colour of a hue (0 red, 85 green, 170 blue) and a saturation in Unreal's sense (255 is white).
Vector3 LampColor(double hue, double saturation);

/// What the lamp adds at the point of a surface with that normal when nothing stands between them.
Vector3 LightFrom(const Lamp& lamp, const Vector3& point, const Vector3& normal);

/// The unit vector from the point to where the lamp's light comes from.
Vector3 DirectionTo(const Lamp& lamp, const Vector3& point);

/// Brings a sum of lights to at most 1: exact up to 0.8, from there on the largest channel bends, and the hue is kept.
Vector3 ToneMapped(const Vector3& sum);

} // namespace quarvel
