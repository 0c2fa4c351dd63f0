#pragma once

#include "math/vector.h"

#include <string>

namespace quarvel {

/// Hue 0 to 767 (six sectors of 128, larger and negative ones are brought into range), saturation and value 0 to 255,
/// on integers.
ColorRGB HsvToRgb(int hue, int saturation, int value);

/// The colour of an Unreal light as three scene components joined by blanks: brightness, hue and saturation are 0 to
/// 255, saturation in Unreal's sense (255 is white). Each channel is brightened by a square root.
std::string LightColor(double brightness, double hue, double saturation);

} // namespace quarvel
