#pragma once

#include "math/vector.h"
#include "scene/level_surface.h"
#include "scene/scene_context.h"

#include <span>
#include <vector>

namespace quarvel {

/// Surfaces that one shape shows: of one appearance, one light map, one link, all passable or none.
struct SurfaceGroup {
  std::vector<const LevelSurface*> Surfaces;
};

/// More corners than this a shape does not get: browsers count them in 16 bits.
inline constexpr std::size_t MostCorners = 65000;

/// The shapes of the surfaces, in the order in which each kind first occurs. Those that would be too large are cut in
/// the middle of their longest side.
std::vector<SurfaceGroup> GroupSurfaces(std::span<const LevelSurface> surfaces, std::size_t mostCorners = MostCorners);

/// Writes the surfaces as one Transform `CarvedLevel` with a shape for each group. Returns their box, in scene units;
/// nothing is written when there is no surface.
Bounds3 WriteMergedLevel(SceneContext& context, std::span<const LevelSurface> surfaces);

} // namespace quarvel
