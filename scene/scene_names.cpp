#include "scene/scene_names.h"

namespace quarvel {

namespace {

bool IsForbiddenInNames(char c) {
  const auto code = static_cast<unsigned char>(c);
  return code <= 0x20 || code >= 0x7f || std::string_view("\"#',.:[\\]{}&<>").find(c) != std::string_view::npos;
}

/// What is put before and behind a name keeps it below 200 characters.
constexpr std::size_t longestName = 180;

bool IsForbiddenFirst(char c) { return (c >= '0' && c <= '9') || c == '+' || c == '-'; }

} // namespace

std::string MakeDefName(std::string_view text) {
  std::string name;
  if (text.empty() || IsForbiddenFirst(text.front())) name = "_";
  for (const char c : text.substr(0, longestName))
    name += IsForbiddenInNames(c) ? '_' : c;
  return name;
}

std::string MakeSceneText(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c == '\'')
      result += '`';
    else if (c == '"')
      result += "``";
    else if (c == '&' || c == '<' || c == '\\' || static_cast<unsigned char>(c) < 0x20 || c == 0x7f)
      result += '_';
    else
      result += c;
  }
  return result;
}

std::string UniqueNames::Take(std::string name) {
  auto [entry, isNew] = taken_.try_emplace(name, 1);
  if (isNew) return name;
  for (;;) {
    std::string numbered = name + "_" + std::to_string(++entry->second);
    if (taken_.try_emplace(numbered, 1).second) return numbered;
    entry = taken_.find(name);
  }
}

} // namespace quarvel
