#pragma once

#include "actors/scene_run.h"

namespace quarvel {

/// Places the meshes of the static mesh actors, or in the older generation of the actors whose class has a mesh file.
/// Throws RunStopped.
void PlaceMeshes(SceneRun& run);

} // namespace quarvel
