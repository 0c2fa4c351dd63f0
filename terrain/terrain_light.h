#pragma once

#include "scene/level_light.h"
#include "scene/scene_space.h"
#include "terrain/heightfield.h"

#include <vector>

namespace quarvel {

/// The baked light at every sample of a terrain.
std::vector<Vector3> TerrainColors(const LevelLight& light, const Heightfield& field, const SceneSpace& space);

/// The same for the points of one of its patches.
std::vector<Vector3> PatchColors(const std::vector<Vector3>& ofSamples, const Heightfield& field,
                                 const TerrainPatch& patch);

} // namespace quarvel
