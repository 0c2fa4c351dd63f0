#pragma once

#include "core/run_state.h"

namespace quarvel {

/// Declares at the top of the text what may not stand in the enclosing Transform of `CheckEnclose`.
void WritePrototypes(RunState& run);

/// The passes of everything that is a camera or takes visitors somewhere. Throw RunStopped.
void WriteFlights(RunState& run);
void WriteStarts(RunState& run);
/// The default viewpoint, at the first start or above the level.
void WriteFirstView(RunState& run);
void WriteTeleports(RunState& run);

} // namespace quarvel
