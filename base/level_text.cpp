#include "base/level_text.h"

#include "base/text_coding.h"

#include <algorithm>
#include <array>
#include <utf8proc.h>

namespace quarvel {

namespace {

/// In bytes. File systems allow 255; package names, numbers and extensions come on top.
constexpr std::size_t longestFileName = 120;

bool TurnsDirection(utf8proc_int32_t code) {
  return code == 0x61C || code == 0x200E || code == 0x200F || (code >= 0x202A && code <= 0x202E) ||
         (code >= 0x2066 && code <= 0x2069);
}

bool IsPrintable(utf8proc_int32_t code) {
  switch (utf8proc_category(code)) {
  case UTF8PROC_CATEGORY_CC:
  case UTF8PROC_CATEGORY_CS:
  case UTF8PROC_CATEGORY_ZL:
  case UTF8PROC_CATEGORY_ZP:
    return false;
  default:
    return !TurnsDirection(code);
  }
}

bool IsAllowedInFileNames(utf8proc_int32_t code) {
  constexpr std::string_view reserved = "/\\:*?\"<>|";
  return IsPrintable(code) && (code >= 0x80 || reserved.find(static_cast<char>(code)) == reserved.npos);
}

template <typename IsKept>
std::string Replaced(std::string_view text, IsKept isKept, char replacement) {
  const std::string utf8 = ToUtf8(text);
  std::string_view rest = utf8;
  std::string kept;
  while (!rest.empty()) {
    utf8proc_int32_t code = 0;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(rest.data()),
                                         static_cast<utf8proc_ssize_t>(rest.size()), &code);
    const auto bytes = static_cast<std::size_t>(std::max<utf8proc_ssize_t>(length, 1));
    if (length > 0 && isKept(code))
      kept += rest.substr(0, bytes);
    else
      kept += replacement;
    rest.remove_prefix(bytes);
  }
  return kept;
}

void CutBetweenCharacters(std::string& text, std::size_t length) {
  if (text.size() <= length) return;
  while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U)
    --length;
  text.resize(length);
}

/// Windows takes these for devices, in any folder and with any extension.
bool IsDevice(std::string_view name) {
  std::string stem = FoldName(name.substr(0, name.find('.')));
  stem.erase(stem.find_last_not_of(' ') + 1);
  constexpr std::array<std::string_view, 6> devices{"con", "prn", "aux", "nul", "conin$", "conout$"};
  if (std::find(devices.begin(), devices.end(), stem) != devices.end()) return true;
  const bool isPort = stem.starts_with("com") || stem.starts_with("lpt");
  constexpr std::array<std::string_view, 3> superscripts{"\xC2\xB9", "\xC2\xB2", "\xC2\xB3"};
  const std::string_view number = isPort ? std::string_view(stem).substr(3) : std::string_view();
  return (number.size() == 1 && number[0] >= '0' && number[0] <= '9') ||
         std::find(superscripts.begin(), superscripts.end(), number) != superscripts.end();
}

} // namespace

std::string FileNameOf(std::string_view levelText) {
  std::string name = Replaced(levelText, IsAllowedInFileNames, '_');
  CutBetweenCharacters(name, longestFileName);
  const std::size_t last = name.find_last_not_of(" .");
  name.erase(last == name.npos ? 0 : last + 1);
  if (name.empty() || name.front() == '.' || name.front() == ' ' || IsDevice(name)) name.insert(0, "_");
  return name;
}

std::string PrintableText(std::string_view text) { return Replaced(text, IsPrintable, '?'); }

} // namespace quarvel
