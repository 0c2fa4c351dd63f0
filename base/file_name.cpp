#include "base/file_name.h"

#include "base/ascii_text.h"

#include <algorithm>

namespace quarvel {

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
