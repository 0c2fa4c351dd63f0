#include "packages/procedural_texture.h"

#include "base/ascii_text.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace quarvel {
namespace {

constexpr int largestSide = 1024;

/// A number from 0 to 255 for a place, the same every time.
std::uint32_t Scatter(std::uint32_t x, std::uint32_t y) {
  std::uint32_t mixed = x * 0x9E3779B1U ^ y * 0x85EBCA6BU;
  mixed = (mixed ^ mixed >> 15) * 0x2C1B3C6DU;
  return (mixed ^ mixed >> 13) & 0xFFU;
}

std::size_t Place(const Image& image, int x, int y) {
  return PixelOffset(image, (x + image.Width) % image.Width, (y + image.Height) % image.Height);
}

/// Heat that rises from scattered sparks, spreads and cools.
void DrawFlames(Image& image) {
  for (int y = 0; y < image.Height; ++y)
    for (int x = 0; x < image.Width; ++x)
      if (Scatter(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y)) < 6)
        image.Values[Place(image, x, y)] = 255;
  // Twice around, so that the flames of the lowest rows go on at the top.
  for (int row = 2 * image.Height; row-- > 0;)
    for (int x = 0; x < image.Width; ++x) {
      const auto heat = [&](int dx, int dy) { return int{image.Values[Place(image, x + dx, row + dy)]}; };
      const int risen = (heat(-1, 1) + 2 * heat(0, 1) + heat(1, 1)) / 4 - 3;
      const std::size_t here = Place(image, x, row);
      image.Values[here] = static_cast<std::uint8_t>(std::max<int>(image.Values[here], risen));
    }
}

/// Waves from three directions, each a whole number of times across the picture.
void DrawRipples(Image& image) {
  constexpr double turn = 2 * std::numbers::pi;
  for (int y = 0; y < image.Height; ++y)
    for (int x = 0; x < image.Width; ++x) {
      const double u = turn * x / image.Width;
      const double v = turn * y / image.Height;
      const double wave = std::sin(3 * u + std::sin(2 * v)) + std::sin(4 * v + std::sin(u)) + std::sin(2 * u - 3 * v);
      image.Values[Place(image, x, y)] = static_cast<std::uint8_t>(std::lround(127.5 + 42.5 * wave));
    }
}

} // namespace

std::optional<Image> MakeProceduralStill(std::string_view className, int width, int height) {
  const bool fire = SameText(className, "FireTexture");
  const bool waves = SameText(className, "WaveTexture") || SameText(className, "WetTexture");
  if (!fire && !waves) return std::nullopt;
  if (width < 1 || height < 1 || width > largestSide || height > largestSide) return std::nullopt;
  Image image = MakeImage(width, height, PixelFormat::Palette8);
  if (fire) DrawFlames(image);
  if (waves) DrawRipples(image);
  return image;
}

} // namespace quarvel
