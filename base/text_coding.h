#pragma once

#include <string>
#include <string_view>

namespace quarvel {

/// Appends as UTF-8 what the bytes of `text` are in Windows-1252, the coding of the editor's texts.
void AppendWindows1252(std::string& out, std::string_view text);

/// The text as UTF-8: as it is when it is that already, else taken as Windows-1252.
std::string ToUtf8(std::string_view text);

/// A name as it is compared: UTF-8 as by ToUtf8, without regard to letter case.
std::string FoldName(std::string_view name);

} // namespace quarvel
