#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quarvel {

/// How the bytes of a level are written: as they are, or as UTF-8 (those above 127 being Windows-1252).
enum class TextCoding { AsIs, Utf8 };

/// Appends `text` in that coding.
void AppendCoded(std::string& out, std::string_view text, TextCoding coding);

/// A scene file that grows block by block. It is never held open: blocks are gathered, and each batch of them opens the
/// file, appends and closes it again.
class TextFile {
 public:
  /// Creates the file afresh, emptying an existing one.
  TextFile(std::filesystem::path path, TextCoding coding);
  ~TextFile() { Flush(); }
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;

  /// Appends the text as it stands.
  void Append(std::string_view text);
  /// Appends the text and a line end of its own.
  void AppendLine(std::string_view text);
  /// Writes what is still gathered. False when any write so far has failed; nothing is written after a failure.
  bool Flush();

  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
  TextCoding coding_;
  std::string gathered_;
  bool good_;
};

} // namespace quarvel
