#pragma once

#include "images/image.h"

#include <optional>
#include <string_view>

namespace quarvel {

/// A still of a texture that the engine draws anew for every frame, as indices of its palette: flames for a
/// FireTexture, ripples for a WaveTexture or WetTexture. The same picture every time, and it tiles. Nothing for other
/// classes, or when the size is none that such a texture has.
std::optional<Image> MakeProceduralStill(std::string_view className, int width, int height);

} // namespace quarvel
