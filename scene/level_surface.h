#pragma once

#include "math/vector.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quarvel {

/// A flat surface of the level that is written together with others. Whoever makes surfaces may add light maps to them
/// before they are merged.
struct LevelSurface {
  std::vector<Vector3> Points;             ///< Unreal units, the editor's axes; in the order of a brush's polygon
  std::vector<TexturePoint> TexturePoints; ///< as many
  Vector3 Normal;                          ///< of length 1, towards the side that is seen
  int Brush = 0;                           ///< number of the LevelBrush that it comes from
  int Polygon = 0;                         ///< and of the brush's polygon
  std::uint32_t Flags = 0;                 ///< SurfaceFlag bits
  int TextureNumber = 0;                   ///< of the texture's entry among the materials
  bool Passable = false;                   ///< visitors walk through it
  std::string Url;                         ///< percent-encoded address of a surface that is a link, else empty

  int LightPage = -1;                    ///< number of the light map that lights it; -1 for none
  std::vector<TexturePoint> LightPoints; ///< where its corners are on that; as many, or none
  std::vector<Vector3> Colors;           ///< the light of its corners, for scenes without light maps; as many, or none
};

} // namespace quarvel
