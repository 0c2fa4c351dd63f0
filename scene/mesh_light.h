#pragma once

#include "scene/scene_context.h"

#include <optional>

namespace quarvel {

/// Begins the Group of a mesh that stands at this location, and writes lights of its own into it, since the mesh's file
/// knows nothing of the level's light. Nothing where no light is baked. A browser may let a directional light of VRML97
/// reach beyond its group, so there the meshes share the lights of WriteSharedMeshLights.
std::optional<SceneNode> OpenMeshLight(SceneContext& context, const Vector3& location);

/// Writes the lights that all meshes share, if any: the mean of theirs.
void WriteSharedMeshLights(SceneContext& context);

} // namespace quarvel
