#include "images/module_bmp.h"

#include "images/bytes.h"
#include "images/color_masks.h"
#include "images/image_headers.h"

#include <algorithm>

namespace quarvel {
namespace {

void ReadPalette(ByteView file, const BmpHeader& header, Image& image) {
  for (int i = 0; i < header.PaletteCount; ++i) {
    const std::size_t at = header.PaletteOffset + static_cast<std::size_t>(i * header.PaletteEntrySize);
    const auto channel = [&](std::size_t place) { return static_cast<std::uint8_t>(file.U8(at + place)); };
    if (at + 3 <= header.DataOffset)
      image.Palette[static_cast<std::size_t>(i)] = Rgba{channel(2), channel(1), channel(0), 255};
  }
}

std::uint8_t IndexAt(ByteView file, std::size_t row, int x, int bits) {
  const auto bit = static_cast<std::size_t>(x) * static_cast<std::size_t>(bits);
  const auto shift = 8U - static_cast<unsigned>(bits) - static_cast<unsigned>(bit % 8);
  return static_cast<std::uint8_t>(file.U8(row + bit / 8) >> shift & ((1U << static_cast<unsigned>(bits)) - 1U));
}

std::uint32_t PixelAt(ByteView file, std::size_t row, int x, int bits) {
  const auto column = static_cast<std::size_t>(x);
  if (bits == 16) return file.U16(row + column * 2);
  if (bits == 32) return file.U32(row + column * 4);
  const std::size_t at = row + column * 3;
  return file.U8(at) | file.U8(at + 1) << 8U | file.U8(at + 2) << 16U;
}

/// Where the file keeps the row that is `y` from the top.
std::size_t RowOffset(const BmpHeader& header, int y) {
  const int stored = header.TopDown ? y : header.Size.Height - 1 - y;
  return header.DataOffset + header.RowBytes * static_cast<std::size_t>(stored);
}

void ReadIndexes(ByteView file, const BmpHeader& header, Image& image) {
  for (int y = 0; y < image.Height; ++y)
    for (int x = 0; x < image.Width; ++x)
      image.Values[PixelOffset(image, x, y)] = IndexAt(file, RowOffset(header, y), x, header.BitsPerPixel);
}

void ReadColors(ByteView file, const BmpHeader& header, Image& image) {
  const std::uint32_t plainMasks[4] = {0xFF0000, 0x00FF00, 0x0000FF, 0};
  const PixelMasks masks(header.BitsPerPixel == 24 ? plainMasks : header.Masks);
  for (int y = 0; y < image.Height; ++y)
    for (int x = 0; x < image.Width; ++x) {
      const Rgba color = masks(PixelAt(file, RowOffset(header, y), x, header.BitsPerPixel));
      std::copy(color.begin(), color.end(),
                image.Values.begin() + static_cast<std::ptrdiff_t>(PixelOffset(image, x, y)));
    }
}

void ReadSamples(ByteView file, const BmpHeader& header, Image& image) {
  for (int y = 0; y < image.Height; ++y)
    for (int x = 0; x < image.Width; ++x)
      image.Samples[PixelOffset(image, x, y)] = static_cast<std::uint16_t>(PixelAt(file, RowOffset(header, y), x, 16));
}

/// The run-length code of 4- and 8-bit bitmaps: pairs of a count and a value; after a count of 0 a command.
class RunDecoder {
 public:
  RunDecoder(ByteView file, const BmpHeader& header, Image& image)
      : file_(file), at_(header.DataOffset), nibbles_(header.BitsPerPixel == 4), image_(image) {}

  /// False when the data ends before the picture does.
  bool Decode() {
    while (fromBottom_ < image_.Height) {
      if (!file_.Has(at_, 2)) return false;
      const std::uint32_t count = file_.U8(at_);
      const std::uint32_t value = file_.U8(at_ + 1);
      at_ += 2;
      if (count > 0) {
        Run(count, value);
      } else if (value == 1) {
        return true;
      } else if (!Command(value)) {
        return false;
      }
    }
    return true;
  }

 private:
  void Put(std::uint32_t value) {
    if (x_ < image_.Width)
      image_.Values[PixelOffset(image_, x_, image_.Height - 1 - fromBottom_)] = static_cast<std::uint8_t>(value);
    ++x_;
  }

  void Run(std::uint32_t count, std::uint32_t value) {
    for (std::uint32_t i = 0; i < count; ++i)
      Put(!nibbles_ ? value : i % 2 == 0 ? value >> 4U : value & 15U);
  }

