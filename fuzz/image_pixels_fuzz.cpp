#include "fuzz/image_extension.h"
#include "images/image_file.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const quarvel::FuzzedImage image(data, size);
  quarvel::ImageResult result = quarvel::ReadImage(image.File, image.Extension);
  if (!result) return 0;
  const auto pixels =
      static_cast<std::size_t>(result.Picture->Width) * static_cast<std::size_t>(result.Picture->Height);
  const quarvel::Image rgba = quarvel::ToRgba(std::move(*result.Picture), quarvel::Transparency::Masked);
  if (rgba.Values.size() != pixels * 4) std::abort();
  if (pixels <= 4096) // writing large pictures would only cost the fuzzer's time
    for (const auto type : {quarvel::ImageType::Png, quarvel::ImageType::Bmp, quarvel::ImageType::Tga})
      if (quarvel::EncodeImage(rgba, type).empty()) std::abort();
  return 0;
}
