#pragma once

#include "images/image.h"
#include "images/image_headers.h"

namespace quarvel {

/// Reads the largest image of a dds file: uncompressed, or compressed as DXT1, DXT3 or DXT5 (block layout: "S3 Texture
/// Compression" in the Khronos Data Format standard).
ImageResult ReadDds(Bytes file);

/// The pixels of compressed blocks alone, which some files hold without a header.
ImageResult ReadDxt(Bytes blocks, int width, int height, DdsFormat format);

} // namespace quarvel
