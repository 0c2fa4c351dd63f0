#pragma once

#include "actors/run_totals.h"
#include "actors/scene_part.h"
#include "actors/trigger_list.h"
#include "base/run_interface.h"
#include "resources/resource_files.h"
#include "scene/level_light.h"
#include "scene/scene_context.h"
#include "scene/text_file.h"
#include "settings/conversion_settings.h"
#include "t3d/level.h"
#include "t3d/world_records.h"

#include <cstddef>
#include <memory>
#include <string>

namespace quarvel {

/// Thrown between two actors when the user asked the run to stop; caught by the run alone.
struct RunStopped {};

/// What all scenes of one run share.
struct LevelRun {
  const T3DLevel& Level;
  ResourceFiles& Resources;
  RunInterface& User;
  NumberCheck& Numbers;
  RunTotals& Totals;
  Report& Findings;
};

/// The making of one scene of a level: what the passes of the families share beyond the context of their converters. A
/// level whose sky is a scene of its own has two of them.
struct SceneRun {
  /// The text goes to `file`. `sky` is the sky zone whose own scene this one is to inline, nullptr when there is none.
  SceneRun(const LevelRun& run, TextFile& file, std::string sceneName, const ConversionSettings& settings,
           const ScenePart& part, const SkyZoneRecord* sky);

  const T3DLevel& Level;
  const ScenePart Part;
  const SkyZoneRecord* const Sky;
  TextFile& File;
  const std::string SceneName; ///< the document's file name without its extension
  SceneContext Context;
  TriggerList Triggers;
  NumberCheck& Numbers; ///< of the whole run
  RunTotals& Totals;    ///< of the whole run

  std::unique_ptr<LevelLight> Light; ///< where light is baked
  int GeometryCount = 1;             ///< the number of the next brush or mover
  Bounds3 Bounds = InitBounds();     ///< of the brushes and movers, in scene units
  std::size_t ActorsDone = 0;
};

/// Lets the user act between two actors and tells them how far the run is. Throws RunStopped.
void StepOn(SceneRun& run);

/// Waits while the run is paused. Throws RunStopped when it is to end.
void WaitWhilePaused(SceneRun& run);

/// Flushes what the scene text holds, if anything, as one block.
inline void FlushBlock(SceneRun& run) { run.Context.Scene.Flush(); }

/// Reads all actors of the family that this scene shows. `read` is the record's reader.
template <typename Read>
auto ReadAllShown(const SceneRun& run, ActorFamily family, Read read) {
  return ReadAllShown(run.Part, run.Level, family, read);
}

/// Reads every actor of the family that this scene shows, hands it to `convert` and flushes what that wrote as one
/// block. `read` is the record's reader.
template <typename Read, typename Convert>
void ForEachActor(SceneRun& run, ActorFamily family, Read read, Convert convert) {
  for (const ActorBlock* actor : run.Level.ActorsOf(family)) {
    const auto record = ReadShown(run.Part, run.Level, *actor, read);
    if (!record) continue;
    convert(*record);
    FlushBlock(run);
    StepOn(run);
  }
}

} // namespace quarvel
