#pragma once

#include "math/vector.h"

#include <cstddef>
#include <vector>

namespace quarvel {

/// The corners of a flat, convex polygon, as numbers from 0, in an order that survives viewers: those cut a face like a
/// fan from its first corner, take its normal from the first three, and drop triangles without an area, together with
/// the corners on their sides. The polygon comes in two parts where corners on its sides leave no such order. Points in
/// Unreal units.
std::vector<std::vector<std::size_t>> FansOf(const std::vector<Vector3>& points);

} // namespace quarvel
