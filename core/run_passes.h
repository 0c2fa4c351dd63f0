#pragma once

#include "actors/scene_run.h"

namespace quarvel {

/// Declares at the top of the text what may not stand further down. Before MakePasses.
void DeclarePrototypes(SceneRun& run);

/// Makes every pass over the level, in the order of the nodes in the scene. Throws RunStopped.
void MakePasses(SceneRun& run);

} // namespace quarvel
