#pragma once

#include "settings/option_table.h"

#include <string>
#include <string_view>

namespace quarvel {

/// The option's value as the settings file has it: check boxes 0 or 1, option buttons -1 or 0, all others their text.
std::string OptionText(const OptionInfo& option, const ConversionSettings& settings);

/// OptionText of settings that nobody has touched.
std::string DefaultText(const OptionInfo& option);

/// Sets the option from a text and returns an empty string, or returns what is wrong with the text and changes nothing:
/// one clause, which fits behind the option's name ("must be 0 or 1"). Selecting an option button clears the others of
/// its group; the selected one cannot be cleared, only another be selected. A blank number means the default.
std::string SetOption(const OptionInfo& option, std::string_view text, ConversionSettings& settings);

/// The values that the option may have: "0 or 1", "0.01 to 0.5", "walk, fly, examine or none"; empty for any text.
std::string AllowedValues(const OptionInfo& option);

} // namespace quarvel
