#pragma once

#include "core/conversion_run.h"
#include "t3d/level.h"
#include "t3d/world_records.h"

#include <filesystem>
#include <optional>
#include <set>

namespace quarvel {

/// The sky zone of a level as a scene of its own, which the level's scene inlines.
struct SkyScene {
  SkyZoneRecord Zone;
  SceneFileNames Files;                ///< beside the level's
  ConversionSettings Settings;         ///< the run's, but the text scene is VRML97, as the level's scene expects it
  std::set<const ActorBlock*> Brushes; ///< where the level is carved: those that it does not tell to be in the zone
};

/// The sky scene that a run is to write: with `CheckSkyZone`, for the first sky zone. None when it would take the place
/// of the level's own scene.
std::optional<SkyScene> PlanSkyScene(const T3DLevel& level, const SceneFileNames& files,
                                     const ConversionSettings& settings, Report& findings);

} // namespace quarvel
