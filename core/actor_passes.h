#pragma once

#include "core/run_state.h"

namespace quarvel {

/// The passes over all actors but brushes, movers and cameras, as the table of passes orders them. They throw
/// RunStopped.

/// The level's title and author, and the fog of the level and its zones.
void ScanAmbience(RunState& run);

/// The level's ambient light, its lights, and its flares.
void WriteLights(RunState& run);

/// The sounds that play on and on, and those that play at random.
void WriteAmbientSounds(RunState& run);

/// The node that inlines the sky's own scene, when there is one.
void WriteSkyZone(RunState& run);

/// The lights and the sounds that triggers start. Their links are noted, not yet written.
void WriteTriggerLights(RunState& run);
void WriteTriggeredSounds(RunState& run);

} // namespace quarvel
