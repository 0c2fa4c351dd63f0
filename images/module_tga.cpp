#include "images/module_tga.h"

#include "images/bytes.h"
#include "images/color_masks.h"
#include "images/image_headers.h"

#include <algorithm>

namespace quarvel {
namespace {

constexpr std::uint32_t Masks15[4] = {0x7C00, 0x03E0, 0x001F, 0};
constexpr std::uint32_t Masks16[4] = {0x7C00, 0x03E0, 0x001F, 0x8000};
constexpr std::uint32_t Masks24[4] = {0xFF0000, 0x00FF00, 0x0000FF, 0};
constexpr std::uint32_t Masks32[4] = {0xFF0000, 0x00FF00, 0x0000FF, 0xFF000000};
constexpr std::uint32_t MasksGrey8[4] = {0xFF, 0xFF, 0xFF, 0};
constexpr std::uint32_t MasksGrey16[4] = {0xFF, 0xFF, 0xFF, 0xFF00};

PixelMasks MasksOf(int bits, bool alpha) {
  if (bits == 32) return PixelMasks(alpha ? Masks32 : Masks24);
  if (bits == 24) return PixelMasks(Masks24);
  return PixelMasks(bits == 16 && alpha ? Masks16 : Masks15);
}

PixelMasks MasksOf(const TgaHeader& header) {
  if (header.Kind == 3) return PixelMasks(header.BitsPerPixel == 16 ? MasksGrey16 : MasksGrey8);
  // Many writers leave the count of alpha bits at 0 though the fourth byte holds alpha.
  return MasksOf(header.BitsPerPixel, header.BitsPerPixel == 32 || header.AlphaBits > 0);
}

std::uint32_t PixelAt(ByteView file, std::size_t at, std::size_t bytes) {
  std::uint32_t pixel = 0;
  for (std::size_t i = 0; i < bytes; ++i)
    pixel |= file.U8(at + i) << (8U * static_cast<unsigned>(i));
  return pixel;
}

std::vector<Rgba> ReadPalette(ByteView file, const TgaHeader& header) {
  std::vector<Rgba> palette(256, Rgba{0, 0, 0, 255});
  const auto bytes = static_cast<std::size_t>((header.PaletteBits + 7) / 8);
  const PixelMasks masks = MasksOf(header.PaletteBits, header.PaletteBits == 32);
  for (int i = 0; i < header.PaletteCount && header.PaletteFirst + i < 256; ++i) {
    const std::size_t at = header.PaletteOffset + static_cast<std::size_t>(i) * bytes;
    palette[static_cast<std::size_t>(header.PaletteFirst + i)] = masks(PixelAt(file, at, bytes));
  }
  return palette;
}

/// Yields the pixels' bits one after the other, whether they are run-length encoded or not.
class PixelReader {
 public:
  PixelReader(ByteView file, const TgaHeader& header)
      : file_(file), at_(header.DataOffset), bytes_(static_cast<std::size_t>((header.BitsPerPixel + 7) / 8)),
        rle_(header.Rle) {}

  bool Next(std::uint32_t& pixel) {
    if (rle_ && left_ == 0) {
      if (!file_.Has(at_, 1)) return false;
      const std::uint32_t packet = file_.U8(at_++);
      left_ = static_cast<int>(packet & 127U) + 1;
      run_ = (packet & 128U) != 0;
      if (run_ && !Take(value_)) return false;
    }
    --left_;
    if (!rle_ || !run_) return Take(pixel);
    pixel = value_;
    return true;
  }

 private:
  bool Take(std::uint32_t& pixel) {
    if (!file_.Has(at_, bytes_)) return false;
    pixel = PixelAt(file_, at_, bytes_);
    at_ += bytes_;
    return true;
  }

  ByteView file_;
  std::size_t at_;
  std::size_t bytes_;
  bool rle_;
  bool run_ = false;
  int left_ = 0;
  std::uint32_t value_ = 0;
};

} // namespace

ImageResult ReadTga(Bytes bytes) {
  const ByteView file(bytes);
  const auto header = ReadTgaHeader(file, bytes.size());
  if (!header) return ImageError("the tga header cannot be read");
  if (!MayReadPixels(header->Size.Width, header->Size.Height)) return ImageError("the image is too large");
  const PixelMasks masks = MasksOf(*header);
  const std::vector<Rgba> palette = header->Kind == 1 ? ReadPalette(file, *header) : std::vector<Rgba>();
  Image image = MakeImage(header->Size.Width, header->Size.Height, PixelFormat::Rgba8);
  PixelReader pixels(file, *header);
  for (int row = 0; row < image.Height; ++row)
    for (int column = 0; column < image.Width; ++column) {
      std::uint32_t bits = 0;
      if (!pixels.Next(bits)) return ImageError("the tga data is truncated");
      const Rgba color = palette.empty() ? masks(bits) : palette[bits & 255U];
      const int x = header->RightToLeft ? image.Width - 1 - column : column;
      const int y = header->TopDown ? row : image.Height - 1 - row;
      std::copy(color.begin(), color.end(),
                image.Values.begin() + static_cast<std::ptrdiff_t>(PixelOffset(image, x, y)));
    }
  MakeOpaqueIfAllTransparent(image);
  return {std::move(image), {}};
}

std::vector<std::uint8_t> WriteTga(const Image& image) {
  const bool alpha = HasTransparentPixel(image);
  const auto low = [](int value) { return static_cast<std::uint8_t>(value & 255); };
  const auto high = [](int value) { return static_cast<std::uint8_t>(value >> 8 & 255); };
  std::vector<std::uint8_t> out(12, std::uint8_t{0});
  out[2] = 2; // colours, plain
  out.insert(out.end(), {low(image.Width), high(image.Width), low(image.Height), high(image.Height)});
  out.push_back(alpha ? 32 : 24);
  out.push_back(alpha ? 8 : 0);
  for (int y = image.Height - 1; y >= 0; --y) // readers that ignore the direction flag expect the bottom row first
    for (int x = 0; x < image.Width; ++x) {
      const std::uint8_t* pixel = image.Values.data() + PixelOffset(image, x, y);
      out.insert(out.end(), {pixel[2], pixel[1], pixel[0]});
      if (alpha) out.push_back(pixel[3]);
    }
  return out;
}

} // namespace quarvel
