#pragma once

#include "core/run_state.h"

namespace quarvel {

/// Writes the brushes of the level as one, carved or merged, where the options ask for it. False when the brushes are
/// to be written one by one.
bool ProcessWholeLevel(RunState& run);

} // namespace quarvel
