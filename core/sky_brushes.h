#pragma once

#include "math/vector.h"
#include "t3d/level.h"

#include <set>

namespace quarvel {

/// A level says of each actor in which zone its pivot stands, and the pivot of a room often stands in the rock around
/// it. These brushes of the sky are not told to be there: the room around the sky zone, and what lies in that.
/// `zone`: where the sky zone stands; Unreal units.
std::set<const ActorBlock*> FindSkyBrushes(const T3DLevel& level, const Vector3& zone);

} // namespace quarvel
