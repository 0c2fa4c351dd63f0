#include "images/module_dds.h"

#include "images/bytes.h"
#include "images/color_masks.h"

#include <algorithm>
#include <array>

namespace quarvel {
namespace {

using Block = std::array<Rgba, 16>;

Rgba Color565(std::uint32_t bits) {
  static constexpr std::uint32_t masks[4] = {0xF800, 0x07E0, 0x001F, 0};
  return PixelMasks(masks)(bits);
}

Rgba Mix(const Rgba& a, const Rgba& b, int partsA, int partsB) {
  Rgba mixed{0, 0, 0, 255};
  for (std::size_t i = 0; i < 3; ++i)
    mixed[i] = static_cast<std::uint8_t>((a[i] * partsA + b[i] * partsB) / (partsA + partsB));
  return mixed;
}

/// The colours of a block: two end points and a 2-bit choice for each pixel. In DXT1 the order of the end points tells
/// whether the fourth choice is a colour or transparent.
void ReadColors(ByteView file, std::size_t at, bool mayBeTransparent, Block& block) {
  const std::uint32_t first = file.U16(at);
  const std::uint32_t second = file.U16(at + 2);
  std::array<Rgba, 4> choices{Color565(first), Color565(second)};
  if (first > second || !mayBeTransparent) {
    choices[2] = Mix(choices[0], choices[1], 2, 1);
    choices[3] = Mix(choices[0], choices[1], 1, 2);
  } else {
    choices[2] = Mix(choices[0], choices[1], 1, 1);
    choices[3] = Rgba{0, 0, 0, 0};
  }
  const std::uint32_t picks = file.U32(at + 4);
  for (std::size_t i = 0; i < 16; ++i)
    block[i] = choices[picks >> (2U * static_cast<unsigned>(i)) & 3U];
}

/// DXT3: four bits of alpha for each pixel.
void ReadPlainAlpha(ByteView file, std::size_t at, Block& block) {
  for (std::size_t i = 0; i < 16; ++i)
    block[i][3] = static_cast<std::uint8_t>((file.U8(at + i / 2) >> (i % 2 * 4) & 15U) * 17U);
}

/// DXT5: two end points and a 3-bit choice for each pixel.
void ReadMixedAlpha(ByteView file, std::size_t at, Block& block) {
  const auto first = static_cast<int>(file.U8(at));
  const auto second = static_cast<int>(file.U8(at + 1));
  const int steps = first > second ? 7 : 5;
  std::array<int, 8> choices{first, second, 0, 0, 0, 0, 0, 255};
  for (int i = 1; i < steps; ++i)
    choices[static_cast<std::size_t>(i) + 1] = (first * (steps - i) + second * i) / steps;
  const std::uint64_t picks = file.U16(at + 2) | std::uint64_t{file.U32(at + 4)} << 16U;
  for (std::size_t i = 0; i < 16; ++i)
    block[i][3] = static_cast<std::uint8_t>(choices[picks >> (3U * static_cast<unsigned>(i)) & 7U]);
}

Block ReadBlock(ByteView file, std::size_t at, DdsFormat format) {
  Block block{};
  ReadColors(file, format == DdsFormat::Dxt1 ? at : at + 8, format == DdsFormat::Dxt1, block);
  if (format == DdsFormat::Dxt3) ReadPlainAlpha(file, at, block);
  if (format == DdsFormat::Dxt5) ReadMixedAlpha(file, at, block);
  return block;
}

void PutBlock(const Block& block, int left, int top, Image& image) {
  for (int i = 0; i < 16; ++i) {
    const int x = left + i % 4;
    const int y = top + i / 4;
    if (x >= image.Width || y >= image.Height) continue;
    const Rgba& color = block[static_cast<std::size_t>(i)];
    std::copy(color.begin(), color.end(), image.Values.begin() + static_cast<std::ptrdiff_t>(PixelOffset(image, x, y)));
  }
}

std::size_t BlockBytes(DdsFormat format) { return format == DdsFormat::Dxt1 ? 8 : 16; }

void ReadBlocks(ByteView file, std::size_t at, DdsFormat format, Image& image) {
  for (int top = 0; top < image.Height; top += 4)
    for (int left = 0; left < image.Width; left += 4) {
      PutBlock(ReadBlock(file, at, format), left, top, image);
      at += BlockBytes(format);
    }
}

void ReadPlain(ByteView file, const DdsHeader& header, Image& image) {
  const std::uint32_t greyMasks[4] = {header.Masks[0], header.Masks[0], header.Masks[0], header.Masks[3]};
  const PixelMasks masks(header.Grey ? greyMasks : header.Masks);
  const auto pixelBytes = static_cast<std::size_t>(header.BitsPerPixel / 8);
  std::size_t at = header.DataOffset;
  for (std::size_t i = 0; i < image.Values.size(); i += 4, at += pixelBytes) {
    std::uint32_t pixel = 0;
    for (std::size_t byte = 0; byte < pixelBytes; ++byte)
      pixel |= file.U8(at + byte) << (8U * static_cast<unsigned>(byte));
    const Rgba color = masks(pixel);
    std::copy(color.begin(), color.end(), image.Values.begin() + static_cast<std::ptrdiff_t>(i));
  }
}

} // namespace

ImageResult ReadDds(Bytes bytes) {
  const ByteView file(bytes);
  const auto header = ReadDdsHeader(file, bytes.size());
  if (!header || file.U32(0) != 0x20534444) return ImageError("the dds header cannot be read");
  if (!MayReadPixels(header->Size.Width, header->Size.Height)) return ImageError("the image is too large");
  if (header->Format == DdsFormat::Other) return ImageError("the dds compression is not known");
  Image image = MakeImage(header->Size.Width, header->Size.Height, PixelFormat::Rgba8);
  if (header->Format == DdsFormat::Uncompressed) {
    ReadPlain(file, *header, image);
  } else {
    ReadBlocks(file, header->DataOffset, header->Format, image);
  }
  MakeOpaqueIfAllTransparent(image);
  return {std::move(image), {}};
}

ImageResult ReadDxt(Bytes blocks, int width, int height, DdsFormat format) {
  if (!MayReadPixels(width, height)) return ImageError("the image is too large");
  const std::size_t count = (static_cast<std::size_t>(width) + 3) / 4 * ((static_cast<std::size_t>(height) + 3) / 4);
  if (blocks.size() < count * BlockBytes(format)) return ImageError("the compressed blocks end early");
  Image image = MakeImage(width, height, PixelFormat::Rgba8);
  ReadBlocks(ByteView(blocks), 0, format, image);
  MakeOpaqueIfAllTransparent(image);
  return {std::move(image), {}};
}

} // namespace quarvel
