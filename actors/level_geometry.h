#pragma once

#include "actors/scene_run.h"

namespace quarvel {

/// Writes the brushes of the level: carved or merged where the options ask for it, else one by one. Throws RunStopped.
void WriteBrushes(SceneRun& run);

} // namespace quarvel
