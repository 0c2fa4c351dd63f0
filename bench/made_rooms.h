#pragma once

#include "csg/carve.h"

#include <string>
#include <vector>

namespace quarvel::bench {

/// Rooms on a grid, joined by corridors, with pillars, steps and pits: about eleven brushes a room, the subtractive
/// ones of a room before what is added to it. Always the same for a number.
std::vector<CsgBrush> MakeRooms(int brushes);

/// The same as T3D text.
std::string MakeRoomsLevel(int brushes);

} // namespace quarvel::bench
