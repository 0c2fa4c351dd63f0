#pragma once

#include <string>
#include <string_view>

namespace quarvel {

/// The text in the form in which letters of either case are the same: simple case folding (Unicode Standard, clause
/// 5.18), one character for one, in every script. `text` is UTF-8; bytes that are not stay as they are.
std::string FoldLetterCase(std::string_view text);

} // namespace quarvel
