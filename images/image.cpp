#include "images/image.h"

#include <algorithm>

namespace quarvel {
namespace {

void PaletteToRgba(const Image& from, bool masked, Image& to) {
  for (std::size_t i = 0; i < from.Values.size(); ++i) {
    const std::uint8_t index = from.Values[i];
    Rgba color = index < from.Palette.size() ? from.Palette[index] : Rgba{0, 0, 0, 255};
    if (masked && index == 0) color[3] = 0;
    std::copy(color.begin(), color.end(), to.Values.begin() + static_cast<std::ptrdiff_t>(i * 4));
  }
}

void GreyToRgba(const Image& from, Image& to) {
  for (std::size_t i = 0; i < from.Samples.size(); ++i) {
    const auto grey = static_cast<std::uint8_t>(from.Samples[i] >> 8U);
    const Rgba color{grey, grey, grey, 255};
    std::copy(color.begin(), color.end(), to.Values.begin() + static_cast<std::ptrdiff_t>(i * 4));
  }
}

void SetOpaque(Image& image) {
  for (std::size_t i = 3; i < image.Values.size(); i += 4)
    image.Values[i] = 255;
}

} // namespace

ImageResult ImageError(std::string reason) { return {std::nullopt, std::move(reason)}; }

bool MayReadPixels(int width, int height) {
  if (width < 1 || height < 1 || width > MaxPixelSide || height > MaxPixelSide) return false;
  return static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) <= MaxPixels;
}

Image MakeImage(int width, int height, PixelFormat format) {
  Image image;
  image.Width = width;
  image.Height = height;
  image.Format = format;
  const std::size_t pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  if (format == PixelFormat::Grey16) image.Samples.resize(pixels);
  if (format == PixelFormat::Palette8) image.Values.resize(pixels);
  if (format == PixelFormat::Palette8) image.Palette.assign(256, Rgba{0, 0, 0, 255});
  if (format == PixelFormat::Rgba8) image.Values.resize(pixels * 4);
  return image;
}

Image ToRgba(Image image, Transparency transparency) {
  if (image.Format != PixelFormat::Rgba8) {
    Image converted = MakeImage(image.Width, image.Height, PixelFormat::Rgba8);
    if (image.Format == PixelFormat::Palette8) PaletteToRgba(image, transparency == Transparency::Masked, converted);
    if (image.Format == PixelFormat::Grey16) GreyToRgba(image, converted);
    image = std::move(converted);
  }
  if (transparency == Transparency::Dropped) SetOpaque(image);
  return image;
}

bool HasTransparentPixel(const Image& image) {
  if (image.Format != PixelFormat::Rgba8) return false;
  for (std::size_t i = 3; i < image.Values.size(); i += 4)
    if (image.Values[i] != 255) return true;
  return false;
}

void MakeOpaqueIfAllTransparent(Image& image) {
  if (image.Format != PixelFormat::Rgba8) return;
  for (std::size_t i = 3; i < image.Values.size(); i += 4)
    if (image.Values[i] != 0) return;
  SetOpaque(image);
}

} // namespace quarvel
