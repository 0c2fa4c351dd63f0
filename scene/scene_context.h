#pragma once

#include "base/report.h"
#include "base/run_interface.h"
#include "resources/resource_files.h"
#include "scene/materials.h"
#include "scene/mesh_inlines.h"
#include "scene/node_writer.h"
#include "scene/scene_space.h"
#include "settings/conversion_settings.h"
#include "t3d/actor_index.h"

#include <array>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

class LevelLight;

/// An audio clip that stands in the scene and may be used again.
struct WrittenClip {
  std::string Name; ///< its DEF
  std::string Pitch;
};

/// What every converter works with while one scene is written. It counts nothing: what a converter wrote, it returns.
struct SceneContext {
  /// `file` takes the text. `litColor` is the diffuse colour of surfaces that take light.
  SceneContext(TextFile& file, const ConversionSettings& settings, ResourceFiles& resources, RunInterface& user,
               Report& findings, std::string litColor);
  SceneContext(const SceneContext&) = delete;
  SceneContext& operator=(const SceneContext&) = delete;

  const ConversionSettings& Settings;
  ResourceFiles& Resources;
  RunInterface& User;
  Report& Findings;
  const SceneSpace Space;
  SceneWriter Scene;
  MaterialWriter Materials;
  MeshInliner Meshes;
  const LevelLight* Light = nullptr; ///< the light that is baked into the scene, if any; nothing else lights it then
  std::vector<std::array<Vector3, 4>> MeshLight; ///< what was baked for each mesh, from the SidesOfLight
  std::map<std::string, WrittenClip> Clips;      ///< by the sound file's name in lower case
};

/// The DEF name for an actor: `prefix` and its Name, made unique in the scene.
std::string TakeActorName(SceneContext& context, const ActorHeader& header, std::string_view prefix = {});

} // namespace quarvel
