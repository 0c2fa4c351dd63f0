#pragma once

#include "t3d/level.h"
#include "t3d/text_reader.h"

#include <string>
#include <string_view>

namespace quarvel {

/// What every record reader does: begins with the defaults of the record's class and reads the header and then, with
/// `readKeys(block, record)`, the keys.
template <typename Record, typename ReadKeys>
Record ReadRecord(const T3DLevel& level, const ActorBlock& actor, ReadKeys readKeys) {
  Record record;
  const TextBlock block(level.Text, actor.From, actor.To);
  record.Header = ReadActorHeader(block);
  readKeys(block, record);
  return record;
}

/// The key of one entry of an array property: "OutEvents(3)=".
inline std::string IndexedKey(std::string_view stem, int index) {
  return std::string(stem) + "(" + std::to_string(index) + ")=";
}

} // namespace quarvel
