#include "settings/option_sets.h"

#include "settings/option_table.h"
#include "settings/option_values.h"

namespace quarvel {

const OptionSet& WebOptions() {
  static const OptionSet set{"web",
                             "One page that holds the level as it is best walked in",
                             {{"CheckCarve", "1"},
                              {"CheckMergeLevel", "1"},
                              {"CheckBakeLight", "1"},
                              {"CheckSkyZone", "1"},
                              {"CheckMakePage", "1"},
                              {"CheckPageOnly", "1"}}};
  return set;
}

void ApplyOptionSet(const OptionSet& set, ConversionSettings& settings) {
  for (const auto& [control, value] : set.Values)
    SetOption(*FindOption(control), value, settings);
}

std::string OptionSetText(const OptionSet& set) {
  std::string text;
  for (const auto& [control, value] : set.Values)
    text += (text.empty() ? "" : " ") + control + "=" + value;
  return text;
}

} // namespace quarvel
