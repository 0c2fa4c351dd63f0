#pragma once

#include "actors/flights.h"
#include "actors/scene_run.h"
#include "scene/scene_context.h"

#include <string>
#include <vector>

namespace quarvel {

/// Writes each flight as a camera that is moved along it and takes off when it is bound: "FlyThru", "FlyThru2", ... The
/// first one is bound when the scene is loaded.
void WriteFlyThrough(SceneContext& context, const std::vector<Flight>& flights);

/// Declares at the top of the text what the flights need and may not stand in the enclosing Transform of
/// `CheckEnclose`.
void DeclareFlightPrototypes(SceneRun& run);

/// Writes the flights of the level, and with `CheckOutputFlyThruViewpoints` a viewpoint at each of their points.
void WriteFlights(SceneRun& run);

} // namespace quarvel
