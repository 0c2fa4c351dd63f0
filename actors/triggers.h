#pragma once

#include "actors/scene_part.h"
#include "actors/scene_run.h"
#include "actors/trigger_list.h"
#include "scene/scene_context.h"

#include <string>

namespace quarvel {

/// The trigger actors that the scene shows, and all dispatchers.
TriggerList ReadTriggers(SceneContext& context, const ScenePart& part, const T3DLevel& level);

/// Notes that the field `fromField` of every trigger that reaches the Tag is to be routed to the node; the routes are
/// made by WriteTriggersAndLinks. A dispatcher's delay is added to times ("enterTime", "exitTime"); "isActive" cannot
/// wait, so then there is no route, and a report. Returns whether any trigger reaches the Tag.
bool NoteLink(TriggerList& triggers, const std::string& tag, const std::string& fromField, const std::string& toNode,
              const std::string& toField);

/// Writes a proximity sensor of this name and, with `CheckShowTriggers`, a translucent box that shows it. The sensor is
/// twice the radius deep, but only the radius wide.
void WriteTrigger(SceneContext& context, const TriggerBox& trigger, const std::string& name);

/// Writes the sensors of all triggers, the scripts of the dispatchers that delay a link, and the routes of all links.
void WriteTriggersAndLinks(SceneContext& context, const TriggerList& triggers);

/// Reads the triggers into the run, before whatever they start is written.
void CollectTriggers(SceneRun& run);

/// Writes the triggers and all links that were noted, when everything that they start has its name.
void WriteTriggers(SceneRun& run);

} // namespace quarvel
