#pragma once

#include "actors/scene_part.h"
#include "actors/trigger_list.h"
#include "base/run_interface.h"
#include "core/conversion_run.h"
#include "core/scene_outputs.h"
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

/// What a run adds to the context in which its converters write one scene. A level whose sky is a scene of its own has
/// two of them.
struct RunState {
  /// `sky` is the sky zone whose own scene this one is to inline, nullptr when there is none. `textName` gets the
  /// name of the text scene when it stands.
  RunState(const SceneFileNames& files, const ConversionSettings& settings, const T3DLevel& level,
           const ScenePart& part, const SkyZoneRecord* sky, SceneOutputs& outputs, std::filesystem::path& textName,
           ResourceFiles& resources, NumberCheck& numbers, RunInterface& user, RunResult& result);

  const T3DLevel& Level;
  const ScenePart Part;
  const SkyZoneRecord* const Sky;
  RunResult& Result;
  SceneOutputs& Outputs; ///< of the whole run
  TextFile& File;
  SceneContext Context;
  TriggerList Triggers;
  NumberCheck& Numbers; ///< of the whole run

  const std::string SceneName;       ///< the document's file name without its extension
  std::unique_ptr<LevelLight> Light; ///< where light is baked

  int GeometryCount = 1;         ///< the number of the next brush or mover
  Bounds3 Bounds = InitBounds(); ///< of the brushes and movers, in scene units
  std::size_t ActorsDone = 0;
};

/// Lets the user act between two actors and tells them how far the run is. Throws RunStopped.
void StepOn(RunState& run);

/// Waits while the run is paused. Throws RunStopped when it is to end.
void WaitWhilePaused(RunState& run);

/// Reads every actor of the family that this scene shows, hands it to `convert` and flushes what that wrote as one
/// block. `read` is the record's reader.
template <typename Read, typename Convert>
void ForEachActor(RunState& run, ActorFamily family, Read read, Convert convert);

/// Flushes what the scene text holds, if anything, as one block.
void FlushBlock(RunState& run);

template <typename Read, typename Convert>
void ForEachActor(RunState& run, ActorFamily family, Read read, Convert convert) {
  for (const ActorBlock* actor : run.Level.ActorsOf(family)) {
    const auto record = ReadShown(run.Part, run.Level, *actor, read);
    if (!record) continue;
    convert(*record);
    FlushBlock(run);
    StepOn(run);
  }
}

} // namespace quarvel
