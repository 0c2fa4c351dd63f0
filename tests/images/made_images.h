#pragma once

#include "images/image.h"

#include <bit>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>
#include <zlib.h>

namespace quarvel::test {

using Blob = std::vector<std::uint8_t>;

/// Bytes that are put one behind the other; `Self` is what each call returns.
template <typename Self>
class ByteBuilder {
 public:
  Self& Fill(std::size_t count, unsigned value = 0) {
    bytes_.insert(bytes_.end(), count, static_cast<std::uint8_t>(value));
    return static_cast<Self&>(*this);
  }
  Self& Add(const Blob& more) {
    bytes_.insert(bytes_.end(), more.begin(), more.end());
    return static_cast<Self&>(*this);
  }
  Self& Text(std::string_view text) { return Add({text.begin(), text.end()}); }
  Self& U8(unsigned value) { return Fill(1, value); }
  Self& U16(unsigned value) { return U8(value & 255U).U8(value >> 8U & 255U); } ///< little-endian
  Self& U32(unsigned value) { return U16(value & 0xFFFFU).U16(value >> 16U); }
  Self& BigU16(unsigned value) { return U8(value >> 8U & 255U).U8(value & 255U); }
  Self& BigU32(unsigned value) { return BigU16(value >> 16U).BigU16(value & 0xFFFFU); }
  Self& Floats(std::initializer_list<float> values) {
    for (const float value : values)
      U32(std::bit_cast<unsigned>(value));
    return static_cast<Self&>(*this);
  }
  operator Blob() const { return bytes_; }
  const Blob& Get() const { return bytes_; }

 private:
  Blob bytes_;
};

class FileBytes : public ByteBuilder<FileBytes> {};

/// A bmp without palette; `rows` is the pixel data, bottom row first, each row padded to four bytes.
inline Blob MadeBmp(int width, int height, int bits, const Blob& palette, const Blob& rows) {
  FileBytes file;
  const unsigned offset = 54 + static_cast<unsigned>(palette.size());
  file.Text("BM").U32(offset + static_cast<unsigned>(rows.size())).U32(0).U32(offset);
  file.U32(40).U32(static_cast<unsigned>(width)).U32(static_cast<unsigned>(height)).U16(1);
  file.U16(static_cast<unsigned>(bits)).U32(0).U32(0).U32(0).U32(0);
  return file.U32(static_cast<unsigned>(palette.size() / 4)).U32(0).Add(palette).Add(rows);
}

inline Blob PlainBmp24(int width, int height) {
  const auto row = static_cast<std::size_t>((width * 3 + 3) / 4 * 4);
  return MadeBmp(width, height, 24, {}, Blob(row * static_cast<std::size_t>(height), 100));
}

inline Blob MadeTga(int kind, int width, int height, int bits, int descriptor, const Blob& data) {
  FileBytes file;
  file.U8(0).U8(0).U8(static_cast<unsigned>(kind)).Fill(5).U16(0).U16(0);
  file.U16(static_cast<unsigned>(width)).U16(static_cast<unsigned>(height));
  return file.U8(static_cast<unsigned>(bits)).U8(static_cast<unsigned>(descriptor)).Add(data);
}

/// A pcx with 8 bits a plane; `data` is the run-length code, `palette` 768 bytes or nothing.
inline Blob MadePcx(int width, int height, int planes, const Blob& data, const Blob& palette) {
  FileBytes file;
  file.U8(10).U8(5).U8(1).U8(8).U16(0).U16(0);
  file.U16(static_cast<unsigned>(width - 1)).U16(static_cast<unsigned>(height - 1)).U16(72).U16(72).Fill(48);
  file.U8(0).U8(static_cast<unsigned>(planes)).U16(static_cast<unsigned>(width)).U16(1).Fill(58).Add(data);
  if (!palette.empty()) file.U8(12).Add(palette);
  return file;
}

inline Blob MadeDds(int width, int height, std::string_view fourCc, const Blob& data) {
  FileBytes file;
  file.Text("DDS ").U32(124).U32(0x1007).U32(static_cast<unsigned>(height)).U32(static_cast<unsigned>(width));
  file.U32(0).U32(0).U32(0).Fill(44).U32(32).U32(4).Text(fourCc).Fill(20).U32(0x1000).Fill(16);
  return file.Add(data);
}

inline Blob MadeGif(int width, int height) {
  FileBytes file;
  file.Text("GIF89a").U16(static_cast<unsigned>(width)).U16(static_cast<unsigned>(height));
  return file.U8(0).U8(0).U8(0).U8(0x3B);
}

/// The start of a jpg: an application segment of the given length, then the frame header.
inline Blob MadeJpgHead(int width, int height, int segment) {
  FileBytes file;
  file.BigU16(0xFFD8).BigU16(0xFFE0).BigU16(static_cast<unsigned>(segment + 2));
  file.Fill(static_cast<std::size_t>(segment), 0xC0);
  file.U8(0xFF).BigU16(0xFFC2).BigU16(17).U8(8); // one fill byte before the marker
  file.BigU16(static_cast<unsigned>(height)).BigU16(static_cast<unsigned>(width)).U8(3).Fill(9);
  return file;
}

/// The signature and header chunk of a png.
inline Blob MadePngHead(unsigned width, unsigned height, unsigned depth = 8, unsigned colorType = 2) {
  FileBytes chunk;
  chunk.Text("IHDR").BigU32(width).BigU32(height).U8(depth).U8(colorType).Fill(3);
  const auto crc = static_cast<unsigned>(crc32(0, chunk.Get().data(), static_cast<uInt>(chunk.Get().size())));
  return FileBytes().Text("\x89PNG\r\n\x1a\n").BigU32(13).Add(chunk).BigU32(crc);
}

/// The pixels row by row from the top.
inline std::vector<Rgba> PixelsOf(Image image, Transparency transparency) {
  image = ToRgba(std::move(image), transparency);
  std::vector<Rgba> pixels;
  for (std::size_t i = 0; i < image.Values.size(); i += 4)
    pixels.push_back({image.Values[i], image.Values[i + 1], image.Values[i + 2], image.Values[i + 3]});
  return pixels;
}

} // namespace quarvel::test
