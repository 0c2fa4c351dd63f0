#pragma once

#include "t3d/actor_index.h"
#include "t3d/text_reader.h"

#include <string>
#include <string_view>

namespace quarvel {

/// What every record reader does: finds the next actor that fits, clears the record to its class's defaults and reads
/// the header and then, with `readKeys(block, record)`, the keys. False when there is no such actor.
template <typename Record, typename ReadKeys>
bool ReadRecord(const LevelText& level, TextCursor& cursor, std::string_view searchText, Record& record,
                ReadKeys readKeys) {
  const ActorBlock* actor = FindActor(level, cursor, searchText);
  if (actor == nullptr) return false;
  record = Record();
  const TextBlock block(level.Text, actor->From, actor->To);
  record.Header = ReadActorHeader(block);
  readKeys(block, record);
  return true;
}

/// The key of one entry of an array property: "OutEvents(3)=".
inline std::string IndexedKey(std::string_view stem, int index) {
  return std::string(stem) + "(" + std::to_string(index) + ")=";
}

} // namespace quarvel
