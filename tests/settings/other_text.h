#pragma once

#include "settings/option_values.h"

#include <string>

namespace quarvel::test {

/// A value that is not the option's default; of a button that is selected, the same, for it cannot be cleared.
inline std::string OtherText(const OptionInfo& option) {
  switch (option.Kind) {
  case OptionKind::CheckBox:
    return DefaultText(option) == "0" ? "1" : "0";
  case OptionKind::OptionButton:
    return "-1";
  case OptionKind::List:
    return std::string(option.Items.back());
  case OptionKind::Number:
    return option.Range.Whole ? "7" : option.Range.Most < 1 ? "0.25" : option.Range.Most == 1 ? ".5" : "0.50";
  case OptionKind::Integer:
    return option.Range.Most < 100 ? "2" : "800";
  case OptionKind::Text:
    break;
  }
  return "some; text";
}

} // namespace quarvel::test
