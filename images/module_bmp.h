#pragma once

#include "images/image.h"

#include <cstdint>
#include <vector>

namespace quarvel {

/// Reads a Windows or OS/2 bitmap of 1, 4, 8 (also run-length encoded), 16, 24 or 32 bits. Up to 8 bits the palette is
/// kept. A 32-bit bitmap whose fourth bytes are all 0 is opaque.
ImageResult ReadBmp(Bytes file);

/// Reads the same, but the pixels of a 16-bit bitmap without colour masks as the grey samples of a heightmap.
ImageResult ReadHeightmapBmp(Bytes file);

/// Writes an RGBA image as a bitmap of 24 bits, or of 32 with an alpha mask when it has a transparent pixel.
std::vector<std::uint8_t> WriteBmp(const Image& image);

} // namespace quarvel
