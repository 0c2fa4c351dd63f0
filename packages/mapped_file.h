#pragma once

#include "images/image_type.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace quarvel {

/// A file's bytes, mapped into memory for reading: what is not looked at is not read. The bytes stay where they are
/// when the object is moved.
class MappedFile {
 public:
  /// Nothing when the file cannot be read or is no ordinary file.
  static std::optional<MappedFile> Open(const std::filesystem::path& file);

  MappedFile(MappedFile&& other) noexcept;
  MappedFile& operator=(MappedFile&& other) noexcept;
  ~MappedFile();

  Bytes Content() const { return content_; }

 private:
  MappedFile() = default;

  Bytes content_;
#ifdef _WIN32
  std::vector<std::uint8_t> copy_;
#endif
};

} // namespace quarvel
