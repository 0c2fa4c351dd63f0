#pragma once

#include "actors/scene_run.h"
#include "t3d/world_records.h"

#include <string>

namespace quarvel {

/// Writes the level's title and author, and with `CheckFog` the distance fog of the level and its zones.
void WriteAmbience(SceneRun& run);

/// Writes the node that inlines the sky's own scene at the sky zone's place, when there is one.
void InlineSky(SceneRun& run);

/// What the sky zone's scenes are called, without extension.
std::string SkySceneName(const SkyZoneRecord& zone);

} // namespace quarvel
