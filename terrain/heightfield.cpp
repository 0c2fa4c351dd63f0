#include "terrain/heightfield.h"

#include <algorithm>
#include <cmath>

namespace quarvel {

namespace {

constexpr double middleSample = 32768;
constexpr double samplesPerUnit = 256; // at a TerrainScale.Z of 1

bool IsUsableSpacing(double spacing) { return std::isfinite(spacing) && spacing > 0; }

/// The points of a patch, each made when the first square needs it.
class PatchBuilder {
 public:
  PatchBuilder(const Heightfield& field, int left, int top) : field_(field), left_(left), top_(top) {}

  void AddSquare(int x, int y) {
    const int a = PointAt(x, y), b = PointAt(x + 1, y), c = PointAt(x + 1, y + 1), d = PointAt(x, y + 1);
    patch_.Faces.push_back({a, c, b});
    patch_.Faces.push_back({a, d, c});
  }
  TerrainPatch Take() { return std::move(patch_); }

 private:
  int PointAt(int x, int y) {
    int& index = indices_[static_cast<std::size_t>((y - top_) * (PatchSquares + 1) + x - left_)];
    if (index >= 0) return index;
    index = static_cast<int>(patch_.Points.size());
    patch_.Points.push_back({x * field_.SpacingX, field_.HeightAt(x, y), y * field_.SpacingZ});
    patch_.TexturePoints.push_back(TerrainTexturePoint(field_, x, y));
    return index;
  }

  const Heightfield& field_;
  int left_, top_;
  TerrainPatch patch_;
  std::vector<int> indices_ = std::vector<int>((PatchSquares + 1) * (PatchSquares + 1), -1);
};

} // namespace

const TerrainLayer* BaseLayer(const TerrainRecord& terrain) {
  const auto at = std::find_if(terrain.Layers.begin(), terrain.Layers.end(),
                               [](const TerrainLayer& layer) { return !layer.Texture.empty(); });
  return at == terrain.Layers.end() ? nullptr : &*at;
}

std::string WhyNoHeightfield(const TerrainRecord& terrain, int width, int height) {
  if (width > MaxTerrainSide || height > MaxTerrainSide)
    return "its heightmap is larger than " + std::to_string(MaxTerrainSide) + " pixels on a side";
  if (width < 2 || height < 2) return "its heightmap is less than 2 pixels on a side";
  if (!IsUsableSpacing(terrain.TerrainScale.X) || !IsUsableSpacing(terrain.TerrainScale.Y))
    return "its TerrainScale leaves no room between the samples";
  return {};
}

Vector3 TerrainCorner(int width, int height, const TerrainRecord& terrain, double groundScale) {
  const double spacingX = terrain.TerrainScale.X * groundScale, spacingY = terrain.TerrainScale.Y * groundScale;
  return AddVector(terrain.Location, {-width / 2.0 * spacingX, -height / 2.0 * spacingY, 0});
}

Heightfield MakeHeightfield(const Heightmap& map, const TerrainRecord& terrain, double groundScale,
                            const SceneSpace& space) {
  Heightfield field;
  field.Width = map.Width;
  field.Height = map.Height;
  field.SpacingX = terrain.TerrainScale.X * groundScale * space.Scale();
  field.SpacingZ = terrain.TerrainScale.Y * groundScale * space.Scale();
  field.Corner = space.Position(TerrainCorner(map.Width, map.Height, terrain, groundScale));
  field.Heights.reserve(map.Samples.size());
  const double unitsPerSample = terrain.TerrainScale.Z / samplesPerUnit * space.Scale();
  for (const std::uint16_t sample : map.Samples)
    field.Heights.push_back((sample - middleSample) * unitsPerSample);
  if (const TerrainLayer* layer = BaseLayer(terrain)) {
    if (layer->UScale != 0) field.RepeatU = layer->UScale;
    if (layer->VScale != 0) field.RepeatV = layer->VScale;
  }
  return field;
}

TexturePoint TerrainTexturePoint(const Heightfield& field, int x, int y) {
  return {x / field.RepeatU, -y / field.RepeatV};
}

bool IsVisibleSquare(const TerrainRecord& terrain, int fieldWidth, int x, int y) {
  if (terrain.QuadVisibilityBitmap.empty()) return true;
  const auto square = static_cast<std::size_t>(y) * static_cast<std::size_t>(fieldWidth) + static_cast<std::size_t>(x);
  const std::size_t entry = square / 32;
  return entry < terrain.QuadVisibilityBitmap.size() && (terrain.QuadVisibilityBitmap[entry] >> square % 32 & 1U) != 0;
}

TerrainPatch MakePatch(const Heightfield& field, const TerrainRecord& terrain, int left, int top) {
  PatchBuilder builder(field, left, top);
  const int right = std::min(left + PatchSquares, field.Width - 1);
  const int bottom = std::min(top + PatchSquares, field.Height - 1);
  for (int y = top; y < bottom; ++y)
    for (int x = left; x < right; ++x)
      if (IsVisibleSquare(terrain, field.Width, x, y)) builder.AddSquare(x, y);
  return builder.Take();
}

} // namespace quarvel
