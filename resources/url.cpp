#include "resources/url.h"

#include "base/ascii_text.h"
#include "base/text_coding.h"

namespace quarvel {
namespace {

constexpr std::string_view unreserved = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
constexpr std::string_view addressCharacters = "/:?#=%@+,;!*()[]$"; // and "&", which a document has to escape
constexpr std::string_view hexDigits = "0123456789ABCDEF";

void AppendEncoded(char c, std::string& out) {
  const auto byte = static_cast<unsigned char>(c);
  out += '%';
  out += hexDigits[byte >> 4U];
  out += hexDigits[byte & 15U];
}

std::string Encode(std::string_view text, std::string_view alsoKept) {
  std::string out;
  for (const char c : text) {
    if (c == '\\') {
      out += '/';
    } else if (unreserved.find(c) != std::string_view::npos || alsoKept.find(c) != std::string_view::npos) {
      out += c;
    } else {
      AppendEncoded(c, out);
    }
  }
  return out;
}

} // namespace

std::string EncodeUrlPath(std::string_view path) { return Encode(path, "/"); }

std::string EncodeWebAddress(std::string_view address) {
  return Encode(ToUtf8(Trimmed(address)), std::string(addressCharacters) + "&");
}

std::string UrlPrefix(std::string_view typed) {
  std::string prefix = Encode(ToUtf8(Trimmed(typed)), addressCharacters);
  if (!prefix.empty() && prefix.back() != '/') prefix += '/';
  return prefix;
}

} // namespace quarvel
