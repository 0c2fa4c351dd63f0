#include "baked_room.h"

#include "images/image_png.h"
#include "t3d/light_records.h"

#include <algorithm>
#include <cmath>

namespace quarvel::test {

namespace {

Vector3 PixelOf(const Image& page, int x, int y) {
  const std::size_t at = PixelOffset(page, std::clamp(x, 0, page.Width - 1), std::clamp(y, 0, page.Height - 1));
  return {page.Values[at] / 255.0, page.Values[at + 1] / 255.0, page.Values[at + 2] / 255.0};
}

Vector3 Filtered(const Image& page, const MapPoint& at) {
  const double x = at.U * page.Width - 0.5, y = (1 - at.V) * page.Height - 0.5;
  const int left = static_cast<int>(std::floor(x)), top = static_cast<int>(std::floor(y));
  Vector3 sum;
  for (const int dy : {0, 1})
    for (const int dx : {0, 1}) {
      const double weight = (dx ? x - left : 1 - x + left) * (dy ? y - top : 1 - y + top);
      sum = AddVector(sum, ScaleVector(PixelOf(page, left + dx, top + dy), weight));
    }
  return sum;
}

/// The map coordinate of a point of a triangle of the piece; false when it lies outside.
bool CoordinateIn(const LitPiece& piece, std::size_t corner, const Vector3& point, MapPoint& at) {
  const Vector3 &a = piece.Points[0], b = SubtractVector(piece.Points[corner], a),
                c = SubtractVector(piece.Points[corner + 1], a), p = SubtractVector(point, a);
  const Vector3 normal = CrossProduct(b, c);
  const double area = DotProduct(normal, normal);
  if (area == 0 || std::fabs(DotProduct(normal, p)) > 0.01 * std::sqrt(area)) return false;
  const double s = DotProduct(CrossProduct(p, c), normal) / area, t = DotProduct(CrossProduct(b, p), normal) / area;
  if (s < -1e-9 || t < -1e-9 || s + t > 1 + 1e-9) return false;
  const MapPoint &m = piece.Coordinates[0], &n = piece.Coordinates[corner], &o = piece.Coordinates[corner + 1];
  at = {m.U + s * (n.U - m.U) + t * (o.U - m.U), m.V + s * (n.V - m.V) + t * (o.V - m.V)};
  return true;
}

} // namespace

LitSurface Rectangle(const Vector3& corner, const Vector3& side, const Vector3& otherSide) {
  LitSurface surface;
  const Vector3 next = AddVector(corner, side);
  surface.Points = {corner, next, AddVector(next, otherSide), AddVector(corner, otherSide)};
  surface.Normal = NormalizeVector(CrossProduct(side, otherSide));
  return surface;
}

std::vector<LitSurface> BoxSides(const Vector3& low, const Vector3& high, bool fromWithin) {
  const Vector3 x{high.X - low.X, 0, 0}, y{0, high.Y - low.Y, 0}, z{0, 0, high.Z - low.Z};
  std::vector<LitSurface> sides{Rectangle(low, x, y), Rectangle(AddVector(low, z), y, x),
                                Rectangle(low, y, z), Rectangle(AddVector(low, x), z, y),
                                Rectangle(low, z, x), Rectangle(AddVector(low, y), x, z)};
  for (LitSurface& side : sides) {
    if (fromWithin) continue;
    std::reverse(side.Points.begin(), side.Points.end());
    side.Normal = ScaleVector(side.Normal, -1);
  }
  return sides;
}

void Append(std::vector<LitSurface>& to, const std::vector<LitSurface>& surfaces) {
  to.insert(to.end(), surfaces.begin(), surfaces.end());
}

Lamp LampAt(const Vector3& position, double brightness, double radius) {
  LightRecord light;
  light.Location = position;
  light.LightBrightness = brightness;
  light.LightRadius = radius;
  return MakeLamp(light, 1);
}

Vector3 BakedScene::At(int surface, const Vector3& point) const {
  for (const LitPiece& piece : Light.Pieces) {
    if (piece.Surface != surface) continue;
    MapPoint at;
    for (std::size_t corner = 1; corner + 1 < piece.Points.size(); ++corner)
      if (CoordinateIn(piece, corner, point, at)) return Filtered(Pages[static_cast<std::size_t>(piece.Page)], at);
  }
  return {NAN, NAN, NAN};
}

BakedScene Bake(std::vector<LitSurface> surfaces, const std::vector<Lamp>& lamps, const BakeOptions& options) {
  BakedScene scene;
  scene.Surfaces = std::move(surfaces);
  const ShadowScene shadows(scene.Surfaces);
  scene.Light = BakeLight(scene.Surfaces, lamps, shadows, options);
  for (const std::vector<std::uint8_t>& page : scene.Light.Pages)
    scene.Pages.push_back(ReadPng(page).Picture.value_or(Image()));
  return scene;
}

} // namespace quarvel::test
