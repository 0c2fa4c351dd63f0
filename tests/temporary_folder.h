#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

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

  /// Writes a file, and makes the folders on the way, too.
  std::filesystem::path Write(const std::filesystem::path& name, std::string_view text) const {
    const std::filesystem::path file = path_ / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary).write(text.data(), static_cast<std::streamsize>(text.size()));
    return file;
  }
  std::filesystem::path Write(const std::filesystem::path& name, const std::vector<std::uint8_t>& content) const {
    return Write(name, std::string_view(reinterpret_cast<const char*>(content.data()), content.size()));
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

namespace test {

/// A test with a folder of its own.
class TempFolder : public ::testing::Test {
 protected:
  template <typename Content>
  std::filesystem::path Write(const std::filesystem::path& name, const Content& content) const {
    return made_.Write(name, content);
  }
  std::string Read(const std::filesystem::path& name) const { return made_.Read(name); }

 private:
  const TemporaryFolder made_;

 protected:
  const std::filesystem::path& folder_ = made_.Path();
};

} // namespace test

} // namespace quarvel
