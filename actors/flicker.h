#pragma once

#include "scene/scene_context.h"
#include "t3d/light_records.h"

#include <string>

namespace quarvel {

/// Whether the light's effect is the one that makes it flicker.
bool Flickers(const LightRecord& light);

/// Writes the script that switches a light on and off at random, and its timer. Returns the timer's name.
std::string WriteFlicker(SceneContext& context, const std::string& base);

/// Connects the timer, the script and the light; where a ROUTE may stand.
void RouteFlicker(SceneContext& context, const std::string& base, const std::string& timer, const std::string& light);

} // namespace quarvel
