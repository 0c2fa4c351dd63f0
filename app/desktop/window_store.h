#pragma once

#include "settings/ini_store.h"

#include <string>

namespace quarvel {

/// The window's settings file. That it cannot be saved keeps no level from being converted; it is told at the end.
class WindowStore : public IniStore {
 public:
  using IniStore::IniStore;

  [[nodiscard]] std::string Save() override {
    problem_ = IniStore::Save();
    return {};
  }

  /// What was wrong with the last save; empty when nothing was.
  const std::string& Problem() const { return problem_; }

 private:
  std::string problem_;
};

} // namespace quarvel
