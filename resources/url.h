#pragma once

#include <string>
#include <string_view>

namespace quarvel {

/// Percent-encodes a relative path for a URL (RFC 3986): the unreserved characters and "/" stay, "\" becomes "/", all
/// else is encoded, so that the result can stand in a text scene's string and in an XML attribute as it is.
std::string EncodeUrlPath(std::string_view path);

/// What a user typed as the beginning of URLs, for instance a web address: characters with a meaning in URLs stay,
/// except those that would end or break an attribute value. "\" becomes "/", and a "/" is added at the end of a
/// non-empty prefix.
std::string UrlPrefix(std::string_view typed);

/// A whole web address: characters with a meaning in URLs stay, those that would end or break an attribute value are
/// encoded.
std::string EncodeWebAddress(std::string_view address);

} // namespace quarvel
