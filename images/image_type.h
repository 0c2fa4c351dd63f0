#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace quarvel {

/// The raw bytes of a file, or of its head.
using Bytes = std::span<const std::uint8_t>;

/// The image formats that a texture library may hold, in the order in which they are preferred when nothing else
/// decides between two files.
enum class ImageType { Png, Jpg, Gif, Bmp, Tga, Dds, Pcx, Unknown };

/// The type that a file's extension names ("PNG", ".jpeg" and "jpg" are understood), or `Unknown`.
ImageType ImageTypeOfExtension(std::string_view extension);

/// The type by content. tga has no signature and pcx a weak one, so for these the extension must agree.
ImageType ImageTypeOfContent(Bytes head, std::string_view extension);

/// The extension of a type, lower case and without a point; empty for `Unknown`.
std::string_view ExtensionOf(ImageType type);

/// True for the types that images can be converted to.
bool CanWriteImage(ImageType type);

/// True for the types whose pixels can be read.
bool CanReadPixels(ImageType type);

} // namespace quarvel
