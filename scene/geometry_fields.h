#pragma once

#include "math/vector.h"
#include "scene/brush_placement.h"

#include <string>
#include <vector>

namespace quarvel {

/// The value of a Coordinate's `point`: points separated by commas.
std::string PointList(const std::vector<Vector3>& points);

/// The value of a TextureCoordinate's `point`.
std::string TexturePointList(const std::vector<TexturePoint>& points);

/// The value of a `coordIndex`: the corners of each face, each followed by ", ", and -1.
std::string IndexList(const std::vector<std::vector<int>>& faces);

} // namespace quarvel
