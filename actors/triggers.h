#pragma once

#include "actors/actor_context.h"
#include "actors/trigger_list.h"

#include <string>

namespace quarvel {

/// Collects the trigger actors that the scene shows, and all dispatchers, into `context.Triggers`.
void ReadTriggers(ActorContext& context, const T3DLevel& level);

/// Notes that the field `fromField` of every trigger that reaches the Tag is to be routed to the node; the routes are
/// made by WriteTriggersAndLinks. A dispatcher's delay is added to times ("enterTime", "exitTime"); "isActive" cannot
/// wait, so then there is no route, and a report. Returns whether any trigger reaches the Tag.
bool NoteLink(ActorContext& context, const std::string& tag, const std::string& fromField, const std::string& toNode,
              const std::string& toField);

/// Writes a proximity sensor of this name and, with `CheckShowTriggers`, a translucent box that shows it. The sensor is
/// twice the radius deep, but only the radius wide.
void WriteTrigger(ActorContext& context, const TriggerBox& trigger, const std::string& name);

/// Writes the sensors of all triggers, the scripts of the dispatchers that delay a link, and the routes of all links.
void WriteTriggersAndLinks(ActorContext& context);

} // namespace quarvel
