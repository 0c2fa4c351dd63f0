#include "scene/texture_animation.h"
#include "t3d/brush_record.h"
#include "tests/scene/scene_fixture.h"

#include <cmath>
#include <gtest/gtest.h>

namespace quarvel::test {
namespace {

TextureFile Image(int width, int height) {
  TextureFile image;
  image.Width = width;
  image.Height = height;
  return image;
}

TEST(TextureMovement, PansThirtyFiveTexelsASecond) {
  const TextureMovement u = MovementOf(TextureMotion::PanU, Image(70, 128), {0.5, 3});
  EXPECT_DOUBLE_EQ(u.Seconds, 4);
  EXPECT_EQ(u.Extent, (TexturePoint{1, 0}));
  const TextureMovement v = MovementOf(TextureMotion::PanV, Image(64, 70), {1, 2});
  EXPECT_DOUBLE_EQ(v.Seconds, 1);
  EXPECT_EQ(v.Extent, (TexturePoint{0, -1})) << "the engine's V grows downwards";
  EXPECT_EQ(MovementOf(TextureMotion::PanU, Image(70, 70), {-1, 1}).Extent, (TexturePoint{-1, 0}));
  EXPECT_DOUBLE_EQ(MovementOf(TextureMotion::PanU, Image(0, 0), {1, 1}).Seconds, 256.0 / 35);
}

TEST(TextureMovement, NothingMovesWithoutSpeed) {
  EXPECT_EQ(MovementOf(TextureMotion::PanU, Image(64, 64), {0, 1}).Seconds, 0);
  EXPECT_EQ(MovementOf(TextureMotion::PanUV, Image(64, 64), {0, 0}).Seconds, 0);
  EXPECT_EQ(MovementOf(TextureMotion::PanU, Image(64, 64), {INFINITY, 1}).Seconds, 0);
  EXPECT_EQ(MovementOf(TextureMotion::Still, Image(64, 64), {1, 1}).Seconds, 0);
}

TEST(TextureMovement, BothDirectionsComeToWholeTexturesTogether) {
  const TexturePanSpeeds cases[] = {{1, 1}, {0.5, 1.5}, {2, 3}, {-0.7, 0.3}, {1, 0.617}, {3.3, 0.01}, {1, 0}};
  for (const TexturePanSpeeds& speeds : cases) {
    const TextureMovement both = MovementOf(TextureMotion::PanUV, Image(128, 64), speeds);
    EXPECT_EQ(both.Extent.U, std::round(both.Extent.U));
    EXPECT_EQ(both.Extent.V, std::round(both.Extent.V));
    EXPECT_NEAR(both.Extent.U / both.Seconds, 35 * speeds.U / 128, std::fabs(speeds.U) * 1e-3);
    EXPECT_NEAR(both.Extent.V / both.Seconds, -35 * speeds.V / 64, std::fabs(speeds.V) * 1e-3);
  }
}

class TextureAnimationTest : public SceneFixture {
 protected:
  void WriteSurface(std::uint32_t flags) {
    WriteImage("Water.png", MadePngHead(64, 64));
    const SceneNode shape = context_->Scene.Open("", "Shape");
    context_->Materials.WriteAppearance(context_->Materials.TextureNumber("Water", flags), user_);
  }
  std::size_t RoutesOfDocument() {
    context_->Scene.WriteReadyRoutes();
    context_->Scene.FinishRoutes(report_);
    return CountElements("//ROUTE");
  }
};

} // namespace
} // namespace quarvel::test