  bool Command(std::uint32_t value) {
    if (value == 0) {
      x_ = 0;
      ++fromBottom_;
      return true;
    }
    if (value == 2) {
      if (!file_.Has(at_, 2)) return false;
      x_ = std::min(image_.Width, x_ + static_cast<int>(file_.U8(at_)));
      fromBottom_ += static_cast<int>(file_.U8(at_ + 1));
      at_ += 2;
      return true;
    }
    const std::size_t bytes = nibbles_ ? (value + 1) / 2 : value;
    if (!file_.Has(at_, bytes)) return false;
    for (std::uint32_t i = 0; i < value; ++i)
      Run(1, nibbles_ ? (i % 2 == 0 ? file_.U8(at_ + i / 2) : file_.U8(at_ + i / 2) << 4U) & 0xFFU : file_.U8(at_ + i));
    at_ += (bytes + 1) / 2 * 2;
    return true;
  }

  ByteView file_;
  std::size_t at_;
  bool nibbles_;
  Image& image_;
  int x_ = 0;
  int fromBottom_ = 0;
};

ImageResult ReadAs(Bytes bytes, bool heightmap) {
  const ByteView file(bytes);
  const auto header = ReadBmpHeader(file, bytes.size());
  if (!header || file.U16(0) != 0x4D42) return ImageError("the bmp header cannot be read");
  if (!MayReadPixels(header->Size.Width, header->Size.Height)) return ImageError("the image is too large");
  const bool palette = header->BitsPerPixel <= 8;
  const bool samples = heightmap && header->BitsPerPixel == 16 && !header->HasMasks;
  const PixelFormat format = palette ? PixelFormat::Palette8 : samples ? PixelFormat::Grey16 : PixelFormat::Rgba8;
  Image image = MakeImage(header->Size.Width, header->Size.Height, format);
  if (palette) {
    ReadPalette(file, *header, image);
    if (header->Rle && !RunDecoder(file, *header, image).Decode()) return ImageError("the bmp data is truncated");
    if (!header->Rle) ReadIndexes(file, *header, image);
  } else if (samples) {
    ReadSamples(file, *header, image);
  } else {
    ReadColors(file, *header, image);
    MakeOpaqueIfAllTransparent(image);
  }
  return {std::move(image), {}};
}

class Writer {
 public:
  void U16(std::uint32_t value) {
    Out.push_back(static_cast<std::uint8_t>(value & 255U));
    Out.push_back(static_cast<std::uint8_t>(value >> 8U & 255U));
  }
  void U32(std::uint32_t value) {
    U16(value & 0xFFFFU);
    U16(value >> 16U);
  }
  void Zeros(std::size_t count) { Out.insert(Out.end(), count, std::uint8_t{0}); }

  std::vector<std::uint8_t> Out;
};

/// The version 4 header, which viewers take as a sign that the fourth byte is alpha.
void WriteAlphaMasks(Writer& writer) {
  for (const std::uint32_t mask : {0x00FF0000U, 0x0000FF00U, 0x000000FFU, 0xFF000000U})
    writer.U32(mask);
  writer.U32(0x73524742); // "sRGB"
  writer.Zeros(36 + 12);
}

} // namespace

ImageResult ReadBmp(Bytes file) { return ReadAs(file, false); }

ImageResult ReadHeightmapBmp(Bytes file) { return ReadAs(file, true); }

std::vector<std::uint8_t> WriteBmp(const Image& image) {
  const bool alpha = HasTransparentPixel(image);
  const std::size_t pixelBytes = alpha ? 4 : 3;
  const std::size_t rowBytes = (static_cast<std::size_t>(image.Width) * pixelBytes + 3) / 4 * 4;
  const std::size_t dataBytes = rowBytes * static_cast<std::size_t>(image.Height);
  const std::uint32_t headerBytes = alpha ? 108 : 40;
  Writer writer;
  writer.Out.reserve(14 + headerBytes + dataBytes);
  writer.U16(0x4D42);
  writer.U32(static_cast<std::uint32_t>(14 + headerBytes + dataBytes));
  writer.U32(0);
  writer.U32(14 + headerBytes);
  writer.U32(headerBytes);
  writer.U32(static_cast<std::uint32_t>(image.Width));
  writer.U32(static_cast<std::uint32_t>(image.Height));
  writer.U16(1);
  writer.U16(static_cast<std::uint32_t>(pixelBytes * 8));
  writer.U32(alpha ? 3 : 0);
  writer.U32(static_cast<std::uint32_t>(dataBytes));
  writer.U32(2835); // pixels per metre: 72 per inch
  writer.U32(2835);
  writer.Zeros(8);
  if (alpha) WriteAlphaMasks(writer);
  for (int y = image.Height - 1; y >= 0; --y) {
    for (int x = 0; x < image.Width; ++x) {
      const std::uint8_t* pixel = image.Values.data() + PixelOffset(image, x, y);
      for (const std::size_t channel : {2U, 1U, 0U})
        writer.Out.push_back(pixel[channel]);
      if (alpha) writer.Out.push_back(pixel[3]);
    }
    writer.Zeros(rowBytes - static_cast<std::size_t>(image.Width) * pixelBytes);
  }
  return std::move(writer.Out);
}

} // namespace quarvel
