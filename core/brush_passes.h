#pragma once

#include "core/run_state.h"
#include "t3d/brush_record.h"

#include <optional>

namespace quarvel {

/// The brush or mover of an actor, if this scene shows it.
std::optional<BrushRecord> ShownBrush(RunState& run, const ActorBlock& actor);

/// Writes a brush or mover by itself.
void ConvertBrush(RunState& run, const BrushRecord& brush);

/// Notes that a brush is not written.
void SkipBrush(RunState& run, const BrushRecord& brush);

/// Writes the brushes of the level.
void ProcessBrushes(RunState& run);

} // namespace quarvel
