#pragma once

#include <string>
#include <string_view>

namespace quarvel {

/// The bytes as a gzip file (RFC 1952) without a time, so that equal bytes give equal files.
std::string Gzip(std::string_view bytes);

/// The bytes in base64 (RFC 4648, clause 4).
std::string Base64(std::string_view bytes);

/// Text for the content of an HTML element or a quoted attribute.
std::string EscapeHtml(std::string_view text);

/// Text as a JSON string with its quotes (RFC 8259), which can stand in an HTML script element. Bytes that are not
/// UTF-8 are taken as Windows-1252.
std::string JsonString(std::string_view text);

/// 32 hexadecimal digits that differ for different bytes. Not for secrets.
std::string Fingerprint(std::string_view bytes);

} // namespace quarvel
