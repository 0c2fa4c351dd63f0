#pragma once

#include "core/run_state.h"

namespace quarvel {

/// Makes every pass over the level, in the order of the nodes in the scene. Throws RunStopped.
void MakePasses(RunState& run);

} // namespace quarvel
