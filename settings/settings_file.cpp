#include "settings/settings_file.h"

#include "settings/option_values.h"

namespace quarvel {

namespace {

std::string_view SectionOf(const OptionInfo& option) {
  switch (option.Place) {
  case OptionPlace::MainSection:
    return "Quarvel";
  case OptionPlace::ExtraSection:
    return "QuarvelExtra";
  case OptionPlace::Nowhere:
    break;
  }
  return {};
}

} // namespace

void WriteOption(const OptionInfo& option, const ConversionSettings& settings, SettingsStore& store) {
  if (option.Place != OptionPlace::Nowhere)
    store.WriteText(SectionOf(option), option.Key, OptionText(option, settings));
}

std::string SaveSettings(const ConversionSettings& settings, SettingsStore& store) {
  for (const OptionInfo& option : OptionTable())
    WriteOption(option, settings, store);
  return store.Save();
}

void LoadSettings(ConversionSettings& settings, const SettingsStore& store) {
  for (const OptionInfo& option : OptionTable()) {
    if (option.Place == OptionPlace::Nowhere) continue;
    const std::string text = store.ReadText(SectionOf(option), option.Key, "*");
    if (text != "*") SetOption(option, text, settings); // what is wrong with a damaged value is nobody's concern
  }
}

} // namespace quarvel
