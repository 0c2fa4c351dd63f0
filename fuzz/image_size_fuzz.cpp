#include "fuzz/image_extension.h"
#include "images/image_size.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const quarvel::FuzzedImage image(data, size);
  const auto found = quarvel::ReadImageSize(image.File, image.Extension);
  if (found && (found->Width < 1 || found->Height < 1)) std::abort();
  return 0;
}
