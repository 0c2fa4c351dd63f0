#pragma once

#include "scene/face_sets.h"
#include "scene/scene_context.h"

#include <string>

namespace quarvel {

/// Writes the Shape of a face set. `piece` names its nodes, behind their prefixes, once it is made unique. `mirrored`
/// says that the faces are wound the other way round.
void WriteFaceSet(SceneContext& context, const FaceSet& set, const std::string& piece, bool mirrored = false);

} // namespace quarvel
