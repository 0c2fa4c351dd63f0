#pragma once

#include "images/image.h"

namespace quarvel {

/// Reads a pcx image of 8 bits with the palette at its end (or in greys, where the header says so), or of 24 bits in
/// three planes. The palette is kept.
ImageResult ReadPcx(Bytes file);

} // namespace quarvel
