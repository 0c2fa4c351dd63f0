#pragma once

#include <QString>
#include <filesystem>
#include <string>
#include <string_view>

namespace quarvel {

/// Names in levels have no stated coding: what is no UTF-8 is taken as Latin-1.
QString ToQString(std::string_view text);
inline QString ToQString(const std::string& text) { return ToQString(std::string_view(text)); }
QString ToQString(const std::filesystem::path& path);

/// In the coding that file functions take.
std::string ToText(const QString& text);

} // namespace quarvel
