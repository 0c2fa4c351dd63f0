#pragma once

#include "actors/scene_run.h"
#include "scene/scene_context.h"
#include "t3d/placement_records.h"

#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// Where a teleporter's URL leads.
struct TeleportTarget {
  std::string Map; ///< without its extension; empty when the URL names none
  std::string Tag;
};

/// Takes "Tag", "#Tag" and "Map.unr#Tag" apart; what follows a "?" is the game's.
TeleportTarget ParseTeleportURL(std::string_view url);

/// The place 2.3 times the teleporter's radius in front of it, which is outside its own sensor.
PlacementRecord ArrivalPlace(const TeleporterRecord& teleporter);

/// Writes the teleporters: the model of a visible one, an arrival viewpoint, a sensor and the script that binds the
/// destination's viewpoint for whoever enters it. `levelName` is the level's file name without its extension.
void WriteTeleporters(SceneContext& context, const std::vector<TeleporterRecord>& teleporters,
                      const std::string& levelName);

/// Writes all teleporters of the level.
void WriteTeleporters(SceneRun& run);

} // namespace quarvel
