#include "settings/option_values.h"

#include "base/ascii_text.h"
#include "math/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace quarvel {

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();

template <typename T>
T& In(const OptionInfo& option, ConversionSettings& settings) {
  return *std::get<T*>(option.Field.In(settings));
}

template <typename T>
const T& In(const OptionInfo& option, const ConversionSettings& settings) {
  return *std::get<const T*>(option.Field.InConst(settings));
}

template <typename T>
T DefaultOf(const OptionInfo& option) {
  const ConversionSettings defaults;
  return In<T>(option, defaults);
}

/// The whole text as a number, with a point whatever the locale. Infinities, NaN and hexadecimal forms are none.
std::optional<double> WholeNumberText(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return std::nullopt;
  }
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size() || !std::isfinite(value)) return std::nullopt;
  return value;
}

bool IsWithin(double value, const NumberRange& range) {
  if (range.Whole && value != std::floor(value)) return false;
  return value <= range.Most && (range.AboveLeast ? value > range.Least : value >= range.Least);
}

std::optional<bool> SwitchFromText(std::string_view text, bool isButton) {
  const auto isOneOf = [&](std::initializer_list<std::string_view> words) {
    return std::any_of(words.begin(), words.end(), [&](std::string_view word) { return SameText(text, word); });
  };
  if (isOneOf({"1", "true", "on", "yes"}) || (isButton && text == "-1")) return true;
  if (isOneOf({"0", "false", "off", "no"})) return false;
  return std::nullopt;
}

std::string Join(const std::vector<std::string>& words) {
  std::string joined;
  for (std::size_t i = 0; i < words.size(); ++i)
    joined += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + words[i];
  return joined;
}

std::string OthersOfGroup(const OptionInfo& option) {
  std::vector<std::string> others;
  for (const OptionInfo& other : OptionTable())
    if (other.Group == option.Group && other.Control != option.Control) others.push_back(other.Control);
  return Join(others);
}

std::string Refused(const OptionInfo& option) { return "must be " + AllowedValues(option); }

std::string SetCheckBox(const OptionInfo& option, std::string_view text, ConversionSettings& settings) {
  const std::optional<bool> on = SwitchFromText(text, false);
  if (!on) return Refused(option);
  In<bool>(option, settings) = *on;
  return {};
}

std::string SetButton(const OptionInfo& option, std::string_view text, ConversionSettings& settings) {
  const std::optional<bool> on = SwitchFromText(text, true);
  if (!on) return Refused(option);
  if (!*on) return In<bool>(option, settings) ? "cannot be cleared; select " + OthersOfGroup(option) + " instead" : "";
  for (const OptionInfo& other : OptionTable())
    if (other.Group == option.Group) In<bool>(other, settings) = other.Control == option.Control;
  return {};
}

std::string SetNumber(const OptionInfo& option, std::string_view text, ConversionSettings& settings) {
  NumberText& number = In<NumberText>(option, settings);
  if (text.empty()) {
    number = DefaultOf<NumberText>(option);
    return {};
  }
  const std::optional<double> value = WholeNumberText(text);
  if (!value || !IsWithin(*value, option.Range)) return Refused(option);
  number = {std::string(text), *value};
  return {};
}

std::string SetInteger(const OptionInfo& option, std::string_view text, ConversionSettings& settings) {
  int& number = In<int>(option, settings);
  if (text.empty()) {
    number = DefaultOf<int>(option);
    return {};
  }
  const std::optional<double> value = WholeNumberText(text);
  if (!value || !IsWithin(*value, option.Range)) return Refused(option);
  number = static_cast<int>(*value);
  return {};
}

std::string SetList(const OptionInfo& option, std::string_view text, ConversionSettings& settings) {
  for (const std::string_view item : option.Items) {
    if (!SameText(item, text)) continue;
    In<std::string>(option, settings) = item;
    return {};
  }
  return Refused(option);
}

std::string SetText(const OptionInfo& option, std::string_view text, ConversionSettings& settings) {
  if (text.find_first_of(std::string_view("\r\n\0", 3)) != text.npos) return "must be one line";
  In<std::string>(option, settings) = text;
  return {};
}

std::string RangeText(const NumberRange& range) {
  std::string text = range.Whole ? "a whole number" : "a number";
  if (range.Least != -inf && range.Most != inf) {
    const bool practicallyUnbounded = range.Whole && range.Most >= 1e9;
    if (practicallyUnbounded) return text + ", " + FormatGeneral(range.Least) + " or more";
    return text + " from " + FormatGeneral(range.Least) + " to " + FormatGeneral(range.Most);
  }
  if (range.Least != -inf)
    text += range.AboveLeast ? " above " + FormatGeneral(range.Least) : ", " + FormatGeneral(range.Least) + " or more";
  return text;
}

} // namespace

std::string OptionText(const OptionInfo& option, const ConversionSettings& settings) {
  switch (option.Kind) {
  case OptionKind::CheckBox:
    return In<bool>(option, settings) ? "1" : "0";
  case OptionKind::OptionButton:
    return In<bool>(option, settings) ? "-1" : "0";
  case OptionKind::Number:
    return In<NumberText>(option, settings).Text;
  case OptionKind::Integer:
    return std::to_string(In<int>(option, settings));
  case OptionKind::Text:
  case OptionKind::List:
    break;
  }
  return In<std::string>(option, settings);
}

std::string DefaultText(const OptionInfo& option) { return OptionText(option, ConversionSettings{}); }

std::string SetOption(const OptionInfo& option, std::string_view text, ConversionSettings& settings) {
  const std::string_view trimmed = Trimmed(text);
  switch (option.Kind) {
  case OptionKind::CheckBox:
    return SetCheckBox(option, trimmed, settings);
  case OptionKind::OptionButton:
    return SetButton(option, trimmed, settings);
  case OptionKind::Number:
    return SetNumber(option, trimmed, settings);
  case OptionKind::Integer:
    return SetInteger(option, trimmed, settings);
  case OptionKind::List:
    return SetList(option, trimmed, settings);
  case OptionKind::Text:
    break;
  }
  return SetText(option, text, settings);
}

std::string AllowedValues(const OptionInfo& option) {
  switch (option.Kind) {
  case OptionKind::CheckBox:
    return "0 or 1";
  case OptionKind::OptionButton:
    return "-1 (selected) or 0";
  case OptionKind::Number:
  case OptionKind::Integer:
    return RangeText(option.Range);
  case OptionKind::List:
    return Join({option.Items.begin(), option.Items.end()});
  case OptionKind::Text:
    break;
  }
  return {};
}

} // namespace quarvel
