#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace quarvel {

/// What becomes of a symbolic link that stands where a file is to be written: a link that the user named leads to the
/// file that is meant; any other may have come with a level, and gives way.
enum class AtLink { Replace, Follow };

/// A file that is written beside its place and takes it when it is complete: until then what was there stays, and of a
/// file that is given up nothing remains. What is there and no file (a pipe, a device) is written directly. A
/// write-protected file is not replaced; the permissions of one that is replaced are kept.
class OutputFile {
 public:
  explicit OutputFile(std::filesystem::path path, AtLink atLink = AtLink::Replace);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// Adds to the end. Files are not held open from one call to the next. False when this or an earlier step failed.
  bool Append(std::string_view bytes);
  /// Puts the file in its place, as far as it is written.
  bool Complete();

  const std::filesystem::path& Path() const { return path_; }
  /// Why it failed, as the system words it ("No space left on device"); empty while all is well.
  const std::string& Error() const { return error_; }

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  void OpenBeside();
  bool Fail(std::string reason);

  std::filesystem::path path_;
  std::filesystem::path target_;    ///< where a link leads
  std::filesystem::path temporary_; ///< empty when there is none (any more)
  std::unique_ptr<std::FILE, Close> direct_;
  std::filesystem::perms permissions_ = std::filesystem::perms::unknown;
  std::string error_;
};

/// Writes a whole file in that way. Returns the reason when it fails, or an empty string.
[[nodiscard]] std::string WriteWholeFile(const std::filesystem::path& path, std::string_view bytes,
                                         AtLink atLink = AtLink::Replace);
[[nodiscard]] std::string WriteWholeFile(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);

/// Why a file cannot be written there, as far as that can be told without writing it; empty when nothing speaks against
/// it.
[[nodiscard]] std::string WhyNotWritable(const std::filesystem::path& path, AtLink atLink = AtLink::Replace);

} // namespace quarvel
