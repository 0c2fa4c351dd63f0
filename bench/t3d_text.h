#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <string>

namespace quarvel::bench {

/// The text of a level while it is made up, line by line as the editor exports it.
class T3DText {
 public:
  /// As printf; at most 255 characters.
  [[gnu::format(printf, 2, 3)]] void Line(const char* format, ...) {
    char line[256];
    va_list values;
    va_start(values, format);
    Text.append(line, static_cast<std::size_t>(std::vsnprintf(line, sizeof line, format, values)));
    va_end(values);
    Text += "\r\n";
  }

  std::string Text = "Begin Map\r\n";
};

} // namespace quarvel::bench
