#include "images/image_headers.h"

#include <algorithm>
#include <array>
#include <zlib.h>

namespace quarvel {
namespace {

std::uint64_t PixelCount(ImageSize size) {
  return static_cast<std::uint64_t>(size.Width) * static_cast<std::uint64_t>(size.Height);
}

/// The channels of a png colour type, 0 when the pair of colour type and bit depth does not exist.
int PngChannels(int colorType, int depth) {
  const bool byteDepth = depth == 8 || depth == 16;
  const bool lowDepth = depth == 1 || depth == 2 || depth == 4;
  switch (colorType) {
  case 0:
    return byteDepth || lowDepth ? 1 : 0;
  case 2:
    return byteDepth ? 3 : 0;
  case 3:
    return depth == 8 || lowDepth ? 1 : 0;
  case 4:
    return byteDepth ? 2 : 0;
  case 6:
    return byteDepth ? 4 : 0;
  default:
    return 0;
  }
}

bool IsOneOf(int value, std::initializer_list<int> allowed) {
  return std::find(allowed.begin(), allowed.end(), value) != allowed.end();
}

/// The masks that 16- and 32-bit pixels have when the file states none: 5 bits each, or 8 bits each. The fourth byte of
/// a 32-bit pixel is officially unused, but texture tools keep the alpha there.
void SetDefaultMasks(BmpHeader& header) {
  const std::array<std::uint32_t, 4> masks16{0x7C00, 0x03E0, 0x001F, 0};
  const std::array<std::uint32_t, 4> masks32{0x00FF0000, 0x0000FF00, 0x000000FF, 0xFF000000};
  const auto& masks = header.BitsPerPixel == 16 ? masks16 : masks32;
  std::copy(masks.begin(), masks.end(), header.Masks);
}

bool ReadBmpMasks(ByteView head, std::uint32_t headerSize, std::uint32_t compression, BmpHeader& header) {
  SetDefaultMasks(header);
  const bool bitFields = compression == 3 || compression == 6;
  if (!bitFields) return true;
  if (!IsOneOf(header.BitsPerPixel, {16, 32})) return false;
  const bool alphaMask = headerSize >= 56 || compression == 6;
  const std::size_t count = alphaMask ? 4 : 3;
  if (!head.Has(54, count * 4)) return false;
  header.Masks[3] = 0;
  for (std::size_t i = 0; i < count; ++i)
    header.Masks[i] = head.U32(54 + 4 * i);
  header.HasMasks = true;
  return true;
}

bool ReadBmpPalette(std::uint32_t colorsUsed, BmpHeader& header) {
  if (header.BitsPerPixel > 8) return true;
  const std::uint32_t most = 1U << header.BitsPerPixel;
  header.PaletteCount = static_cast<int>(colorsUsed == 0 || colorsUsed > most ? most : colorsUsed);
  return header.PaletteOffset < header.DataOffset;
}

bool FitsBmp(const BmpHeader& header, std::uint64_t fileSize) {
  if (header.DataOffset > fileSize) return false;
  // A run of two bytes stands for 255 pixels at most, and skips of lines for a few more.
  if (header.Rle) return PixelCount(header.Size) <= fileSize * 1024;
  const std::uint64_t needed = std::uint64_t{header.RowBytes} * static_cast<std::uint64_t>(header.Size.Height);
  return header.DataOffset + needed <= fileSize + 3; // some writers leave out the padding of the last row
}

} // namespace

std::optional<ImageSize> CheckedSize(std::uint64_t width, std::uint64_t height) {
  if (width == 0 || height == 0 || width > MaxImageSide || height > MaxImageSide) return std::nullopt;
  return ImageSize{static_cast<int>(width), static_cast<int>(height)};
}

std::optional<PngHeader> ReadPngHeader(ByteView head, std::uint64_t fileSize) {
  constexpr std::uint32_t ihdr = 0x49484452;
  if (!head.Has(0, 33) || head.BigU32(8) != 13 || head.BigU32(12) != ihdr) return std::nullopt;
  const Bytes chunk = head.Part(12, 17); // what the checksum covers: type and data
  if (crc32(0, chunk.data(), static_cast<uInt>(chunk.size())) != head.BigU32(29)) return std::nullopt;
  const auto size = CheckedSize(head.BigU32(16), head.BigU32(20));
  if (!size) return std::nullopt;
  PngHeader header{*size, static_cast<int>(head.U8(24)), static_cast<int>(head.U8(25))};
  const int channels = PngChannels(header.ColorType, header.BitDepth);
  if (channels == 0) return std::nullopt;
  // Deflate packs at most 1032 to 1.
  const std::uint64_t bits = PixelCount(*size) * static_cast<std::uint64_t>(channels * header.BitDepth);
  if (bits / 8 / 1032 > fileSize) return std::nullopt;
  return header;
}

std::optional<BmpHeader> ReadBmpHeader(ByteView head, std::uint64_t fileSize) {
  BmpHeader header;
  const std::uint32_t headerSize = head.U32(14);
  const bool core = headerSize == 12;
  if (!head.Has(0, core ? 26 : 54) || (!core && (headerSize < 40 || headerSize > 124))) return std::nullopt;
  const std::int64_t width = core ? std::int64_t{head.U16(18)} : std::int64_t{head.S32(18)};
  const std::int64_t height = core ? std::int64_t{head.U16(20)} : std::int64_t{head.S32(22)};
  header.TopDown = height < 0;
  const auto size = CheckedSize(static_cast<std::uint64_t>(std::max<std::int64_t>(0, width)),
                                static_cast<std::uint64_t>(height < 0 ? -height : height));
  if (!size) return std::nullopt;
  header.Size = *size;
  header.BitsPerPixel = static_cast<int>(core ? head.U16(24) : head.U16(28));
  const std::uint32_t compression = core ? 0 : head.U32(30);
  header.Rle = compression == 1 || compression == 2;
  if (!IsOneOf(header.BitsPerPixel, {1, 4, 8, 16, 24, 32}) || compression > 6 || compression == 4 || compression == 5)
    return std::nullopt;
  if (header.Rle && (header.BitsPerPixel != (compression == 1 ? 8 : 4) || header.TopDown)) return std::nullopt;
  header.DataOffset = head.U32(10);
  const bool separateMasks = !core && headerSize == 40 && (compression == 3 || compression == 6);
  header.PaletteOffset = 14 + std::size_t{headerSize} + (separateMasks ? (compression == 6 ? 16U : 12U) : 0U);
  header.PaletteEntrySize = core ? 3 : 4;
  if (!ReadBmpMasks(head, headerSize, compression, header)) return std::nullopt;
  if (!ReadBmpPalette(core ? 0 : head.U32(46), header)) return std::nullopt;
  header.RowBytes =
      (static_cast<std::size_t>(size->Width) * static_cast<std::size_t>(header.BitsPerPixel) + 31) / 32 * 4;
  if (!FitsBmp(header, fileSize)) return std::nullopt;
  return header;
}

std::optional<TgaHeader> ReadTgaHeader(ByteView head, std::uint64_t fileSize) {
  TgaHeader header;
  const auto size = CheckedSize(head.U16(12), head.U16(14));
  if (!head.Has(0, 18) || !size || head.U8(1) > 1) return std::nullopt;
  header.Size = *size;
  header.Kind = static_cast<int>(head.U8(2) & 7U);
  header.Rle = head.U8(2) >= 9;
  if (!IsOneOf(static_cast<int>(head.U8(2)), {1, 2, 3, 9, 10, 11})) return std::nullopt;
  header.BitsPerPixel = static_cast<int>(head.U8(16));
  const bool palette = header.Kind == 1;
  const bool bitsGood = palette            ? header.BitsPerPixel == 8 && head.U8(1) == 1
                        : header.Kind == 3 ? IsOneOf(header.BitsPerPixel, {8, 16})
                                           : IsOneOf(header.BitsPerPixel, {15, 16, 24, 32});
  if (!bitsGood) return std::nullopt;
  header.AlphaBits = static_cast<int>(head.U8(17) & 15U);
  header.RightToLeft = (head.U8(17) & 0x10U) != 0;
  header.TopDown = (head.U8(17) & 0x20U) != 0;
  header.PaletteOffset = 18 + std::size_t{head.U8(0)};
  header.DataOffset = header.PaletteOffset;
  if (head.U8(1) == 1) {
    header.PaletteFirst = static_cast<int>(head.U16(3));
    header.PaletteCount = static_cast<int>(head.U16(5));
    header.PaletteBits = static_cast<int>(head.U8(7));
    if (!IsOneOf(header.PaletteBits, {15, 16, 24, 32})) return std::nullopt;
    header.DataOffset += static_cast<std::size_t>(header.PaletteCount * ((header.PaletteBits + 7) / 8));
  }
  const auto pixelBytes = static_cast<std::uint64_t>((header.BitsPerPixel + 7) / 8);
  const std::uint64_t needed =
      header.Rle ? (PixelCount(*size) + 127) / 128 * (pixelBytes + 1) : PixelCount(*size) * pixelBytes;
  if (header.DataOffset + needed > fileSize) return std::nullopt;
  return header;
}

std::optional<PcxHeader> ReadPcxHeader(ByteView head, std::uint64_t fileSize) {
  if (!head.Has(0, 128) || head.U8(0) != 0x0A || head.U8(1) > 5 || head.U8(2) > 1) return std::nullopt;
  if (head.U16(8) < head.U16(4) || head.U16(10) < head.U16(6)) return std::nullopt;
  const auto size = CheckedSize(head.U16(8) - head.U16(4) + 1, head.U16(10) - head.U16(6) + 1);
  if (!size) return std::nullopt;
  PcxHeader header{*size, static_cast<int>(head.U8(3)), static_cast<int>(head.U8(65)), head.U8(2) == 1, head.U16(66)};
  if (!IsOneOf(header.BitsPerPixel, {1, 2, 4, 8}) || header.Planes < 1 || header.Planes > 4) return std::nullopt;
  const auto lineBits = static_cast<std::uint64_t>(size->Width) * static_cast<std::uint64_t>(header.BitsPerPixel);
  if (header.BytesPerLine * 8 < lineBits) return std::nullopt;
  const std::uint64_t raw = std::uint64_t{header.BytesPerLine} * static_cast<std::uint64_t>(header.Planes) *
                            static_cast<std::uint64_t>(size->Height);
  const std::uint64_t needed = header.Rle ? raw / 63 * 2 : raw;
  if (128 + needed > fileSize) return std::nullopt;
  return header;
}

namespace {

DdsFormat DdsFormatOf(std::uint32_t flags, std::uint32_t fourCc) {
  constexpr std::uint32_t hasFourCc = 0x4;
  constexpr std::uint32_t hasColors = 0x40 | 0x20000 | 0x2; // RGB, luminance, alpha only
  if (flags & hasFourCc) {
    switch (fourCc) {
    case 0x31545844:
      return DdsFormat::Dxt1;
    case 0x33545844:
      return DdsFormat::Dxt3;
    case 0x35545844:
      return DdsFormat::Dxt5;
    default:
      return DdsFormat::Other;
    }
  }
  return (flags & hasColors) ? DdsFormat::Uncompressed : DdsFormat::Other;
}

std::uint64_t DdsBytes(const DdsHeader& header) {
  const std::uint64_t blocks = static_cast<std::uint64_t>((header.Size.Width + 3) / 4) *
                               static_cast<std::uint64_t>((header.Size.Height + 3) / 4);
  switch (header.Format) {
  case DdsFormat::Dxt1:
    return blocks * 8;
  case DdsFormat::Dxt3:
  case DdsFormat::Dxt5:
    return blocks * 16;
  case DdsFormat::Uncompressed:
    return PixelCount(header.Size) * static_cast<std::uint64_t>(header.BitsPerPixel / 8);
  case DdsFormat::Other:
    break;
  }
  return 0;
}

} // namespace

std::optional<DdsHeader> ReadDdsHeader(ByteView head, std::uint64_t fileSize) {
  if (!head.Has(0, 128) || head.U32(4) != 124 || head.U32(76) != 32) return std::nullopt;
  const auto size = CheckedSize(head.U32(16), head.U32(12));
  if (!size) return std::nullopt;
  DdsHeader header;
  header.Size = *size;
  const std::uint32_t flags = head.U32(80);
  header.Format = DdsFormatOf(flags, head.U32(84));
  header.BitsPerPixel = static_cast<int>(head.U32(88));
  header.Grey = (flags & 0x20000U) != 0;
  for (std::size_t i = 0; i < 3; ++i)
    header.Masks[i] = head.U32(92 + 4 * i);
  if (flags & 0x3U) header.Masks[3] = head.U32(104);
  header.DataOffset = 128;
  if (header.Format == DdsFormat::Uncompressed && !IsOneOf(header.BitsPerPixel, {8, 16, 24, 32})) return std::nullopt;
  if (header.DataOffset + DdsBytes(header) > fileSize) return std::nullopt;
  return header;
}

} // namespace quarvel
