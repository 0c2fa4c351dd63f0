#pragma once

#include "math/vector.h"
#include "t3d/actor_index.h"

#include <string_view>

namespace quarvel {

/// Which part of a level a scene shows, and around which point.
struct ScenePart {
  enum class Kind {
    Everything,
    World, ///< all but the sky zone
    Sky,   ///< the sky zone alone
  };

  Kind Kept = Kind::Everything;
  Vector3 Origin; ///< Unreal units; the scene's zero

  bool Shows(const ActorHeader& header) const {
    return Kept == Kind::Everything || header.IsSkyZone == (Kept == Kind::Sky);
  }
};

/// Reads the next actor that the scene shows, with its location relative to the scene's origin. `read` is the reader of
/// the record. False when there is none.
template <typename Read, typename Record>
bool ReadShown(const ScenePart& part, Read read, const LevelText& level, TextCursor& cursor,
               std::string_view searchText, Record& record) {
  while (read(level, cursor, searchText, record)) {
    if (!part.Shows(record.Header)) continue;
    if constexpr (requires { record.BasePos; }) record.BasePos = SubtractVector(record.BasePos, part.Origin);
    if constexpr (requires { record.Location; }) record.Location = SubtractVector(record.Location, part.Origin);
    return true;
  }
  return false;
}

} // namespace quarvel
