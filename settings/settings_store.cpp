#include "settings/settings_store.h"

#include "base/ascii_text.h"

namespace quarvel {

std::string MemoryStore::ReadText(std::string_view section, std::string_view key, std::string_view fallback) const {
  const auto found = values_.find({LowerCase(section), LowerCase(key)});
  return found == values_.end() ? std::string(fallback) : found->second;
}

void MemoryStore::WriteText(std::string_view section, std::string_view key, std::string_view value) {
  values_[{LowerCase(section), LowerCase(key)}] = value;
}

} // namespace quarvel
