#pragma once

#include "base/report.h"
#include "scene/node_writer.h"
#include "settings/conversion_settings.h"
#include "t3d/world_records.h"

namespace quarvel {

/// Writes the scene's title and author.
void WriteWorldInfo(SceneWriter& scene, const LevelRecord& info);

/// Writes a zone's distance fog. `actor` is the zone's name, for the report of values out of range.
void WriteFog(SceneWriter& scene, const ConversionSettings& settings, const ZoneBlock& zone, const std::string& actor,
              Report& findings);

/// Writes the node that inlines the sky zone's own scene at the sky zone's place.
void WriteSkyZoneWorld(SceneWriter& scene, const ConversionSettings& settings, const SkyZoneRecord& zone);

/// What the sky zone's scenes are called, without extension.
std::string SkySceneName(const SkyZoneRecord& zone);

} // namespace quarvel
