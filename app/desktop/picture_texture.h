#pragma once

#include "scene/brush_placement.h"

#include <QFrame>
#include <QPixmap>
#include <filesystem>
#include <map>
#include <vector>

class QPainter;

namespace quarvel {

/// One face on its texture: the image, and the texture coordinates of the corners.
struct TextureMapping {
  std::filesystem::path Image; ///< empty when there is none
  std::vector<TexturePoint> Corners;
};

/// Draws one line of a mapping, so that it is seen on any texture.
void DrawALine(QPainter& painter, const QPointF& from, const QPointF& to);

/// The texture preview.
class PictureTexture : public QFrame {
  Q_OBJECT

 public:
  explicit PictureTexture(QWidget* parent);

  void Show(const TextureMapping& mapping);
  void Clear();

  /// About how long `Show` will take, in seconds.
  double ExpectedCost(const TextureMapping& mapping) const;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const QPixmap& ThumbnailOf(const std::filesystem::path& image);

  std::map<std::filesystem::path, QPixmap> thumbnails_;
  QPixmap texture_;
  std::vector<TexturePoint> corners_;
};

} // namespace quarvel
