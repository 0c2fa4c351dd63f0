#include "scene/texture_animation.h"

#include <cmath>
#include <gtest/gtest.h>

namespace quarvel {
namespace {

TextureMovement Movement(TextureMotion motion, int width, int height, const TexturePanSpeeds& speeds) {
  TextureFile image;
  image.Width = width;
  image.Height = height;
  return MovementOf(motion, image, speeds);
}

TEST(TextureMovement, PansThirtyFiveTexelsASecond) {
  const struct {
    TextureMotion Motion;
    int Width, Height;
    TexturePanSpeeds Speeds;
    double Seconds;
    TexturePoint Extent;
  } cases[] = {
      {TextureMotion::PanU, 70, 128, {0.5, 3}, 4, {1, 0}},
      {TextureMotion::PanV, 64, 70, {1, 2}, 1, {0, -1}}, // the engine's V grows downwards
      {TextureMotion::PanU, 70, 70, {-1, 1}, 2, {-1, 0}},
      {TextureMotion::PanU, 0, 0, {1, 1}, 256.0 / 35, {1, 0}},
      {TextureMotion::PanUV, 70, 70, {INFINITY, 2}, 1, {0, -1}},
      {TextureMotion::PanUV, 70, 70, {2, INFINITY}, 1, {1, 0}},
      {TextureMotion::PanU, 64, 64, {INFINITY, 1}, 0, {}},
      {TextureMotion::PanU, 64, 64, {0, 1}, 0, {}},
      {TextureMotion::PanUV, 64, 64, {0, 0}, 0, {}},
      {TextureMotion::Still, 64, 64, {1, 1}, 0, {}},
  };
  for (const auto& [motion, width, height, speeds, seconds, extent] : cases) {
    const TextureMovement movement = Movement(motion, width, height, speeds);
    EXPECT_DOUBLE_EQ(movement.Seconds, seconds);
    EXPECT_EQ(movement.Extent, extent) << speeds.U << " " << speeds.V;
  }
}

TEST(TextureMovement, BothDirectionsComeToWholeTexturesTogether) {
  const TexturePanSpeeds cases[] = {{1, 1}, {0.5, 1.5}, {2, 3}, {-0.7, 0.3}, {1, 0.617}, {3.3, 0.01}, {1, 0}};
  for (const TexturePanSpeeds& speeds : cases) {
    const TextureMovement both = Movement(TextureMotion::PanUV, 128, 64, speeds);
    EXPECT_EQ(both.Extent.U, std::round(both.Extent.U));
    EXPECT_EQ(both.Extent.V, std::round(both.Extent.V));
    EXPECT_NEAR(both.Extent.U / both.Seconds, 35 * speeds.U / 128, std::fabs(speeds.U) * 1e-3);
    EXPECT_NEAR(both.Extent.V / both.Seconds, -35 * speeds.V / 64, std::fabs(speeds.V) * 1e-3);
  }
}

} // namespace
} // namespace quarvel
