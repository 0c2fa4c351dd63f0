#pragma once

#include "actors/scene_run.h"
#include "actors/trigger_list.h"
#include "scene/scene_context.h"
#include "t3d/light_records.h"
#include "t3d/world_records.h"

#include <string>

namespace quarvel {

/// True for a light that changes while the scene runs: it is always written, and never baked.
bool IsDynamicLight(const LightRecord& light);

/// The name of a light's Transform before it is made unique: from its Tag, or from its Name when the Tag says nothing.
std::string LightDefName(const ActorHeader& header);

/// Writes a light with its sound, its flicker and its sprite, as far as the options want them. Returns the light's DEF
/// name; empty when no light was written.
std::string WriteLight(SceneContext& context, const LightRecord& light);

/// Writes a light that is on while a trigger of its Tag is entered.
void WriteTriggerLight(SceneContext& context, TriggerList& triggers, const TriggerLightRecord& light);

/// Writes the light that lights every surface within `bounds` (scene units) a little, with the zone's ambient colour.
void WriteGlobalAmbientLight(SceneContext& context, const ZoneBlock& zone, const Bounds3& bounds);

/// Writes the sprite of an actor that is nothing else.
void WriteFlare(SceneContext& context, const DisplayRecord& flare);

/// Writes the level's ambient light, its lights, and its flares. Throws RunStopped.
void WriteLights(SceneRun& run);

/// Writes the lights that triggers switch. Their links are noted, not yet written. Throws RunStopped.
void WriteTriggerLights(SceneRun& run);

} // namespace quarvel
