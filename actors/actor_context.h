#pragma once

#include "actors/scene_part.h"
#include "actors/trigger_list.h"
#include "base/report.h"
#include "base/run_interface.h"
#include "resources/resource_files.h"
#include "scene/materials.h"
#include "scene/node_writer.h"
#include "settings/conversion_settings.h"

#include <map>
#include <string>

namespace quarvel {

/// An audio clip that stands in the scene and may be used again.
struct WrittenClip {
  std::string Name; ///< its DEF
  std::string Pitch;
};

/// What the converters of actors work with, and what they keep for one scene.
struct ActorContext {
  SceneWriter& Scene;
  const ConversionSettings& Settings;
  ResourceFiles& Resources;
  MaterialWriter& Materials;
  RunInterface& User;
  Report& Findings;

  ScenePart Part{};
  TriggerList Triggers{};
  std::map<std::string, WrittenClip> Clips{}; ///< by the sound file's name in lower case
  bool BooleanFilterDeclared = false;         ///< its prototype stands in the text
};

/// A location of the level as the text of a scene position.
std::string PositionText(const ActorContext& context, const Vector3& location);

/// The DEF name for an actor: `prefix` and its Name, made unique in the scene.
std::string TakeActorName(ActorContext& context, const ActorHeader& header, std::string_view prefix = {});

} // namespace quarvel
