#include "tests/packages/made_package.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const quarvel::PackageResult read = quarvel::ReadPackage(quarvel::Bytes(data, size), "Fuzzed");
  if (!read && read.Error.empty()) std::abort();
  if (read) quarvel::test::ReadEverything(*read.Value);
  return 0;
}
