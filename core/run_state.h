#pragma once

#include "actors/actor_context.h"
#include "base/run_interface.h"
#include "core/conversion_run.h"
#include "resources/resource_files.h"
#include "scene/brush_geometry.h"
#include "scene/materials.h"
#include "scene/mesh_inlines.h"
#include "scene/node_writer.h"
#include "scene/text_file.h"
#include "settings/conversion_settings.h"
#include "t3d/level.h"
#include "t3d/world_records.h"

#include <filesystem>
#include <string>

namespace quarvel {

/// Thrown between two actors when the user asked the run to stop; caught by the run alone.
struct RunStopped {};

/// Everything that a run works with while it writes one scene. A level whose sky is a scene of its own has two of them.
struct RunState {
  RunState(const SceneFileNames& files, const ConversionSettings& settings, const T3DLevel& level,
           ResourceFiles& resources, RunInterface& user, RunResult& result);

  const ConversionSettings& Settings;
  const T3DLevel& Level;
  RunInterface& User;
  RunResult& Result;
  const SkyZoneRecord* Sky = nullptr; ///< the sky zone whose own scene this one is to inline
  bool FirstChild = true;             ///< no geometry node has been written yet

  TextFile File;
  SceneWriter Scene;
  ResourceFiles& Resources;
  MaterialWriter Materials;
  MeshInliner Meshes;
  GeometryContext Geometry;
  ActorContext Actors;
  NumberCheck Numbers;
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
    const auto record = ReadShown(run.Actors.Part, run.Level, *actor, read);
    if (!record) continue;
    convert(*record);
    FlushBlock(run);
    StepOn(run);
  }
}

} // namespace quarvel
