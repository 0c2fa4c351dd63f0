#pragma once

#include "images/image.h"

#include <cstdint>
#include <vector>

namespace quarvel {

/// Reads a png image as RGBA.
ImageResult ReadPng(Bytes file);

/// Reads the same, but a grey image of 16 bits as samples.
ImageResult ReadHeightmapPng(Bytes file);

/// Writes an RGBA image, with an alpha channel only when it has a transparent pixel. Empty when libpng fails.
std::vector<std::uint8_t> WritePng(const Image& image);

} // namespace quarvel
