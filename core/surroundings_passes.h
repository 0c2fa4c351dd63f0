#pragma once

#include "core/run_state.h"

namespace quarvel {

// The passes over what surrounds the brushes of a level. They throw RunStopped.

/// Static meshes, or in the older generation the actors whose class has a mesh file.
void ProcessMeshes(RunState& run);

void ProcessTerrain(RunState& run);

/// Sets the texture transforms in motion that the surfaces written so far asked for.
void AnimateTextures(RunState& run);

} // namespace quarvel
