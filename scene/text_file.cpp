#include "scene/text_file.h"

#include "base/ascii_text.h"
#include "base/text_coding.h"

#include <algorithm>

namespace quarvel {

namespace {

constexpr std::size_t batchSize = 1 << 20;

} // namespace

void AppendCoded(std::string& out, std::string_view text, TextCoding coding) {
  const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (coding == TextCoding::AsIs || std::all_of(text.begin(), text.end(), isAscii)) {
    out += text;
    return;
  }
  AppendWindows1252(out, text);
}

void TextFile::Append(std::string_view text) {
  AppendCoded(gathered_, text, coding_);
  if (gathered_.size() >= batchSize) Flush();
}

void TextFile::AppendLine(std::string_view text) {
  Append(text);
  Append(LineEnd);
}

bool TextFile::Flush() {
  if (!gathered_.empty()) file_.Append(gathered_);
  gathered_.clear();
  return file_.Error().empty();
}

} // namespace quarvel
