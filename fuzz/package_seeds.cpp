#include "tests/packages/made_package.h"

#include <filesystem>
#include <fstream>
#include <string>

/// Writes a few packages into a folder.
int main(int count, char** arguments) {
  if (count != 2) return 2;
  const std::filesystem::path folder = arguments[1];
  std::filesystem::create_directories(folder);
  const auto write = [&](const std::string& name, const quarvel::test::Blob& file) {
    std::ofstream(folder / name, std::ios::binary)
        .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
  };
  for (const int version : {61, 62, 63, 69}) {
    write("textures" + std::to_string(version), quarvel::test::MadeTextures(version));
    write("level" + std::to_string(version), quarvel::test::MadeLevel(version));
  }
}
