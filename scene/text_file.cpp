#include "scene/text_file.h"

#include "base/ascii_text.h"
#include "base/text_coding.h"

#include <algorithm>
#include <fstream>

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

TextFile::TextFile(std::filesystem::path path, TextCoding coding) : path_(std::move(path)), coding_(coding) {
  std::ofstream file(path_, std::ios::binary | std::ios::trunc);
  good_ = file.is_open();
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
  if (good_ && !gathered_.empty()) {
    std::ofstream file(path_, std::ios::binary | std::ios::app);
    file.write(gathered_.data(), static_cast<std::streamsize>(gathered_.size()));
    file.close();
    good_ = file.good();
  }
  gathered_.clear();
  return good_;
}

} // namespace quarvel
