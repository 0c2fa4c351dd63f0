#pragma once

#include <map>
#include <set>
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

  /// Where a key stands, for a user who is to look at it: "my.ini, line 3". Empty when there is no such place.
  virtual std::string PlaceOf(std::string_view /*section*/, std::string_view /*key*/) const { return {}; }

  /// A key that is kept stays as it stands: what the program would write there is not what the user meant.
  void Keep(std::string_view section, std::string_view key) { kept_.emplace(section, key); }
  void Release(std::string_view section, std::string_view key) {
    kept_.erase({std::string(section), std::string(key)});
  }
  bool Keeps(std::string_view section, std::string_view key) const {
    return kept_.contains({std::string(section), std::string(key)});
  }

 private:
  std::set<std::pair<std::string, std::string>> kept_;
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
