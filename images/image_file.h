#pragma once

#include "images/image.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// Files above this size are not read into memory.
inline constexpr std::uintmax_t MaxImageFileSize = 512ULL * 1024 * 1024;

/// The pixels of an image of any readable type (all but gif). `extension` tells the types without a signature.
ImageResult ReadImage(Bytes file, std::string_view extension);
ImageResult ReadImageFile(const std::filesystem::path& file);

/// The bytes of a file that holds an RGBA image; empty when the type cannot be written.
std::vector<std::uint8_t> EncodeImage(const Image& image, ImageType type);

/// Writes an RGBA image. A file that could not be written whole is removed.
bool WriteImageFile(const Image& image, ImageType type, const std::filesystem::path& file);

/// True when an image can differ by how its transparency is taken: it has a palette that bmp and pcx mask by index 0,
/// or alpha. Looks at the header only.
bool MayBeTransparent(const std::filesystem::path& file);

/// True for a bmp whose transparency viewers do not see: masked by palette index, or in the unused byte of 32-bit
/// pixels.
bool HidesTransparency(const std::filesystem::path& file);

/// The heights of a terrain; rows from the top of the image.
struct Heightmap {
  int Width = 0;
  int Height = 0;
  std::vector<std::uint16_t> Samples;
};

struct HeightmapResult {
  std::optional<Heightmap> Map;
  std::string Error; ///< as in `ImageResult`
};

/// Reads 16-bit samples from a 16-bit bmp or a grey 16-bit png. Of other images the mean of red, green and blue is
/// taken, times 256, so that the middle grey 128 is the middle height 32768.
HeightmapResult ReadHeightmap(const std::filesystem::path& file);
HeightmapResult ReadHeightmap(Bytes file, std::string_view extension);

} // namespace quarvel
