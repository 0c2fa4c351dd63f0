#pragma once

#include "images/image.h"

#include <cstdint>
#include <vector>

namespace quarvel {

/// Reads a jpg image as RGBA, all pixels opaque. Data that ends early or is damaged is an error.
ImageResult ReadJpg(Bytes file);

/// Writes an RGBA image; its alpha is lost. Empty when libjpeg fails.
std::vector<std::uint8_t> WriteJpg(const Image& image);

} // namespace quarvel
