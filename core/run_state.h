#pragma once

#include "core/conversion_run.h"
#include "core/conversion_settings.h"
#include "core/run_interface.h"
#include "resources/resource_files.h"
#include "scene/brush_geometry.h"
#include "scene/materials.h"
#include "scene/node_writer.h"
#include "scene/text_file.h"
#include "t3d/actor_index.h"

#include <filesystem>
#include <string>

namespace quarvel {

/// Thrown between two actors when the user asked the run to stop; caught by the run alone.
struct RunStopped {};

/// Everything that one run works with, from its header to its reports.
struct RunState {
  RunState(const std::filesystem::path& inFile, const SceneFileNames& files, const ConversionSettings& settings,
           const LevelText& level, RunInterface& user, RunResult& result, std::string litColor);

  const ConversionSettings& Settings;
  const LevelText& Level;
  RunInterface& User;
  RunResult& Result;
  bool LegacyFormat = true; ///< an export of the older editor generation
  bool FirstChild = true;   ///< no geometry node has been written yet

  SceneWriter Scene;
  TextFile File;
  ResourceFiles Resources;
  MaterialWriter Materials;
  GeometryContext Geometry;
  NumberCheck Numbers;
  std::size_t ActorsDone = 0;
};

/// Lets the user act between two actors and tells them how far the run is. Throws RunStopped.
void StepOn(RunState& run);

/// Waits while the run is paused. Throws RunStopped when it is to end.
void WaitWhilePaused(RunState& run);

/// Flushes what the scene text holds, if anything, as one block.
void FlushBlock(RunState& run);

} // namespace quarvel
