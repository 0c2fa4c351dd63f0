#include "images/module_pcx.h"

#include "images/bytes.h"
#include "images/image_headers.h"

namespace quarvel {
namespace {

constexpr std::size_t dataStart = 128;
constexpr std::size_t paletteSize = 769; ///< a mark, then 256 times red, green, blue

/// Yields the bytes of the lines; runs may go on from one line into the next.
class LineReader {
 public:
  LineReader(ByteView file, bool rle) : file_(file), rle_(rle) {}

  bool Next(std::uint8_t& value) {
    if (left_ == 0) {
      if (!file_.Has(at_, 1)) return false;
      std::uint32_t byte = file_.U8(at_++);
      left_ = 1;
      if (rle_ && byte >= 0xC0) {
        left_ = static_cast<int>(byte & 63U);
        if (left_ == 0 || !file_.Has(at_, 1)) return false;
        byte = file_.U8(at_++);
      }
      value_ = static_cast<std::uint8_t>(byte);
    }
    --left_;
    value = value_;
    return true;
  }

 private:
  ByteView file_;
  bool rle_;
  std::size_t at_ = dataStart;
  int left_ = 0;
  std::uint8_t value_ = 0;
};

/// False when the palette is missing though the header promises colours.
bool ReadPalette(ByteView file, Image& image) {
  const bool present = file.Size() >= dataStart + paletteSize && file.U8(file.Size() - paletteSize) == 12;
  const bool greys = file.U16(68) == 2 || file.U8(1) < 5; // by the header's own word, or older than palettes
  if (!present && !greys) return false;
  for (std::size_t i = 0; i < 256; ++i) {
    const std::size_t at = file.Size() - paletteSize + 1 + 3 * i;
    const auto channel = [&](std::size_t place) {
      return static_cast<std::uint8_t>(present ? file.U8(at + place) : static_cast<std::uint32_t>(i));
    };
    image.Palette[i] = Rgba{channel(0), channel(1), channel(2), 255};
  }
  return true;
}

bool ReadLine(LineReader& lines, const PcxHeader& header, int y, Image& image) {
  const std::size_t step = image.Format == PixelFormat::Palette8 ? 1 : 4;
  const std::size_t row = PixelOffset(image, 0, y);
  for (int plane = 0; plane < header.Planes; ++plane)
    for (std::size_t x = 0; x < header.BytesPerLine; ++x) {
      std::uint8_t value = 0;
      if (!lines.Next(value)) return false;
      if (x < static_cast<std::size_t>(image.Width))
        image.Values[row + x * step + static_cast<std::size_t>(plane)] = value;
    }
  return true;
}

} // namespace

ImageResult ReadPcx(Bytes bytes) {
  const ByteView file(bytes);
  const auto header = ReadPcxHeader(file, bytes.size());
  if (!header) return ImageError("the pcx header cannot be read");
  if (!MayReadPixels(header->Size.Width, header->Size.Height)) return ImageError("the image is too large");
  if (header->BitsPerPixel != 8 || (header->Planes != 1 && header->Planes != 3))
    return ImageError("only pcx images of 8 and 24 bits can be read");
  const bool palette = header->Planes == 1;
  Image image =
      MakeImage(header->Size.Width, header->Size.Height, palette ? PixelFormat::Palette8 : PixelFormat::Rgba8);
  if (palette && !ReadPalette(file, image)) return ImageError("the pcx palette is missing");
  LineReader lines(file, header->Rle);
  for (int y = 0; y < image.Height; ++y)
    if (!ReadLine(lines, *header, y, image)) return ImageError("the pcx data is truncated");
  if (!palette)
    for (std::size_t i = 3; i < image.Values.size(); i += 4)
      image.Values[i] = 255;
  return {std::move(image), {}};
}

} // namespace quarvel
