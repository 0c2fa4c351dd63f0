#include "terrain/terrain_light.h"

#include <algorithm>
#include <cmath>

namespace quarvel {

namespace {

/// In scene axes; from the neighbours of the sample.
Vector3 NormalAt(const Heightfield& field, int x, int y) {
  const int left = std::max(x - 1, 0), right = std::min(x + 1, field.Width - 1);
  const int top = std::max(y - 1, 0), bottom = std::min(y + 1, field.Height - 1);
  const double slopeX = (field.HeightAt(right, y) - field.HeightAt(left, y)) / ((right - left) * field.SpacingX);
  const double slopeZ = (field.HeightAt(x, bottom) - field.HeightAt(x, top)) / ((bottom - top) * field.SpacingZ);
  return NormalizeVector({-slopeX, 1, -slopeZ});
}

} // namespace

std::vector<Vector3> TerrainColors(const LevelLight& light, const Heightfield& field, const SceneSpace& space) {
  std::vector<Vector3> colors;
  colors.reserve(field.Heights.size());
  for (int y = 0; y < field.Height; ++y)
    for (int x = 0; x < field.Width; ++x) {
      const Vector3 position = AddVector(field.Corner, {x * field.SpacingX, field.HeightAt(x, y), y * field.SpacingZ});
      colors.push_back(light.At(space.Location(position), FromSceneAxes(NormalAt(field, x, y))));
    }
  return colors;
}

std::vector<Vector3> PatchColors(const std::vector<Vector3>& ofSamples, const Heightfield& field,
                                 const TerrainPatch& patch) {
  std::vector<Vector3> colors;
  colors.reserve(patch.Points.size());
  for (const Vector3& point : patch.Points)
    colors.push_back(ofSamples[field.Index(static_cast<int>(std::lround(point.X / field.SpacingX)),
                                           static_cast<int>(std::lround(point.Z / field.SpacingZ)))]);
  return colors;
}

} // namespace quarvel
