#pragma once

#include "scene/node_writer.h"

namespace quarvel {

/// The fields of a NavigationInfo that say how large the visitor is (metres) and how fast (metres a second); `line` is
/// the indentation and the field's name.
void WriteAvatarSize(SceneNode& navigation, const char* line);
void WriteAvatarSpeed(SceneNode& navigation, const char* line);

} // namespace quarvel
