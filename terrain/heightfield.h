#pragma once

#include "images/image_file.h"
#include "scene/geometry_fields.h"
#include "scene/scene_space.h"
#include "t3d/terrain_record.h"

#include <string>
#include <vector>

namespace quarvel {

/// A terrain in scene units: rows of samples, along the scene's X from the first row at the lowest Z.
struct Heightfield {
  int Width = 0, Height = 0; ///< samples
  double SpacingX = 0, SpacingZ = 0;
  Vector3 Corner;                  ///< where the first sample would be at the middle height
  std::vector<double> Heights;     ///< above the corner
  double RepeatU = 1, RepeatV = 1; ///< squares that the texture spans

  double HeightAt(int x, int y) const { return Heights[Index(x, y)]; }
  std::size_t Index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(Width) + static_cast<std::size_t>(x);
  }
};

/// The layer that covers the terrain: the first that has a texture; nullptr when none has.
const TerrainLayer* BaseLayer(const TerrainRecord& terrain);

/// Why a field cannot be made of this heightmap: one clause, empty when it can.
std::string WhyNoHeightfield(const TerrainRecord& terrain, int width, int height);

/// A sample s stands Location.Z + (s - 32768) x TerrainScale.Z / 256 high, at Location + (index - size / 2) x
/// TerrainScale, before the scales. `groundScale` is that of the spacing of the samples, not of their heights. A row of
/// the image is a row along the editor's X.
Heightfield MakeHeightfield(const Heightmap& map, const TerrainRecord& terrain, double groundScale,
                            const SceneSpace& space);

/// The editor's place of the first sample at the middle height.
Vector3 TerrainCorner(int width, int height, const TerrainRecord& terrain, double groundScale);

/// Where the texture lies; the image's rows grow downwards, V upwards.
TexturePoint TerrainTexturePoint(const Heightfield& field, int x, int y);

/// True when the level shows the square between the samples (x, y) and (x + 1, y + 1).
bool IsVisibleSquare(const TerrainRecord& terrain, int fieldWidth, int x, int y);

/// How many squares a face set holds to a side.
inline constexpr int PatchSquares = 64;

/// A part of the surface: triangles, as squares are not flat, counterclockwise seen from above.
struct TerrainPatch {
  std::vector<Vector3> Points; ///< from the field's corner
  std::vector<TexturePoint> TexturePoints;
  std::vector<Triangle> Faces; ///< empty when no square is visible
};

/// The patch whose squares begin at (left, top).
TerrainPatch MakePatch(const Heightfield& field, const TerrainRecord& terrain, int left, int top);

} // namespace quarvel
