#pragma once

#include <string>
#include <string_view>

namespace quarvel {

/// The name of a file that is called after something in a level, without its extension; every such name comes from
/// here. A level is a stranger's text: what would lead elsewhere or make the file unusable on some system (separators,
/// drive letters, control characters, the names of devices, blanks or points at the ends, excessive length) is
/// replaced. Ordinary names come through unchanged, in UTF-8.
std::string FileNameOf(std::string_view levelText);

/// A text in UTF-8 that can be shown on a terminal or stand in one line of a list: control characters, line breaks and
/// marks that turn the direction of writing become "?".
std::string PrintableText(std::string_view text);

} // namespace quarvel
