#include "resources/preload_script.h"

#include "resources/url.h"

namespace quarvel {
namespace {

/// A string literal that also holds within a page: nothing in it can end the script or the literal.
std::string Literal(std::string_view text) {
  constexpr std::string_view hexDigits = "0123456789abcdef";
  std::string literal = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F || c == '"' || c == '\\' || c == '<' || c == '>' || c == '&') {
      literal += "\\u00";
      literal += hexDigits[byte >> 4U];
      literal += hexDigits[byte & 15U];
    } else {
      literal += c;
    }
  }
  return literal + "\"";
}

bool IsAddress(std::string_view url) {
  return url.find("://") != std::string_view::npos || url.substr(0, 1) == "/" || url.substr(0, 5) == "data:";
}

} // namespace

std::string MakePreloadScript(const std::vector<std::string>& urls, std::string_view baseUrl) {
  const std::string prefix = UrlPrefix(baseUrl);
  std::string script = "(function () {\n  var urls = [";
  for (std::size_t i = 0; i < urls.size(); ++i) {
    script += i == 0 ? "\n    " : ",\n    ";
    script += Literal(IsAddress(urls[i]) ? urls[i] : prefix + urls[i]);
  }
  script += urls.empty() ? "];\n" : "\n  ];\n";
  script += "  var images = [];\n"
            "  for (var i = 0; i < urls.length; i += 1) {\n"
            "    images[i] = new Image();\n"
            "    images[i].src = urls[i];\n"
            "  }\n"
            "}());\n";
  return script;
}

} // namespace quarvel
