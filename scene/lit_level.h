#pragma once

#include "scene/carved_level.h"
#include "scene/level_light.h"
#include "scene/level_surface.h"

#include <span>
#include <vector>

namespace quarvel {

/// What light sees of a surface.
LitSurface MakeLitSurface(const std::vector<Vector3>& points, const Vector3& normal, std::uint32_t flags);

/// What light sees of a level: its surfaces, in their order, and behind them those that only cast shadows because they
/// are not written.
std::vector<LitSurface> MakeLitSurfaces(std::span<const LevelSurface> surfaces);
void AddHiddenSurfaces(const SceneContext& context, std::span<const LevelBrush> brushes, const CarvedLevel& level,
                       std::vector<LitSurface>& surfaces);

/// The semisolid brushes of a level that nobody can see into.
SolidMatter MakeSolidMatter(const SceneContext& context, std::span<const LevelBrush> brushes, const CarvedLevel& level);

/// Takes out the surfaces that nobody can see: where such a dark one has an edge in common with a lit one, viewers show
/// dots of it. `lit` is what light sees.
void RemoveBuried(const SolidMatter& matter, std::vector<LevelSurface>& surfaces, std::vector<LitSurface>& lit);

/// Puts the light maps onto the surfaces, which are cut where a page ends; `withColors` adds the light of the corners.
std::vector<LevelSurface> WithLightMaps(std::span<const LevelSurface> surfaces, const BakedLight& baked,
                                        const LevelLight& light, bool withColors);

} // namespace quarvel
