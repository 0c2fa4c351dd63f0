#include "resources/url.h"

#include "base/ascii_text.h"
#include "base/text_coding.h"

namespace quarvel {
namespace {

constexpr std::string_view Unreserved = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
constexpr std::string_view AddressCharacters = "/:?#=%@+,;!*()[]$"; // and "&", which a document has to escape
constexpr std::string_view HexDigits = "0123456789ABCDEF";

void AppendEncoded(char c, std::string& out) {
  const auto byte = static_cast<unsigned char>(c);
  out += '%';
  out += HexDigits[byte >> 4U];
  out += HexDigits[byte & 15U];
}

std::string Encode(std::string_view text, std::string_view alsoKept) {
  std::string out;
  for (const char c : text) {
    if (c == '\\') {
      out += '/';
    } else if (Unreserved.find(c) != std::string_view::npos || alsoKept.find(c) != std::string_view::npos) {
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
  return Encode(ToUtf8(Trimmed(address)), std::string(AddressCharacters) + "&");
}

std::string UrlPrefix(std::string_view typed) {
  std::string prefix = Encode(ToUtf8(Trimmed(typed)), AddressCharacters);
  if (!prefix.empty() && prefix.back() != '/') prefix += '/';
  return prefix;
}

} // namespace quarvel
