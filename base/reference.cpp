#include "base/reference.h"

#include "base/ascii_text.h"
#include "base/text_coding.h"

namespace quarvel {

namespace {

/// Meshes are at times named as files in folders.
constexpr std::string_view separators = "./\\";

std::string_view WithoutClass(std::string_view reference) {
  const std::size_t open = reference.find('\'');
  if (open == std::string_view::npos || open + 1 >= reference.size() || reference.back() != '\'') return reference;
  return reference.substr(open + 1, reference.size() - open - 2);
}

} // namespace

std::string_view ReferencePath(std::string_view reference) {
  return Trimmed(WithoutClass(Trimmed(reference, " \t\r\n\"")), " \t\"");
}

std::string_view ReferenceName(std::string_view reference) {
  const std::string_view path = ReferencePath(reference);
  return path.substr(path.find_last_of(separators) + 1);
}

ResourceReference ParseReference(std::string_view reference) {
  ResourceReference parsed;
  parsed.Text = ToUtf8(ReferencePath(reference));
  std::string_view rest = parsed.Text;
  for (std::size_t dot = rest.find_first_of(separators); dot != rest.npos; dot = rest.find_first_of(separators)) {
    if (dot > 0) parsed.Folders.emplace_back(rest.substr(0, dot));
    rest.remove_prefix(dot + 1);
  }
  parsed.Name = rest;
  return parsed;
}

} // namespace quarvel
