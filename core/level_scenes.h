#pragma once

#include "actors/scene_run.h"
#include "core/conversion_run.h"
#include "core/scene_outputs.h"
#include "core/sky_scene.h"

#include <optional>

namespace quarvel {

/// Writes the scene of a level, and of its sky if that is one of its own. They take their places when all are complete.
/// A stop leaves the text scene as far as it is. Throws RunFailed, RunStopped.
void WriteScenes(const LevelRun& run, const SceneFileNames& files, const ConversionSettings& settings,
                 const std::optional<SkyScene>& sky, SceneOutputs& outputs, RunResult& result);

} // namespace quarvel
