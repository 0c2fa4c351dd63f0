#pragma once

#include "core/run_state.h"

#include <functional>

namespace quarvel {

// The passes over what surrounds the brushes of a level. Each does nothing when its option is off, and throws
// RunStopped.

/// Static meshes, or in the older generation the actors whose class has a mesh file.
void ProcessMeshes(RunState& run);

/// What else than its polygons stands in a mover's Transform: the mesh of one that has no polygons. Empty when nothing
/// does.
std::function<void()> MoverChildren(RunState& run, const BrushRecord& mover);

void ProcessTerrain(RunState& run);

/// Sets the texture transforms in motion that the surfaces written so far asked for.
void AnimateTextures(RunState& run);

} // namespace quarvel
