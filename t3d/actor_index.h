#pragma once

#include "t3d/text_reader.h"

#include <map>
#include <string_view>
#include <vector>

namespace quarvel {

/// Where one actor stands in the text.
struct ActorBlock {
  std::string_view Class; ///< without the package that may qualify it
  TextCursor From = 0;    ///< at the actor's "Class="
  TextCursor To = 0;      ///< at its "End Actor"; 0 when that is missing before the next actor or the text's end
  bool IsComplete() const { return To != 0; }
};

/// The actors of a text in file order, found in one pass over it, so that the passes of a run need not search it again.
std::vector<ActorBlock> IndexActors(std::string_view text);

/// Whether an actor's class fits a search text: "Class=Brush " fits that class alone, "Class=Light", without the blank,
/// every class whose name begins so. The later spelling SunLight fits as Sunlight does.
bool FitsSearchText(std::string_view className, std::string_view searchText);

/// A level's text with its actors.
struct LevelText {
  explicit LevelText(std::string_view text);

  std::string_view Text;
  std::vector<ActorBlock> Actors;
  std::map<std::string_view, std::vector<std::size_t>> ActorsOfClass; ///< indices of the complete ones, in file order
};

/// Finds the next actor that fits at or after the cursor (a position in the text), which moves behind its "End Actor".
/// Actors without an "End Actor" are passed over. nullptr when there is none, and the cursor stays.
const ActorBlock* FindActor(const LevelText& level, TextCursor& cursor, std::string_view searchText);

} // namespace quarvel
