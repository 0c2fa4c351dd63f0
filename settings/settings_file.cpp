#include "settings/settings_file.h"

#include "settings/option_values.h"

#include <algorithm>

namespace quarvel {

namespace {

std::string_view SectionOf(const OptionInfo& option) {
  switch (option.Place) {
  case OptionPlace::MainSection:
    return MainSectionName;
  case OptionPlace::ExtraSection:
    return ExtraSectionName;
  case OptionPlace::Nowhere:
    break;
  }
  return {};
}

/// Clearing the default button of a group is refused as long as no later line has selected another.
void TryAgain(std::vector<RefusedSetting>& refused, ConversionSettings& settings) {
  std::erase_if(refused, [&](RefusedSetting& setting) {
    return setting.Option->Kind == OptionKind::OptionButton &&
           SetOption(*setting.Option, setting.Text, settings).empty();
  });
}

} // namespace

std::string SentenceOf(const RefusedSetting& refused) {
  return (refused.Place.empty() ? "" : refused.Place + ": ") + refused.Option->Key + "=" + refused.Text +
         " is not used: it " + refused.Why;
}

void WriteOption(const OptionInfo& option, const ConversionSettings& settings, SettingsStore& store) {
  if (option.Place == OptionPlace::Nowhere || store.Keeps(SectionOf(option), option.Key)) return;
  store.WriteText(SectionOf(option), option.Key, OptionText(option, settings));
}

std::string SaveSettings(const ConversionSettings& settings, SettingsStore& store) {
  for (const OptionInfo& option : OptionTable())
    WriteOption(option, settings, store);
  return store.Save();
}

std::vector<RefusedSetting> LoadSettings(ConversionSettings& settings, SettingsStore& store) {
  std::vector<RefusedSetting> refused;
  for (const OptionInfo& option : OptionTable()) {
    if (option.Place == OptionPlace::Nowhere) continue;
    const std::string text = store.ReadText(SectionOf(option), option.Key, "*");
    if (text == "*") continue;
    const std::string why = SetOption(option, text, settings);
    if (!why.empty()) refused.push_back({&option, text, store.PlaceOf(SectionOf(option), option.Key), why});
  }
  TryAgain(refused, settings);
  for (const RefusedSetting& setting : refused)
    store.Keep(SectionOf(*setting.Option), setting.Option->Key);
  return refused;
}

void ReleaseOption(const OptionInfo& option, SettingsStore& store) {
  for (const OptionInfo& other : OptionTable())
    if (&other == &option || (!option.Group.empty() && other.Group == option.Group))
      store.Release(SectionOf(other), other.Key);
}

bool KeepsOption(const OptionInfo& option, const SettingsStore& store) {
  return store.Keeps(SectionOf(option), option.Key);
}

} // namespace quarvel
