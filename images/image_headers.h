#pragma once

#include "images/bytes.h"
#include "images/image_size.h"

#include <cstdint>
#include <optional>

namespace quarvel {

/// The headers of the formats that this project reads by itself. Each reader looks at the head of a file only, and
/// yields nothing when the header is truncated, contradicts itself, or states more pixels than `fileSize` bytes can
/// hold.

/// The size as a record, when both sides are believable.
std::optional<ImageSize> CheckedSize(std::uint64_t width, std::uint64_t height);

struct PngHeader {
  ImageSize Size;
  int BitDepth = 0;
  int ColorType = 0;
};

struct BmpHeader {
  ImageSize Size;
  bool TopDown = false;
  int BitsPerPixel = 0;
  bool Rle = false;            ///< run-length encoded (4 or 8 bits)
  std::uint32_t Masks[4] = {}; ///< red, green, blue, alpha; for 16 and 32 bits
  bool HasMasks = false;       ///< the masks are the file's own
  std::size_t PaletteOffset = 0;
  int PaletteCount = 0;
  int PaletteEntrySize = 4; ///< bytes
  std::size_t DataOffset = 0;
  std::size_t RowBytes = 0; ///< rows are padded to four bytes
};

struct TgaHeader {
  ImageSize Size;
  int Kind = 0; ///< 1 palette, 2 colour, 3 grey
  bool Rle = false;
  int BitsPerPixel = 0;
  int AlphaBits = 0;
  bool TopDown = false;
  bool RightToLeft = false;
  std::size_t PaletteOffset = 0;
  int PaletteFirst = 0;
  int PaletteCount = 0;
  int PaletteBits = 0;
  std::size_t DataOffset = 0;
};

struct PcxHeader {
  ImageSize Size;
  int BitsPerPixel = 0; ///< of one plane
  int Planes = 0;
  bool Rle = false;
  std::size_t BytesPerLine = 0; ///< of one plane
};

enum class DdsFormat { Uncompressed, Dxt1, Dxt3, Dxt5, Other };

struct DdsHeader {
  ImageSize Size;
  DdsFormat Format = DdsFormat::Other; ///< `Other`: the size is good, the pixels cannot be read
  int BitsPerPixel = 0;
  bool Grey = false;
  std::uint32_t Masks[4] = {}; ///< red, green, blue, alpha
  std::size_t DataOffset = 0;
};

std::optional<PngHeader> ReadPngHeader(ByteView head, std::uint64_t fileSize);
std::optional<BmpHeader> ReadBmpHeader(ByteView head, std::uint64_t fileSize);
std::optional<TgaHeader> ReadTgaHeader(ByteView head, std::uint64_t fileSize);
std::optional<PcxHeader> ReadPcxHeader(ByteView head, std::uint64_t fileSize);
std::optional<DdsHeader> ReadDdsHeader(ByteView head, std::uint64_t fileSize);

} // namespace quarvel
