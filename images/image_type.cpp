#include "images/image_type.h"

#include "base/ascii_text.h"

#include <array>

namespace quarvel {
namespace {

struct TypeName {
  std::string_view Extension;
  ImageType Type;
};

constexpr std::array<TypeName, 8> typeNames{{
    {"png", ImageType::Png},
    {"jpg", ImageType::Jpg},
    {"jpeg", ImageType::Jpg},
    {"gif", ImageType::Gif},
    {"bmp", ImageType::Bmp},
    {"tga", ImageType::Tga},
    {"dds", ImageType::Dds},
    {"pcx", ImageType::Pcx},
}};

bool BeginsWith(Bytes bytes, std::string_view signature) {
  if (bytes.size() < signature.size()) return false;
  for (std::size_t i = 0; i < signature.size(); ++i)
    if (bytes[i] != static_cast<std::uint8_t>(signature[i])) return false;
  return true;
}

} // namespace

ImageType ImageTypeOfExtension(std::string_view extension) {
  if (!extension.empty() && extension.front() == '.') extension.remove_prefix(1);
  for (const TypeName& entry : typeNames)
    if (SameText(entry.Extension, extension)) return entry.Type;
  return ImageType::Unknown;
}

ImageType ImageTypeOfContent(Bytes head, std::string_view extension) {
  if (BeginsWith(head, "\x89PNG\r\n\x1a\n")) return ImageType::Png;
  if (BeginsWith(head, "\xFF\xD8\xFF")) return ImageType::Jpg;
  if (BeginsWith(head, "GIF87a") || BeginsWith(head, "GIF89a")) return ImageType::Gif;
  if (BeginsWith(head, "DDS ")) return ImageType::Dds;
  const ImageType named = ImageTypeOfExtension(extension);
  if (named == ImageType::Tga) return named;
  if (named == ImageType::Pcx && BeginsWith(head, "\x0A")) return named;
  if (BeginsWith(head, "BM")) return ImageType::Bmp;
  return ImageType::Unknown;
}

std::string_view ExtensionOf(ImageType type) {
  for (const TypeName& entry : typeNames)
    if (entry.Type == type) return entry.Extension;
  return {};
}

bool CanWriteImage(ImageType type) {
  return type == ImageType::Png || type == ImageType::Jpg || type == ImageType::Bmp || type == ImageType::Tga;
}

bool CanReadPixels(ImageType type) { return type != ImageType::Gif && type != ImageType::Unknown; }

} // namespace quarvel
