#pragma once

#include "math/vector.h"

#include <array>
#include <string>
#include <vector>

namespace quarvel {

/// The value of a Coordinate's `point`: points separated by commas.
std::string PointList(const std::vector<Vector3>& points);

/// The value of a TextureCoordinate's `point`.
std::string TexturePointList(const std::vector<TexturePoint>& points);

/// The corners of a face of three, as indices into a point list.
using Triangle = std::array<int, 3>;

/// The value of a `coordIndex`: the corners of each face, each followed by ", ", and -1.
std::string IndexList(const std::vector<std::vector<int>>& faces);
std::string IndexList(const std::vector<Triangle>& faces);

} // namespace quarvel
