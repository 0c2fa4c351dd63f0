#pragma once

#include "math/vector.h"
#include "t3d/level.h"
#include "t3d/text_reader.h"

#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace quarvel {

/// Which part of a level a scene shows, and around which point.
struct ScenePart {
  enum class Kind {
    Everything,
    World, ///< all but the sky zone
    Sky,   ///< the sky zone alone
  };

  Kind Kept = Kind::Everything;
  Vector3 Origin;                             ///< Unreal units; the scene's zero
  std::set<const ActorBlock*> AlsoInSky = {}; ///< though their pivots stand elsewhere

  bool Shows(const ActorHeader& header, const ActorBlock& actor) const {
    return Kept == Kind::Everything || (header.IsSkyZone || AlsoInSky.contains(&actor)) == (Kept == Kind::Sky);
  }
};

/// Reads an actor, with its location relative to the scene's origin. `read` is the reader of the record. nullopt when
/// the scene does not show the actor.
template <typename Read>
auto ReadShown(const ScenePart& part, const T3DLevel& level, const ActorBlock& actor, Read read) {
  auto record = read(level, actor);
  using Shown = std::optional<decltype(record)>;
  if (!part.Shows(record.Header, actor)) return Shown();
  if constexpr (requires { record.BasePos; }) record.BasePos = SubtractVector(record.BasePos, part.Origin);
  if constexpr (requires { record.Location; }) record.Location = SubtractVector(record.Location, part.Origin);
  return Shown(std::move(record));
}

/// Reads all actors of a family that the scene shows.
template <typename Read>
auto ReadAllShown(const ScenePart& part, const T3DLevel& level, ActorFamily family, Read read) {
  std::vector<decltype(read(level, std::declval<const ActorBlock&>()))> records;
  for (const ActorBlock* actor : level.ActorsOf(family))
    if (auto record = ReadShown(part, level, *actor, read)) records.push_back(std::move(*record));
  return records;
}

} // namespace quarvel
