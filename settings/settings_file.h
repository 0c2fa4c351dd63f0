#pragma once

#include "settings/conversion_settings.h"
#include "settings/option_table.h"
#include "settings/settings_store.h"

#include <string>
#include <vector>

namespace quarvel {

/// A text in the store that its option cannot have.
struct RefusedSetting {
  const OptionInfo* Option = nullptr;
  std::string Text;  ///< as it stands in the store
  std::string Place; ///< "my.ini, line 3", or empty
  std::string Why;   ///< one clause: "must be a number above 0"
};

/// "my.ini, line 3: Scale=45,5 is not used: it must be a number above 0".
std::string SentenceOf(const RefusedSetting& refused);

/// Writes one option, if it is one that the settings file holds; does not save.
void WriteOption(const OptionInfo& option, const ConversionSettings& settings, SettingsStore& store);

/// Writes every option that the settings file holds, in the order of the option table, and saves the store. Returns the
/// store's error, or an empty string.
[[nodiscard]] std::string SaveSettings(const ConversionSettings& settings, SettingsStore& store);

/// Sets the options that the store holds. Those that are absent or read "*" stay as they are, and so do those with a
/// text that the option cannot have: these are returned, and the store keeps them until they are released.
std::vector<RefusedSetting> LoadSettings(ConversionSettings& settings, SettingsStore& store);

/// To be called when the user sets an option: its text in the store (of option buttons, the group's) may be written
/// again.
void ReleaseOption(const OptionInfo& option, SettingsStore& store);
/// Whether the option's text in the store is still the one that was refused.
bool KeepsOption(const OptionInfo& option, const SettingsStore& store);

} // namespace quarvel
