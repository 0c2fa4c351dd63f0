#include "math/color_math.h"

#include "math/number_text.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quarvel {

namespace {

/// value * part / 32640 (255 * 128), rounded up from the half on, at most 255.
int Blend(int value, int part) {
  const int product = value * part;
  const int quotient = product / 32640;
  return std::min(255, product % 32640 >= 16320 ? quotient + 1 : quotient);
}

int HueInRange(int hue) {
  hue %= 768;
  return hue < 0 ? hue + 768 : hue;
}

} // namespace

ColorRGB HsvToRgb(int hue, int saturation, int value) {
  const int s = std::clamp(saturation, 0, 255);
  const int v = std::clamp(value, 0, 255);
  const int h = HueInRange(hue);
  const int f = h & 127;
  const int p = static_cast<int>(std::nearbyint(v * (255.0 - s) / 255));
  const int q = Blend(v, 32640 - f * s);
  const int t = Blend(v, 32640 - (128 - f) * s);
  const std::array<std::array<int, 3>, 6> sectors{{{v, t, p}, {q, v, p}, {p, v, t}, {p, q, v}, {t, p, v}, {v, p, q}}};
  const std::array<int, 3> rgb = s == 0 ? std::array<int, 3>{v, v, v} : sectors[static_cast<std::size_t>(h / 128)];
  return {static_cast<unsigned char>(rgb[0]), static_cast<unsigned char>(rgb[1]), static_cast<unsigned char>(rgb[2])};
}

std::string LightColor(double brightness, double hue, double saturation) {
  const ColorRGB rgb = HsvToRgb(static_cast<int>(RoundToInteger(hue * 3, -32768, 32767)),
                                static_cast<int>(RoundToInteger(255 - saturation, 0, 255)),
                                static_cast<int>(RoundToInteger(brightness, 0, 255)));
  return FormatVec({std::sqrt(rgb.R / 255.0), std::sqrt(rgb.G / 255.0), std::sqrt(rgb.B / 255.0)});
}

} // namespace quarvel
