#include "base/output_file.h"

#include <array>
#include <cerrno>
#include <random>
#include <system_error>

namespace quarvel {

namespace fs = std::filesystem;

namespace {

std::string Reason(int error) { return std::generic_category().message(error != 0 ? error : EIO); }

std::FILE* Open(const fs::path& path, const char* mode) {
  errno = 0;
#ifdef _WIN32
  return _wfopen(path.c_str(), std::wstring(mode, mode + std::char_traits<char>::length(mode)).c_str());
#else
  return std::fopen(path.c_str(), mode);
#endif
}

/// The file that a chain of links leads to, whether it is there or not.
fs::path LinkTarget(fs::path path) {
  constexpr int longestChain = 40;
  std::error_code error;
  for (int i = 0; i < longestChain && fs::is_symlink(fs::symlink_status(path, error)); ++i) {
    const fs::path target = fs::read_symlink(path, error);
    if (error) return path;
    path = target.is_absolute() ? target : path.parent_path() / target;
  }
  return path;
}

/// A name that no file has; short, as that of the file may be as long as the system allows.
fs::path TemporaryBeside(const fs::path& target) {
  std::random_device random;
  std::array<char, 32> name{};
  std::snprintf(name.data(), name.size(), ".quarvel-%08x%08x.tmp", random(), random());
  return target.parent_path() / name.data();
}

/// The administrator may write every file, but one that is protected from everybody is to stay all the same.
std::string WhyNotReplaceable(const fs::path& file, fs::perms permissions) {
  constexpr fs::perms anyWrite = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  if ((permissions & anyWrite) == fs::perms::none) return Reason(EACCES);
  std::FILE* const opened = Open(file, "r+b"); // changes nothing
  if (!opened) return Reason(errno);
  std::fclose(opened);
  return {};
}

bool IsPlainOrNone(const fs::file_status& status) {
  return status.type() == fs::file_type::regular || status.type() == fs::file_type::not_found ||
         status.type() == fs::file_type::symlink;
}

fs::file_status StatusAt(const fs::path& target, AtLink atLink) {
  std::error_code error;
  return atLink == AtLink::Follow ? fs::status(target, error) : fs::symlink_status(target, error);
}

} // namespace

OutputFile::OutputFile(fs::path path, AtLink atLink)
    : path_(std::move(path)), target_(atLink == AtLink::Follow ? LinkTarget(path_) : path_) {
  const fs::file_status status = StatusAt(target_, atLink);
  if (status.type() == fs::file_type::directory) {
    Fail(Reason(EISDIR));
  } else if (!IsPlainOrNone(status)) {
    direct_.reset(Open(target_, "wb"));
    if (!direct_) Fail(Reason(errno));
  } else {
    if (status.type() == fs::file_type::regular) {
      permissions_ = status.permissions();
      if (std::string why = WhyNotReplaceable(target_, permissions_); !why.empty()) {
        Fail(std::move(why));
        return;
      }
    }
    OpenBeside();
  }
}

OutputFile::~OutputFile() {
  std::error_code ignored;
  if (!temporary_.empty()) fs::remove(temporary_, ignored);
}

void OutputFile::OpenBeside() {
  constexpr int attempts = 100;
  std::FILE* file = nullptr;
  for (int i = 0; i < attempts && !file; ++i) {
    temporary_ = TemporaryBeside(target_);
    file = Open(temporary_, "wbx"); // fails at whatever is there, be it a link
    if (!file && errno != EEXIST) break;
  }
  if (file) {
    std::fclose(file);
    return;
  }
  const int error = errno;
  temporary_.clear();
  Fail(Reason(error));
}

bool OutputFile::Fail(std::string reason) {
  if (error_.empty()) error_ = std::move(reason);
  return false;
}

bool OutputFile::Append(std::string_view bytes) {
  if (!error_.empty()) return false;
  if (bytes.data() == nullptr) bytes = ""; // which fwrite does not take, even for no bytes
  if (direct_) {
    const bool good =
        std::fwrite(bytes.data(), 1, bytes.size(), direct_.get()) == bytes.size() && std::fflush(direct_.get()) == 0;
    return good || Fail(Reason(errno));
  }
  std::FILE* const file = Open(temporary_, "r+b");
  if (!file) return Fail(Reason(errno));
  bool good = std::fseek(file, 0, SEEK_END) == 0 && std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  int error = errno;
  if (std::fclose(file) != 0) { // a full disk may show only here
    if (good) error = errno;
    good = false;
  }
  return good || Fail(Reason(error));
}

bool OutputFile::Complete() {
  if (!error_.empty()) return false;
  if (direct_) {
    errno = 0;
    return std::fclose(direct_.release()) == 0 || Fail(Reason(errno));
  }
  if (temporary_.empty()) return true; // done before
  std::error_code error;
  if (permissions_ != fs::perms::unknown) fs::permissions(temporary_, permissions_, error);
  fs::rename(temporary_, target_, error);
  if (error) return Fail(error.message());
  temporary_.clear();
  return true;
}

std::string WriteWholeFile(const fs::path& path, std::string_view bytes, AtLink atLink) {
  OutputFile file(path, atLink);
  file.Append(bytes);
  file.Complete();
  return file.Error();
}

std::string WriteWholeFile(const fs::path& path, std::span<const std::uint8_t> bytes) {
  return WriteWholeFile(path, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

std::string WhyNotWritable(const fs::path& path, AtLink atLink) {
  const fs::path target = atLink == AtLink::Follow ? LinkTarget(path) : path;
  const fs::file_status status = StatusAt(target, atLink);
  // Opening a pipe here would tell its reader that all is over.
  if (status.type() != fs::file_type::directory && !IsPlainOrNone(status)) return {};
  return OutputFile(path, atLink).Error();
}

} // namespace quarvel
