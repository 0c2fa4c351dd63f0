#include "images/image_size.h"

#include "images/bytes.h"
#include "images/image_headers.h"

#include <array>
#include <cstring>
#include <fstream>

namespace quarvel {
namespace {

/// Enough for the header of every format but jpg, whose frame header follows segments of any length.
constexpr std::size_t headSize = 256;
/// Real jpg files have a few dozen segments before the frame header; more is a file made to cost time.
constexpr int maxJpgSegments = 5000;

/// The bytes of a file in memory or on disk, read at any place.
class ByteSource {
 public:
  virtual ~ByteSource() = default;
  virtual std::uint64_t Size() const = 0;
  /// The number of bytes that were there to read.
  virtual std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> into) = 0;
};

class MemorySource : public ByteSource {
 public:
  explicit MemorySource(Bytes bytes) : bytes_(bytes) {}
  std::uint64_t Size() const override { return bytes_.size(); }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> into) override {
    if (offset >= bytes_.size()) return 0;
    const std::size_t count = std::min<std::size_t>(into.size(), bytes_.size() - offset);
    std::memcpy(into.data(), bytes_.data() + offset, count);
    return count;
  }

 private:
  Bytes bytes_;
};

class FileSource : public ByteSource {
 public:
  explicit FileSource(const std::filesystem::path& file) {
    std::error_code error;
    size_ = std::filesystem::file_size(file, error);
    if (error) size_ = 0;
    stream_.rdbuf()->pubsetbuf(nullptr, 0);
    stream_.open(file, std::ios::binary);
  }
  std::uint64_t Size() const override { return size_; }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> into) override {
    if (!stream_.is_open() || offset >= size_) return 0;
    stream_.clear();
    if (offset != 0) stream_.seekg(static_cast<std::streamoff>(offset));
    stream_.read(reinterpret_cast<char*>(into.data()), static_cast<std::streamsize>(into.size()));
    return static_cast<std::size_t>(std::max<std::streamsize>(0, stream_.gcount()));
  }

 private:
  std::ifstream stream_;
  std::uint64_t size_ = 0;
};

bool IsFrameHeader(std::uint32_t marker) {
  const bool inRange = marker >= 0xC0 && marker <= 0xCF;
  return inRange && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

bool StandsAlone(std::uint32_t marker) { return marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8); }

/// Walks the marker segments of a jpg file (ITU-T T.81, annex B) up to the frame header.
std::optional<ImageSize> JpgSize(ByteSource& source) {
  std::uint64_t at = 2;
  for (int segment = 0; segment < maxJpgSegments; ++segment) {
    std::array<std::uint8_t, 10> buffer{};
    const std::size_t count = source.ReadAt(at, buffer);
    const ByteView view(Bytes(buffer.data(), count));
    const std::uint32_t marker = view.U8(1);
    if (!view.Has(0, 4) || view.U8(0) != 0xFF) return std::nullopt;
    if (marker == 0xFF) { // a fill byte
      at += 1;
      continue;
    }
    if (StandsAlone(marker)) {
      at += 2;
      continue;
    }
    const std::uint32_t length = view.BigU16(2);
    if (length < 2 || marker == 0xD9 || marker == 0xDA) return std::nullopt;
    if (IsFrameHeader(marker)) {
      if (length < 8 || !view.Has(0, 9) || view.U8(9) == 0) return std::nullopt;
      return CheckedSize(view.BigU16(7), view.BigU16(5));
    }
    at += 2 + std::uint64_t{length};
  }
  return std::nullopt;
}

std::optional<ImageSize> GifSize(ByteView head) {
  if (!head.Has(0, 13)) return std::nullopt;
  return CheckedSize(head.U16(6), head.U16(8));
}

template <typename Header>
std::optional<ImageSize> SizeOf(const std::optional<Header>& header) {
  if (!header) return std::nullopt;
  return header->Size;
}

std::optional<ImageSize> SizeFromSource(ByteSource& source, std::string_view extension) {
  std::array<std::uint8_t, headSize> buffer{};
  const Bytes bytes(buffer.data(), source.ReadAt(0, buffer));
  const ByteView head(bytes);
  switch (ImageTypeOfContent(bytes, extension)) {
  case ImageType::Png:
    return SizeOf(ReadPngHeader(head, source.Size()));
  case ImageType::Jpg:
    return JpgSize(source);
  case ImageType::Gif:
    return GifSize(head);
  case ImageType::Bmp:
    return SizeOf(ReadBmpHeader(head, source.Size()));
  case ImageType::Tga:
    return SizeOf(ReadTgaHeader(head, source.Size()));
  case ImageType::Pcx:
    return SizeOf(ReadPcxHeader(head, source.Size()));
  case ImageType::Dds:
    return SizeOf(ReadDdsHeader(head, source.Size()));
  case ImageType::Unknown:
    break;
  }
  return std::nullopt;
}

} // namespace

std::optional<ImageSize> ReadImageSize(const std::filesystem::path& file) {
  FileSource source(file);
  return SizeFromSource(source, file.extension().string());
}

std::optional<ImageSize> ReadImageSize(Bytes file, std::string_view extension) {
  MemorySource source(file);
  return SizeFromSource(source, extension);
}

} // namespace quarvel
