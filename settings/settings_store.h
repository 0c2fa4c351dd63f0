#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace quarvel {

/// Keeps texts by section and key, where letter case does not matter.
class SettingsStore {
 public:
  virtual ~SettingsStore() = default;

  /// `fallback` when the key is absent.
  virtual std::string ReadText(std::string_view section, std::string_view key, std::string_view fallback) const = 0;
  virtual void WriteText(std::string_view section, std::string_view key, std::string_view value) = 0;

  /// Makes what was written last. Returns what went wrong in one sentence without a full stop, or an empty string.
  [[nodiscard]] virtual std::string Save() = 0;
};

/// A store that is forgotten with the program.
class MemoryStore : public SettingsStore {
 public:
  std::string ReadText(std::string_view section, std::string_view key, std::string_view fallback) const override;
  void WriteText(std::string_view section, std::string_view key, std::string_view value) override;
  [[nodiscard]] std::string Save() override { return {}; }

 private:
  std::map<std::pair<std::string, std::string>, std::string> values_;
};

} // namespace quarvel
