#include "scene/text_file.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>

namespace quarvel {

namespace {

constexpr std::size_t batchSize = 1 << 20;

/// Windows-1252, 0x80 to 0x9F; the five bytes it leaves open stand for the control characters of the same number.
constexpr std::array<std::uint16_t, 32> windows1252{0x20ac, 0x0081, 0x201a, 0x0192, 0x201e, 0x2026, 0x2020, 0x2021,
                                                    0x02c6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008d, 0x017d, 0x008f,
                                                    0x0090, 0x2018, 0x2019, 0x201c, 0x201d, 0x2022, 0x2013, 0x2014,
                                                    0x02dc, 0x2122, 0x0161, 0x203a, 0x0153, 0x009d, 0x017e, 0x0178};

void AppendUtf8(std::string& out, std::uint16_t code) {
  if (code >= 0x800) {
    out += static_cast<char>(0xe0 | (code >> 12));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3f));
  } else {
    out += static_cast<char>(0xc0 | (code >> 6));
  }
  out += static_cast<char>(0x80 | (code & 0x3f));
}

} // namespace

void AppendCoded(std::string& out, std::string_view text, TextCoding coding) {
  const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (coding == TextCoding::AsIs || std::all_of(text.begin(), text.end(), isAscii)) {
    out += text;
    return;
  }
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80)
      out += c;
    else
      AppendUtf8(out, byte < 0xa0 ? windows1252[byte - 0x80u] : byte);
  }
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
  Append("\r\n");
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
