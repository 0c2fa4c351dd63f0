#pragma once

#include "scene/scene_context.h"
#include "t3d/world_records.h"

#include <string>

namespace quarvel {

/// Writes the scene's title and author.
void WriteWorldInfo(SceneWriter& scene, const LevelRecord& info);

/// Writes a zone's distance fog. `actor` is the zone's name, for the report of values out of range.
void WriteFog(SceneContext& context, const ZoneBlock& zone, const std::string& actor);

/// Writes the node that inlines the sky zone's own scene at the sky zone's place.
void WriteSkyZoneWorld(SceneContext& context, const SkyZoneRecord& zone);

/// What the sky zone's scenes are called, without extension.
std::string SkySceneName(const SkyZoneRecord& zone);

} // namespace quarvel
