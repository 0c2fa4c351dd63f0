#pragma once

#include <string>

namespace quarvel {

/// All options with their kinds, defaults, allowed values and help texts, for reading on a terminal.
std::string OptionList();

/// The same as a page of the documentation.
std::string OptionListAsMarkdown();

} // namespace quarvel
