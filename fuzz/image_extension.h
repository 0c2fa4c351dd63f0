#pragma once

#include "images/image_type.h"

#include <array>
#include <string_view>

namespace quarvel {

/// An image file as a fuzzer hands it over: its first byte picks the extension, the rest is the file.
struct FuzzedImage {
  FuzzedImage(const std::uint8_t* data, std::size_t size) {
    constexpr std::array<std::string_view, 7> extensions{"png", "jpg", "gif", "bmp", "tga", "pcx", "dds"};
    if (size == 0) return;
    Extension = extensions[data[0] % extensions.size()];
    File = Bytes(data + 1, size - 1);
  }

  std::string_view Extension = "png";
  Bytes File;
};

} // namespace quarvel
