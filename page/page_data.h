#pragma once

#include <string_view>

namespace quarvel {

/// The files of page/data, compiled into the program.
extern const std::string_view pageHtml;
extern const std::string_view pageStyle;
extern const std::string_view viewerScript;
extern const std::string_view lightScript;
extern const std::string_view walkScript;
extern const std::string_view pageScript;

} // namespace quarvel
