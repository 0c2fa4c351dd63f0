#pragma once

#include "t3d/text_reader.h"

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

} // namespace quarvel
