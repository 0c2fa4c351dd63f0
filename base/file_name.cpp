#include "base/file_name.h"

#include "base/letter_case.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace quarvel {
namespace {

/// The code points of the bytes 0x80 to 0x9F in Windows-1252; unused ones keep their number.
constexpr std::array<char32_t, 32> Windows1252{0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
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

std::string_view WithoutClass(std::string_view reference) {
  const std::size_t open = reference.find('\'');
  if (open == std::string_view::npos || open + 1 >= reference.size() || reference.back() != '\'') return reference;
  return reference.substr(open + 1, reference.size() - open - 2);
}

std::string_view Trimmed(std::string_view text, std::string_view what) {
  const std::size_t first = text.find_first_not_of(what);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(what) - first + 1);
}

} // namespace

std::string ToUtf8(std::string_view text) {
  if (IsUtf8(text)) return std::string(text);
  std::string out;
  for (const char c : text) {
    const auto byte = static_cast<std::uint8_t>(c);
    AppendUtf8(byte >= 0x80 && byte < 0xA0 ? Windows1252[byte - 0x80U] : byte, out);
  }
  return out;
}

std::string FoldName(std::string_view name) { return FoldLetterCase(ToUtf8(name)); }

ResourceReference ParseReference(std::string_view reference) {
  ResourceReference parsed;
  const std::string_view text = Trimmed(WithoutClass(Trimmed(reference, " \t\r\n\"")), " \t\"");
  parsed.Text = ToUtf8(text);
  std::string_view rest = parsed.Text;
  for (std::size_t dot = rest.find_first_of("./\\"); dot != std::string_view::npos; dot = rest.find_first_of("./\\")) {
    if (dot > 0) parsed.Folders.emplace_back(rest.substr(0, dot));
    rest.remove_prefix(dot + 1);
  }
  parsed.Name = rest;
  return parsed;
}

std::filesystem::path PathOfUserText(std::string_view text) {
  std::string cleaned(Trimmed(text, " \t\r\n\""));
#ifndef _WIN32
  std::replace(cleaned.begin(), cleaned.end(), '\\', '/');
#endif
  return PathOfUtf8(cleaned);
}

std::string Utf8Path(const std::filesystem::path& path) {
#ifdef _WIN32
  const std::u8string text = path.generic_u8string();
  return std::string(text.begin(), text.end());
#else
  return path.generic_string();
#endif
}

std::filesystem::path PathOfUtf8(std::string_view text) {
#ifdef _WIN32
  return std::filesystem::path(std::u8string(text.begin(), text.end()));
#else
  return std::filesystem::path(text);
#endif
}

std::string StemOf(const std::string& name) { return name.substr(0, name.rfind('.')); }

std::string ExtensionOf(const std::string& name) {
  const std::size_t point = name.rfind('.');
  return point == std::string::npos ? std::string() : name.substr(point + 1);
}

bool LiesWithin(const std::filesystem::path& inner, const std::filesystem::path& outer) {
  auto at = inner.begin();
  for (const auto& part : outer) {
    if (part.empty()) continue; // a trailing separator
    if (at == inner.end() || *at != part) return false;
    ++at;
  }
  return true;
}

std::filesystem::path AbsolutePath(const std::filesystem::path& path) {
  std::error_code error;
  std::filesystem::path absolute = std::filesystem::absolute(path, error);
  if (error) absolute = path;
  absolute = absolute.lexically_normal();
  return absolute.has_filename() ? absolute : absolute.parent_path();
}

} // namespace quarvel
