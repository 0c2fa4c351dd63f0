#include "page/packing.h"

#include "base/text_coding.h"

#include <cstdint>
#include <stdexcept>
#include <zlib.h>

namespace quarvel {

namespace {

constexpr char base64Digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char hexDigits[] = "0123456789abcdef";

/// Fowler, Noll and Vo's hash 1a of 64 bits, from a basis.
std::uint64_t Hash(std::string_view bytes, std::uint64_t basis) {
  std::uint64_t hash = basis;
  for (const char byte : bytes)
    hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3ULL;
  return hash;
}

} // namespace

std::string Gzip(std::string_view bytes) {
  z_stream stream{};
  constexpr int gzipWindow = 15 + 16; // zlib: the largest window, and a gzip head
  if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, gzipWindow, 8, Z_DEFAULT_STRATEGY) != Z_OK)
    throw std::runtime_error("there is no memory to compress with");
  std::string packed(deflateBound(&stream, bytes.size()), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream.avail_in = static_cast<uInt>(bytes.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  const bool done = deflate(&stream, Z_FINISH) == Z_STREAM_END;
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  if (!done) throw std::runtime_error("the data cannot be compressed");
  return packed;
}

std::string Base64(std::string_view bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  const auto at = [&](std::size_t i) { return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U; };
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::uint32_t three = at(i) << 16 | at(i + 1) << 8 | at(i + 2);
    text += base64Digits[three >> 18];
    text += base64Digits[three >> 12 & 63];
    text += i + 1 < bytes.size() ? base64Digits[three >> 6 & 63] : '=';
    text += i + 2 < bytes.size() ? base64Digits[three & 63] : '=';
  }
  return text;
}

std::string EscapeHtml(std::string_view text) {
  std::string escaped;
  for (const char c : ToUtf8(text)) {
    if (c == '&')
      escaped += "&amp;";
    else if (c == '<')
      escaped += "&lt;";
    else if (c == '>')
      escaped += "&gt;";
    else if (c == '"')
      escaped += "&quot;";
    else if (c == '\'')
      escaped += "&#39;";
    else if (c == '\0')
      continue;
    else
      escaped += c;
  }
  return escaped;
}

std::string JsonString(std::string_view text) {
  std::string json = "\"";
  for (const char c : ToUtf8(text)) {
    const auto code = static_cast<unsigned char>(c);
    // "<" could end or open an element around the string.
    if (code < 0x20 || c == '<' || c == '>' || c == '&') {
      json += "\\u00";
      json += hexDigits[code >> 4];
      json += hexDigits[code & 15];
      continue;
    }
    if (c == '"' || c == '\\') json += '\\';
    json += c;
  }
  return json + '"';
}

std::string Fingerprint(std::string_view bytes) {
  std::string digits;
  for (const std::uint64_t basis : {0xcbf29ce484222325ULL, 0x9e3779b97f4a7c15ULL}) {
    const std::uint64_t hash = Hash(bytes, basis);
    for (int shift = 60; shift >= 0; shift -= 4)
      digits += hexDigits[hash >> shift & 15];
  }
  return digits;
}

} // namespace quarvel
