#include "packages/mapped_file.h"

#include <utility>

#ifdef _WIN32
#include <fstream>
#include <iterator>
#else
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace quarvel {

MappedFile::MappedFile(MappedFile&& other) noexcept { *this = std::move(other); }

MappedFile& MappedFile::operator=(MappedFile&& other) noexcept {
  std::swap(content_, other.content_);
#ifdef _WIN32
  std::swap(copy_, other.copy_);
#endif
  return *this;
}

#ifdef _WIN32

std::optional<MappedFile> MappedFile::Open(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return std::nullopt;
  MappedFile mapped;
  mapped.copy_.assign(std::istreambuf_iterator<char>(stream), {});
  mapped.content_ = mapped.copy_;
  return mapped;
}

MappedFile::~MappedFile() = default;

#else

std::optional<MappedFile> MappedFile::Open(const std::filesystem::path& file) {
  const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return std::nullopt;
  std::optional<MappedFile> mapped;
  struct stat status {};
  if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
    const auto size = static_cast<std::size_t>(status.st_size);
    void* at = size == 0 ? nullptr : mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (at != MAP_FAILED) {
      mapped = MappedFile();
      mapped->content_ = Bytes(static_cast<const std::uint8_t*>(at), size);
    }
  }
  close(descriptor);
  return mapped;
}

MappedFile::~MappedFile() {
  if (!content_.empty()) munmap(const_cast<std::uint8_t*>(content_.data()), content_.size());
}

#endif

} // namespace quarvel
