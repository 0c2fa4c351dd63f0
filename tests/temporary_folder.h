#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

namespace quarvel {

/// An empty folder that lives as long as its test.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = (std::filesystem::path(testing::TempDir()) / "quarvelXXXXXX").string();
    path_ = mkdtemp(pattern.data());
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }

  /// Makes the folders on the way, too.
  void Write(const std::filesystem::path& name, const std::string& text) const {
    std::filesystem::create_directories((path_ / name).parent_path());
    std::ofstream(path_ / name, std::ios::binary) << text;
  }

  /// A file, or what is written so far of one that is not complete.
  std::string Read(const std::filesystem::path& name) const {
    std::filesystem::path file = path_ / name;
    if (std::filesystem::is_directory(file.parent_path()) && !std::filesystem::exists(file))
      for (const auto& entry : std::filesystem::directory_iterator(file.parent_path()))
        if (entry.path().extension() == ".tmp") file = entry.path();
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

 private:
  std::filesystem::path path_;
};

} // namespace quarvel
