#include "images/image_file.h"

#include "base/output_file.h"
#include "images/bytes.h"
#include "images/image_headers.h"
#include "images/image_jpg.h"
#include "images/image_png.h"
#include "images/module_bmp.h"
#include "images/module_dds.h"
#include "images/module_pcx.h"
#include "images/module_tga.h"

#include <algorithm>
#include <array>
#include <fstream>

namespace quarvel {

namespace fs = std::filesystem;

namespace {

struct FileContent {
  std::vector<std::uint8_t> Data;
  std::string Error;
};

FileContent ReadContent(const fs::path& file) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(file, error);
  if (error) return {{}, "the file cannot be read: " + error.message()};
  if (size > MaxImageFileSize) return {{}, "the file is too large"};
  FileContent content;
  content.Data.resize(static_cast<std::size_t>(size));
  std::ifstream stream(file, std::ios::binary);
  stream.read(reinterpret_cast<char*>(content.Data.data()), static_cast<std::streamsize>(size));
  if (!stream) content.Error = "the file cannot be read";
  return content;
}

/// The first bytes of a file, enough for the headers that tell about transparency.
struct FileHead {
  explicit FileHead(const fs::path& file) {
    std::error_code error;
    FileSize = fs::file_size(file, error);
    std::ifstream stream(file, std::ios::binary);
    stream.read(reinterpret_cast<char*>(Buffer.data()), static_cast<std::streamsize>(Buffer.size()));
    Count = error ? 0 : static_cast<std::size_t>(std::max<std::streamsize>(0, stream.gcount()));
    Type = ImageTypeOfContent(Data(), file.extension().string());
  }
  Bytes Data() const { return Bytes(Buffer.data(), Count); }

  std::array<std::uint8_t, 256> Buffer{};
  std::size_t Count = 0;
  std::uintmax_t FileSize = 0;
  ImageType Type = ImageType::Unknown;
};

bool MayBeTransparent(const BmpHeader& header) {
  return header.BitsPerPixel <= 8 || header.BitsPerPixel == 32 || (header.HasMasks && header.Masks[3] != 0);
}

bool MayBeTransparent(const TgaHeader& header) {
  return header.BitsPerPixel == 32 || header.AlphaBits > 0 || header.PaletteBits == 32 ||
         (header.Kind == 3 && header.BitsPerPixel == 16);
}

bool HeaderMayBeTransparent(ByteView head, ImageType type, std::uint64_t fileSize) {
  if (type == ImageType::Png || type == ImageType::Dds) return true;
  if (type == ImageType::Bmp) {
    const auto header = ReadBmpHeader(head, fileSize);
    return header && MayBeTransparent(*header);
  }
  if (type == ImageType::Pcx) {
    const auto header = ReadPcxHeader(head, fileSize);
    return header && header->Planes == 1;
  }
  if (type != ImageType::Tga) return false;
  const auto header = ReadTgaHeader(head, fileSize);
  return header && MayBeTransparent(*header);
}

Heightmap HeightmapOf(const Image& image) {
  Heightmap map{image.Width, image.Height, {}};
  if (image.Format == PixelFormat::Grey16) {
    map.Samples = image.Samples;
    return map;
  }
  map.Samples.reserve(image.Values.size() / 4);
  for (std::size_t i = 0; i + 3 < image.Values.size(); i += 4) {
    const int sum = image.Values[i] + image.Values[i + 1] + image.Values[i + 2];
    map.Samples.push_back(static_cast<std::uint16_t>(sum * 256 / 3));
  }
  return map;
}

struct Codec {
  ImageType Type;
  ImageResult (*Read)(Bytes);
  std::vector<std::uint8_t> (*Write)(const Image&); ///< nullptr: images of this type are only read
};

constexpr std::array codecs{
    Codec{ImageType::Png, ReadPng, WritePng}, Codec{ImageType::Jpg, ReadJpg, WriteJpg},
    Codec{ImageType::Bmp, ReadBmp, WriteBmp}, Codec{ImageType::Tga, ReadTga, WriteTga},
    Codec{ImageType::Dds, ReadDds, nullptr},  Codec{ImageType::Pcx, ReadPcx, nullptr},
};

const Codec* CodecOf(ImageType type) {
  const auto* at = std::find_if(codecs.begin(), codecs.end(), [&](const Codec& codec) { return codec.Type == type; });
  return at == codecs.end() ? nullptr : at;
}

} // namespace

ImageResult ReadImage(Bytes file, std::string_view extension) {
  const ImageType type = ImageTypeOfContent(file, extension);
  if (type == ImageType::Unknown) return ImageError("the image type is not known");
  if (const Codec* codec = CodecOf(type)) return codec->Read(file);
  return ImageError("gif images are not converted");
}

ImageResult ReadImageFile(const fs::path& file) {
  const FileContent content = ReadContent(file);
  if (!content.Error.empty()) return ImageError(content.Error);
  return ReadImage(content.Data, file.extension().string());
}

std::vector<std::uint8_t> EncodeImage(const Image& image, ImageType type) {
  const Codec* codec = CodecOf(type);
  return codec && codec->Write ? codec->Write(image) : std::vector<std::uint8_t>();
}

bool WriteImageFile(const Image& image, ImageType type, const fs::path& file) {
  const std::vector<std::uint8_t> bytes = EncodeImage(image, type);
  return !bytes.empty() && WriteWholeFile(file, std::span(bytes)).empty();
}

bool MayBeTransparent(const fs::path& file) {
  const FileHead head(file);
  return HeaderMayBeTransparent(ByteView(head.Data()), head.Type, head.FileSize);
}

bool HidesTransparency(const fs::path& file) {
  const FileHead head(file);
  if (head.Type != ImageType::Bmp) return false;
  const auto header = ReadBmpHeader(ByteView(head.Data()), head.FileSize);
  return header && MayBeTransparent(*header) && !header->HasMasks;
}

HeightmapResult ReadHeightmap(Bytes file, std::string_view extension) {
  const ImageType type = ImageTypeOfContent(file, extension);
  ImageResult result = type == ImageType::Bmp   ? ReadHeightmapBmp(file)
                       : type == ImageType::Png ? ReadHeightmapPng(file)
                                                : ReadImage(file, extension);
  if (!result) return {std::nullopt, result.Error};
  if (result.Picture->Format == PixelFormat::Palette8)
    result.Picture = ToRgba(std::move(*result.Picture), Transparency::Dropped);
  return {HeightmapOf(*result.Picture), {}};
}

HeightmapResult ReadHeightmap(const fs::path& file) {
  const FileContent content = ReadContent(file);
  if (!content.Error.empty()) return {std::nullopt, content.Error};
  return ReadHeightmap(content.Data, file.extension().string());
}

} // namespace quarvel
