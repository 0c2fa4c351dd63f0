#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel::test {

/// A folder of its own for each test, removed at its end.
class TempFolder : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    folder_ = std::filesystem::temp_directory_path() /
              (std::string("quarvel_") + info->test_suite_name() + "_" + info->name());
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
  }
  void TearDown() override {
    std::error_code error;
    std::filesystem::remove_all(folder_, error);
  }

  /// Writes a file below the folder, making the folders it needs.
  std::filesystem::path Write(const std::string& relative, std::string_view content) {
    const std::filesystem::path file = folder_ / relative;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary).write(content.data(), static_cast<std::streamsize>(content.size()));
    return file;
  }
  std::filesystem::path Write(const std::string& relative, const std::vector<std::uint8_t>& content) {
    return Write(relative, std::string_view(reinterpret_cast<const char*>(content.data()), content.size()));
  }
  std::string Read(const std::string& relative) const {
    std::ifstream stream(folder_ / relative, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  bool Exists(const std::string& relative) const { return std::filesystem::exists(folder_ / relative); }

  std::filesystem::path folder_;
};

} // namespace quarvel::test
