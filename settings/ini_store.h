#pragma once

#include "settings/settings_store.h"

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <utility>

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

  /// Whether the file holds no text at all.
  bool IsBlank() const { return isBlank_; }
  bool HasSection(std::string_view section) const;

  std::string ReadText(std::string_view section, std::string_view key, std::string_view fallback) const override;
  void WriteText(std::string_view section, std::string_view key, std::string_view value) override;

  std::string PlaceOf(std::string_view section, std::string_view key) const override;

  /// Replaces the file in one step, so that it is never seen half written. A file that is write-protected stays.
  [[nodiscard]] std::string Save() override;

 private:
  struct Content;

  void NoteLines(std::string_view text);
  std::string Problem(const std::string& what, const std::string& reason) const;

  std::filesystem::path file_;
  bool isBlank_ = true;
  std::map<std::pair<std::string, std::string>, int> lines_; ///< by section and key in lower case
  std::unique_ptr<Content> content_;
};

} // namespace quarvel
