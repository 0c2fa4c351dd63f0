#pragma once

#include "settings/conversion_settings.h"
#include "settings/option_table.h"
#include "settings/settings_store.h"

namespace quarvel {

/// Writes one option, if it is one that the settings file holds; does not save.
void WriteOption(const OptionInfo& option, const ConversionSettings& settings, SettingsStore& store);

/// Writes every option that the settings file holds, in the order of the option table, and saves the store. Returns the
/// store's error, or an empty string.
[[nodiscard]] std::string SaveSettings(const ConversionSettings& settings, SettingsStore& store);

/// Sets the options that the store holds. Those that are absent, read "*" or have a value that the option cannot have
/// stay as they are.
void LoadSettings(ConversionSettings& settings, const SettingsStore& store);

} // namespace quarvel
