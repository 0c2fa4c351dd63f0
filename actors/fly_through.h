#pragma once

#include "actors/flights.h"
#include "scene/scene_context.h"

#include <string>
#include <vector>

namespace quarvel {

/// Writes each flight as a camera that is moved along it and takes off when it is bound: "FlyThru", "FlyThru2", ... The
/// first one is bound when the scene is loaded.
void WriteFlyThrough(SceneContext& context, const std::vector<Flight>& flights);

} // namespace quarvel
