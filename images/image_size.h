#pragma once

#include "images/image_type.h"

#include <filesystem>
#include <optional>
#include <string_view>

namespace quarvel {

/// Width and height of an image in pixels, both above 0.
struct ImageSize {
  int Width = 0;
  int Height = 0;

  bool operator==(const ImageSize&) const = default;
};

/// The largest side that a header is believed to state.
inline constexpr int MaxImageSide = 65535;

/// The size of an image file, from its header alone; nothing when the file cannot be read, is of no known format, or
/// its header is truncated or states what the file cannot hold.
std::optional<ImageSize> ReadImageSize(const std::filesystem::path& file);

/// The same for a file in memory; `extension` tells the formats without a signature (tga, pcx).
std::optional<ImageSize> ReadImageSize(Bytes file, std::string_view extension);

} // namespace quarvel
