#include "fuzz/image_extension.h"
#include "images/image_file.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const quarvel::FuzzedImage image(data, size);
  const auto result = quarvel::ReadHeightmap(image.File, image.Extension);
  if (!result.Map) return 0;
  const auto samples = static_cast<std::size_t>(result.Map->Width) * static_cast<std::size_t>(result.Map->Height);
  if (result.Map->Samples.size() != samples) std::abort();
  return 0;
}
