#pragma once

#include "scene/scene_context.h"
#include "t3d/terrain_record.h"

namespace quarvel {

/// Writes a terrain as an elevation grid, or as face sets with `OptionTerrainIFS`. False when there is no heightmap
/// that it can be made of; why not is among the findings.
bool WriteTerrain(SceneContext& context, const TerrainRecord& terrain);

} // namespace quarvel
