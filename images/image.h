#pragma once

#include "images/image_type.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quarvel {

/// The largest side, and the most pixels, of an image whose pixels are read; more is refused before memory is taken.
inline constexpr int MaxPixelSide = 16384;
inline constexpr std::uint64_t MaxPixels = 8192ULL * 8192ULL;

using Rgba = std::array<std::uint8_t, 4>;

enum class PixelFormat {
  Rgba8,    ///< `Values` holds red, green, blue, alpha of each pixel
  Palette8, ///< `Values` holds an index into `Palette` for each pixel
  Grey16,   ///< `Samples` holds one value for each pixel
};

/// An image in memory; rows from the top, pixels from the left.
struct Image {
  int Width = 0;
  int Height = 0;
  PixelFormat Format = PixelFormat::Rgba8;
  std::vector<std::uint8_t> Values;
  std::vector<Rgba> Palette; ///< 256 entries when the format is `Palette8`
  std::vector<std::uint16_t> Samples;
};

/// An image, or the reason why there is none: one clause, lower case, without a full stop.
struct ImageResult {
  std::optional<Image> Picture;
  std::string Error;

  explicit operator bool() const { return Picture.has_value(); }
};

/// A result without an image.
ImageResult ImageError(std::string reason);

/// True when an image of this size may be read.
bool MayReadPixels(int width, int height);

/// An image of this size with all values 0.
Image MakeImage(int width, int height, PixelFormat format);

/// The pixel's place in `Values` (of its first value) or `Samples`.
inline std::size_t PixelOffset(const Image& image, int x, int y) {
  const std::size_t pixel =
      static_cast<std::size_t>(y) * static_cast<std::size_t>(image.Width) + static_cast<std::size_t>(x);
  return image.Format == PixelFormat::Rgba8 ? pixel * 4 : pixel;
}

/// What becomes of transparency when an image is brought to RGBA.
enum class Transparency {
  Dropped, ///< all pixels opaque
  Kept,    ///< as the image has it
  Masked,  ///< as the image has it, and palette index 0 is transparent
};

/// The image with red, green, blue and alpha in each pixel; 16-bit samples keep their upper half.
Image ToRgba(Image image, Transparency transparency);

/// True when a pixel of an RGBA image is not opaque.
bool HasTransparentPixel(const Image& image);

/// Some formats have an alpha channel that is often left at 0 throughout; such an image is opaque.
void MakeOpaqueIfAllTransparent(Image& image);

} // namespace quarvel
