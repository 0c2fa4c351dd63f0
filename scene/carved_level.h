#pragma once

#include "csg/carve.h"
#include "math/matrix.h"
#include "scene/level_surface.h"
#include "scene/scene_context.h"
#include "t3d/brush_record.h"

#include <span>
#include <string>
#include <vector>

namespace quarvel {

/// What is kept of a brush while the level is made of all of them. Locations in Unreal units on the editor's axes.
struct LevelBrush {
  std::string Name;
  std::string Url; ///< percent-encoded; empty when it is no link
  bool Subtracts = false;
  std::uint32_t PolyFlags = 0;
  Matrix4 ToLevel;   ///< from the brush's own coordinates
  Matrix4 FromLevel; ///< the identity when the brush is flattened
  bool Mirrored = false;
  std::vector<PolygonRecord> Polygons;
};

LevelBrush MakeLevelBrush(BrushRecord brush);

/// The brush as carving wants it.
CsgBrush MakeCsgBrush(const LevelBrush& brush);

/// The surfaces of a carved level, but those that nobody sees in the game or that the options leave out.
std::vector<LevelSurface> MakeSurfaces(SceneContext& context, std::span<const LevelBrush> brushes,
                                       const CarvedLevel& level);
/// The polygons of the brushes as they are, less the same.
std::vector<LevelSurface> MakeSurfaces(SceneContext& context, std::span<const LevelBrush> brushes);

} // namespace quarvel
