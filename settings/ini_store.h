#pragma once

#include "settings/settings_store.h"

#include <filesystem>
#include <memory>
#include <string>

namespace quarvel {

/// A store in an INI file. Keys, sections and comments of others that the file holds are kept. Values are bytes: what
/// was written comes back, except that line breaks become blanks. Values with blanks at their ends stand between double
/// quotes in the file, and one pair of double quotes around a value is dropped on reading.
class IniStore : public SettingsStore {
 public:
  explicit IniStore(std::filesystem::path file);
  ~IniStore() override;

  /// Reads the file; one that does not exist leaves the store empty. Returns what went wrong (the file is a folder, or
  /// cannot be read) in one sentence without a full stop, or an empty string.
  [[nodiscard]] std::string Load();

  std::string ReadText(std::string_view section, std::string_view key, std::string_view fallback) const override;
  void WriteText(std::string_view section, std::string_view key, std::string_view value) override;

  /// Replaces the file in one step, so that it is never seen half written.
  [[nodiscard]] std::string Save() override;

 private:
  struct Content;

  std::filesystem::path file_;
  std::unique_ptr<Content> content_;
};

} // namespace quarvel
