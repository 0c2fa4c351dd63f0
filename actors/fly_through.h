#pragma once

#include "actors/actor_context.h"
#include "actors/flights.h"

#include <string>
#include <vector>

namespace quarvel {

/// Writes each flight as a camera that is moved along it and takes off when it is bound: "FlyThru", "FlyThru2", ... The
/// first one is bound when the scene is loaded.
void WriteFlyThrough(ActorContext& context, const std::vector<Flight>& flights);

} // namespace quarvel
