#include "page/string_field.h"

#include "base/ascii_text.h"

namespace quarvel {

namespace {

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char lower = LowerCase(c);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

} // namespace

std::vector<std::string> ReadStrings(std::string_view value) {
  std::vector<std::string> strings;
  const std::size_t first = value.find_first_not_of(" \t\r\n,");
  if (first == value.npos) return strings;
  if (value[first] != '"') return {std::string(value.substr(first, value.find_last_not_of(" \t\r\n") - first + 1))};
  for (std::size_t at = first; at < value.size(); ++at) {
    if (value[at] != '"') continue;
    std::string text;
    for (++at; at < value.size() && value[at] != '"'; ++at) {
      if (value[at] == '\\' && at + 1 < value.size()) ++at;
      text += value[at];
    }
    strings.push_back(std::move(text));
  }
  return strings;
}

std::string DecodeUrl(std::string_view url) {
  std::string text;
  for (std::size_t at = 0; at < url.size(); ++at) {
    const int high = url[at] == '%' && at + 2 < url.size() ? HexDigit(url[at + 1]) : -1;
    const int low = high >= 0 ? HexDigit(url[at + 2]) : -1;
    if (low < 0) {
      text += url[at];
      continue;
    }
    text += static_cast<char>(high * 16 + low);
    at += 2;
  }
  return text;
}

} // namespace quarvel
