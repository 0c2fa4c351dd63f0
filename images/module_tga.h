#pragma once

#include "images/image.h"

#include <cstdint>
#include <vector>

namespace quarvel {

/// Reads a tga image with palette, colours or greys, plain or run-length encoded. An alpha channel that is 0 throughout
/// means opaque.
ImageResult ReadTga(Bytes file);

/// Writes an RGBA image as a plain tga of 24 bits, or of 32 when it has a transparent pixel.
std::vector<std::uint8_t> WriteTga(const Image& image);

} // namespace quarvel
