#pragma once

#include "actors/trigger_list.h"
#include "scene/scene_context.h"

namespace quarvel {

/// Writes the routes of all links, whose sensors stand in the scene, and the scripts that they need: of dispatchers
/// that delay something, and of events with so many routes that one script passes them all on.
void WriteLinks(SceneContext& context, const TriggerList& triggers);

} // namespace quarvel
