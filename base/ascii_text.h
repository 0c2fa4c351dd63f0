#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace quarvel {

/// ASCII letters only, whatever the locale; other bytes stay as they are.
inline char LowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

inline std::string LowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) { return LowerCase(c); });
  return lower;
}

/// Equal without regard to letter case: how values that were read are compared.
inline bool SameText(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return LowerCase(x) == LowerCase(y); });
}

inline bool StartsWithText(std::string_view text, std::string_view prefix) {
  return SameText(text.substr(0, prefix.size()), prefix);
}

/// Without the characters of `what` at both ends; blanks and tabs unless told otherwise.
inline std::string_view Trimmed(std::string_view text, std::string_view what = " \t") {
  const std::size_t first = text.find_first_not_of(what);
  return first == text.npos ? std::string_view{} : text.substr(first, text.find_last_not_of(what) - first + 1);
}

/// Ends every line that is written.
inline constexpr std::string_view LineEnd = "\r\n";

} // namespace quarvel
