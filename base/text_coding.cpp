#include "base/text_coding.h"

#include "base/letter_case.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace quarvel {

namespace {

/// The code points of the bytes 0x80 to 0x9F in Windows-1252; the five that it leaves open stand for the control
/// characters of the same number.
constexpr std::array<char32_t, 32> windows1252{0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                               0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                               0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                               0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

/// The length of the UTF-8 sequence that begins at `at`, or 0 when there is none.
std::size_t Utf8Length(std::string_view text, std::size_t at) {
  const auto first = static_cast<std::uint8_t>(text[at]);
  const std::size_t length = first < 0x80   ? 1
                             : first < 0xC2 ? 0
                             : first < 0xE0 ? 2
                             : first < 0xF0 ? 3
                             : first < 0xF5 ? 4
                                            : 0;
  if (length == 0 || at + length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i)
    if ((static_cast<std::uint8_t>(text[at + i]) & 0xC0U) != 0x80U) return 0;
  return length;
}

bool IsUtf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = Utf8Length(text, at);
    if (length == 0) return false;
    at += length;
  }
  return true;
}

void AppendUtf8(char32_t code, std::string& out) {
  const auto byte = [](char32_t value) { return static_cast<char>(static_cast<unsigned char>(value)); };
  if (code < 0x80) {
    out += byte(code);
  } else if (code < 0x800) {
    out += byte(0xC0 | code >> 6);
    out += byte(0x80 | (code & 0x3F));
  } else {
    out += byte(0xE0 | code >> 12);
    out += byte(0x80 | (code >> 6 & 0x3F));
    out += byte(0x80 | (code & 0x3F));
  }
}

} // namespace

void AppendWindows1252(std::string& out, std::string_view text) {
  for (const char c : text) {
    const auto byte = static_cast<std::uint8_t>(c);
    AppendUtf8(byte >= 0x80 && byte < 0xA0 ? windows1252[byte - 0x80U] : byte, out);
  }
}

std::string ToUtf8(std::string_view text) {
  if (IsUtf8(text)) return std::string(text);
  std::string out;
  AppendWindows1252(out, text);
  return out;
}

std::string FoldName(std::string_view name) { return FoldLetterCase(ToUtf8(name)); }

} // namespace quarvel
