#pragma once

#include "t3d/level.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace quarvel {

struct Plane4 {
  double X = 0, Y = 0, Z = 0, W = 0;
};

/// A texture that covers the terrain where its alpha map lets it. No converter uses AlphaMap and the planes: the first
/// layer with a texture covers all of it.
struct TerrainLayer {
  std::string Texture;                   ///< Package.Name; empty when the layer has none
  std::string AlphaMap;                  ///< a reference such as Texture'Package.Name'
  double UScale = 0, VScale = 0;         ///< terrain squares that the texture spans
  Plane4 XPlane, YPlane, ZPlane, WPlane; ///< of the layer's TerrainMatrix
};

/// A height field. No converter uses DecoLayerOffset, SoundVolume, DrawScale, CollisionRadius and CollisionHeight.
struct TerrainRecord {
  ActorHeader Header;
  Vector3 Location; ///< Unreal units
  double DecoLayerOffset = 0;
  Vector3 TerrainScale{1, 1, 1};
  std::string TerrainMap; ///< the image that holds the heights: Package.Name
  std::int16_t SoundVolume = 0;
  double DrawScale = 0;
  double CollisionRadius = 0, CollisionHeight = 0;
  std::array<TerrainLayer, 32> Layers;
  /// Which squares of the field are shown: square n, counted along the rows of samples, by bit n mod 32 of entry n div
  /// 32. Entries that are left out are 0; without any entry the vector is empty and every square is shown.
  std::vector<std::uint32_t> QuadVisibilityBitmap;
};

/// A heightmap of more samples on a side than this is not read.
inline constexpr int MaxTerrainSide = 4096;

/// Reads the record of one of the level's actors.
TerrainRecord ReadTerrain(const T3DLevel& level, const ActorBlock& actor);

} // namespace quarvel
