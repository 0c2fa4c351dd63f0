#pragma once

#include "base/output_file.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace quarvel {

/// How the bytes of a level are written: as they are, or as UTF-8 (those above 127 being Windows-1252).
enum class TextCoding { AsIs, Utf8 };

/// Appends `text` in that coding.
void AppendCoded(std::string& out, std::string_view text, TextCoding coding);

/// A scene file that grows block by block, beside its place until it is complete. It is never held open: blocks are
/// gathered, and each batch of them opens the file, appends and closes it again.
class TextFile {
 public:
  TextFile(std::filesystem::path path, TextCoding coding, AtLink atLink = AtLink::Replace)
      : file_(std::move(path), atLink), coding_(coding) {}

  /// Appends the text as it stands.
  void Append(std::string_view text);
  /// Appends the text and a line end of its own.
  void AppendLine(std::string_view text);
  /// Writes what is still gathered. False when any write so far has failed; nothing is written after a failure.
  bool Flush();
  /// Puts the file in its place, as far as it is written. Without this, what was there before stays.
  bool Complete() { return Flush() && file_.Complete(); }

  const std::filesystem::path& Path() const { return file_.Path(); }
  const std::string& Error() const { return file_.Error(); } ///< as in `OutputFile`

 private:
  OutputFile file_;
  TextCoding coding_;
  std::string gathered_;
};

} // namespace quarvel
