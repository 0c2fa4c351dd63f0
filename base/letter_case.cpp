#include "base/letter_case.h"

#include "base/ascii_text.h"

#include <algorithm>
#include <array>
#include <utf8proc.h>

namespace quarvel {

namespace {

/// The library folds fully, which can make several characters of one. There, lower case is the simple folding, except
/// of the capital I with a dot, which has none.
utf8proc_int32_t SimpleFolding(utf8proc_int32_t code) {
  constexpr utf8proc_int32_t capitalIWithDot = 0x130;
  std::array<utf8proc_int32_t, 4> folded{};
  int boundary = 0;
  const auto length = utf8proc_decompose_char(code, folded.data(), static_cast<utf8proc_ssize_t>(folded.size()),
                                              UTF8PROC_CASEFOLD, &boundary);
  if (length == 1) return folded[0];
  return code == capitalIWithDot ? code : utf8proc_tolower(code);
}

} // namespace

std::string FoldLetterCase(std::string_view text) {
  if (std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; }))
    return LowerCase(text);
  std::string folded;
  while (!text.empty()) {
    utf8proc_int32_t code = 0;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                         static_cast<utf8proc_ssize_t>(text.size()), &code);
    std::array<utf8proc_uint8_t, 4> bytes{static_cast<utf8proc_uint8_t>(text.front())};
    const auto count = length > 0 ? utf8proc_encode_char(SimpleFolding(code), bytes.data()) : 1;
    folded.append(reinterpret_cast<const char*>(bytes.data()), static_cast<std::size_t>(count));
    text.remove_prefix(length > 0 ? static_cast<std::size_t>(length) : 1);
  }
  return folded;
}

} // namespace quarvel
