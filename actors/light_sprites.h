#pragma once

#include "scene/scene_context.h"
#include "t3d/light_records.h"

#include <string>
#include <string_view>

namespace quarvel {

/// Whether the name of a texture is neither empty nor "None".
bool HasSpriteTexture(std::string_view texture);

/// Whether a sprite is to be drawn: a texture is named, and the sprite has a size. One without a size is reported.
bool HasSprite(SceneContext& context, const DisplayBlock& display, const std::string& actor);

/// Writes the sprite: a flat box that always faces the viewer and can be walked through.
void WriteLightSprite(SceneContext& context, const DisplayBlock& display);

/// Writes the sprite in a Transform of this name that gives it its place.
void WritePlacedSprite(SceneContext& context, const DisplayBlock& display, const Vector3& location,
                       const std::string& name);

} // namespace quarvel
