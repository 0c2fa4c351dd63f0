#include "app/desktop/picture_texture.h"
#include "app/desktop/window_interface.h"
#include "tests/temporary_folder.h"

#include <QApplication>
#include <QImage>
#include <gtest/gtest.h>

namespace quarvel {
namespace {

QImage Drawn(PictureTexture& picture) { return picture.grab().toImage(); }

/// How many pixels are about this colour.
int Count(const QImage& image, const QColor& color) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) {
      const QColor at = image.pixelColor(x, y);
      count +=
          std::abs(at.red() - color.red()) + std::abs(at.green() - color.green()) + std::abs(at.blue() - color.blue()) <
          40;
    }
  return count;
}

TEST(TexturePreview, ShowsTheImageAndTheFaceOnIt) {
  const TemporaryFolder folder;
  const std::filesystem::path file = folder.Path() / "red.png";
  QImage red(8, 8, QImage::Format_RGB32);
  red.fill(Qt::red);
  red.save(QString::fromStdString(file.string()));
  PictureTexture picture(nullptr);
  const int pixels = picture.width() * picture.height();
  picture.Show({file, {}});
  const int withoutLines = Count(Drawn(picture), Qt::red);
  EXPECT_GT(withoutLines, pixels * 8 / 10);
  picture.Show({file, {{0.1, 0.1}, {0.9, 0.1}, {0.9, 0.9}, {0.1, 0.9}}});
  const int withLines = Count(Drawn(picture), Qt::red);
  EXPECT_LT(withLines, withoutLines - 4 * 60) << "no lines";
  EXPECT_GT(withLines, pixels / 2);
  // Far away on the plane, or far too large: still something sensible.
  for (const double size : {1e-9, 1000.0, 1e300})
    picture.Show({file, {{1e5, -1e5}, {1e5 + size, -1e5}, {1e5 + size, -1e5 + size}}}), Drawn(picture);
  picture.Show({folder.Path() / "none.png", {}});
  EXPECT_EQ(Count(Drawn(picture), Qt::red), 0);
}

TEST(TexturePreview, IsAskedForNowAndThenOnly) {
  RunPanel panel(nullptr);
  WindowInterface user(panel);
  user.Begin();
  int shown = 0;
  for (int face = 0; face < 100000; ++face)
    if (user.WantsTextureMapping()) {
      ++shown;
      user.ShowTextureMapping({}, {{0, 0}, {1, 0}, {1, 1}});
    }
  EXPECT_GE(shown, 1);
  EXPECT_LT(shown, 200);
  const QImage before = Drawn(*panel.Picture());
  user.End();
  EXPECT_NE(Drawn(*panel.Picture()), before) << "a run that is over at once leaves no picture";
}

} // namespace
} // namespace quarvel
