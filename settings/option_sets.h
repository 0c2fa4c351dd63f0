#pragma once

#include "settings/conversion_settings.h"

#include <string>
#include <utility>
#include <vector>

namespace quarvel {

/// Options that are set in one go for a purpose.
struct OptionSet {
  std::string Name; ///< as on the command line, without dashes
  std::string Help;
  std::vector<std::pair<std::string, std::string>> Values; ///< control and value
};

/// What makes the best page to walk in.
const OptionSet& WebOptions();

/// Sets the options of a set and leaves the others as they are.
void ApplyOptionSet(const OptionSet& set, ConversionSettings& settings);

/// "CheckMakePage=1 CheckPageOnly=1".
std::string OptionSetText(const OptionSet& set);

} // namespace quarvel
