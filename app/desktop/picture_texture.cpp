#include "app/desktop/picture_texture.h"

#include "app/desktop/qt_text.h"
#include "images/image_file.h"

#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <system_error>

namespace quarvel {

namespace {

constexpr int side = 124;
constexpr std::size_t thumbnailsKept = 200;
constexpr double secondsPerByte = 2.5e-8; // of an image file, decompression included
constexpr double mostTiles = 32;          // across; a face that repeats its texture more often is shown in part

/// Stands for a texture whose image is not there.
QPixmap Checkerboard() {
  QPixmap board(32, 32);
  board.fill(QColor(208, 208, 208));
  QPainter painter(&board);
  painter.fillRect(0, 0, 16, 16, QColor(160, 160, 160));
  painter.fillRect(16, 16, 16, 16, QColor(160, 160, 160));
  return board;
}

QImage LoadImage(const std::filesystem::path& file) {
  ImageResult read = ReadImageFile(file);
  if (!read) return QImage(ToQString(file)); // for types that the converter copies without reading them
  const Image image = ToRgba(std::move(*read.Picture), Transparency::Dropped);
  return QImage(image.Values.data(), image.Width, image.Height, image.Width * 4, QImage::Format_RGBX8888).copy();
}

QPixmap LoadThumbnail(const std::filesystem::path& file, int pixels) {
  const QImage image = LoadImage(file);
  if (image.isNull()) return Checkerboard();
  return QPixmap::fromImage(image.scaled(pixels, pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}

/// The part of the texture plane that is drawn: whole tiles around the corners, and a square of them.
QRectF VisiblePlane(const std::vector<TexturePoint>& corners) {
  QRectF box(0, 0, 0, 0);
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const QRectF point(corners[i].U, corners[i].V, 0, 0);
    if (i == 0)
      box = point;
    else
      box.setCoords(std::min(box.left(), point.x()), std::min(box.top(), point.y()), std::max(box.right(), point.x()),
                    std::max(box.bottom(), point.y()));
  }
  constexpr double nearly = 1e-3; // a face that fits its texture exactly shows one tile
  const double left = std::floor(box.left() + nearly), top = std::floor(box.top() + nearly);
  const double tiles = std::ceil(std::max(box.right() - left, box.bottom() - top) - nearly);
  const double extent = std::clamp(tiles, 1.0, mostTiles);
  return {left, top, extent, extent};
}

} // namespace

void DrawALine(QPainter& painter, const QPointF& from, const QPointF& to) {
  painter.setPen(QPen(QColor(0, 0, 0, 170), 3, Qt::SolidLine, Qt::RoundCap));
  painter.drawLine(from, to);
  painter.setPen(QPen(QColor(255, 230, 90), 1.2, Qt::SolidLine, Qt::RoundCap));
  painter.drawLine(from, to);
}

PictureTexture::PictureTexture(QWidget* parent) : QFrame(parent) {
  setObjectName(QStringLiteral("PictureTexture"));
  setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  setFixedSize(side, side);
  setToolTip(QStringLiteral("The texture of the face that is being converted, and how it lies on it"));
}

void PictureTexture::Show(const TextureMapping& mapping) {
  texture_ = ThumbnailOf(mapping.Image);
  corners_ = mapping.Corners;
  update();
}

void PictureTexture::Clear() {
  texture_ = {};
  corners_.clear();
  update();
}

double PictureTexture::ExpectedCost(const TextureMapping& mapping) const {
  constexpr double drawing = 1e-4;
  if (mapping.Image.empty() || thumbnails_.contains(mapping.Image)) return drawing;
  std::error_code error;
  const auto bytes = std::filesystem::file_size(mapping.Image, error);
  return error ? drawing : drawing + static_cast<double>(bytes) * secondsPerByte;
}

const QPixmap& PictureTexture::ThumbnailOf(const std::filesystem::path& image) {
  if (thumbnails_.size() > thumbnailsKept) thumbnails_.clear();
  const auto [at, isNew] = thumbnails_.try_emplace(image);
  if (isNew)
    at->second = image.empty() ? Checkerboard() : LoadThumbnail(image, static_cast<int>(side * devicePixelRatioF()));
  return at->second;
}

void PictureTexture::paintEvent(QPaintEvent* event) {
  QFrame::paintEvent(event);
  QPainter painter(this);
  if (texture_.isNull()) {
    painter.setPen(palette().color(QPalette::Disabled, QPalette::Text));
    painter.drawText(contentsRect(), Qt::AlignCenter, QStringLiteral("Texture"));
    return;
  }
  const QRectF area = QRectF(contentsRect()).adjusted(2, 2, -2, -2);
  const QRectF plane = VisiblePlane(corners_);
  const double tile = area.width() / plane.width();
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  painter.setClipRect(area);
  QBrush brush(texture_);
  brush.setTransform(
      QTransform::fromTranslate(area.left(), area.top()).scale(tile / texture_.width(), tile / texture_.height()));
  painter.fillRect(area, brush);
  // V grows upward.
  const auto onPicture = [&](const TexturePoint& corner) {
    return QPointF(area.left() + (corner.U - plane.left()) * tile, area.bottom() - (corner.V - plane.top()) * tile);
  };
  for (std::size_t i = 0; i < corners_.size(); ++i)
    DrawALine(painter, onPicture(corners_[i]), onPicture(corners_[(i + 1) % corners_.size()]));
}

} // namespace quarvel
