#include "scene/fan_order.h"

#include "csg/carve.h"

#include <algorithm>

namespace quarvel {

namespace {

/// Which corners the polygon runs straight on at, as where a neighbour's corner lies on its edge.
std::vector<bool> FindStraight(const std::vector<Vector3>& points, double tolerance) {
  const std::size_t count = points.size();
  std::vector<bool> straight(count);
  for (std::size_t i = 0; i < count; ++i) {
    const Vector3 &before = points[(i + count - 1) % count], &after = points[(i + 1) % count];
    const Vector3 along = SubtractVector(after, before);
    const Vector3 across = CrossProduct(SubtractVector(points[i], before), along);
    straight[i] = VectorLength(across) <= tolerance * VectorLength(along);
  }
  return straight;
}

/// `count` corners from `start` on, around a polygon of `corners`.
std::vector<std::size_t> Around(std::size_t start, std::size_t count, std::size_t corners) {
  std::vector<std::size_t> order(count);
  for (std::size_t i = 0; i < count; ++i)
    order[i] = (start + i) % corners;
  return order;
}

/// Empty when there is no such order.
std::vector<std::vector<std::size_t>> FindFans(const std::vector<bool>& straight) {
  const std::size_t count = straight.size();
  const auto isStraight = [&](std::size_t corner) { return straight[corner % count]; };
  for (std::size_t start = 0; start < count; ++start)
    if (!isStraight(start + 1) && !isStraight(start + count - 1)) return {Around(start, count, count)};
  // Cut off a side that has several corners, with the corner behind it.
  for (std::size_t first = 0; first < count; ++first) {
    if (!isStraight(first) || isStraight(first + count - 1)) continue;
    std::size_t end = first + 1;
    while (isStraight(end))
      ++end;
    const std::size_t cut = end - first + 2;
    if (cut >= count) break;
    std::vector<std::size_t> off = Around(first, cut, count), rest = Around(first + cut - 1, count - cut + 1, count);
    std::rotate(off.begin(), off.end() - 1, off.end());
    rest.push_back(first);
    std::rotate(rest.begin(), rest.end() - 1, rest.end());
    return {off, rest};
  }
  return {};
}

} // namespace

std::vector<std::vector<std::size_t>> FansOf(const std::vector<Vector3>& points) {
  // The triangles should be as wide as can be: the narrower, the less their normal is that of the face.
  for (const double tolerance : {2 * WeldDistance, WeldDistance / 10})
    if (auto fans = FindFans(FindStraight(points, tolerance)); !fans.empty()) return fans;
  return {Around(0, points.size(), points.size())};
}

} // namespace quarvel
