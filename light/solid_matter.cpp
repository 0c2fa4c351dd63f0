#include "light/solid_matter.h"

#include <utility>

namespace quarvel {

namespace {

std::vector<Bounds3> BoxesOf(const std::vector<SolidMatter::Body>& bodies) {
  std::vector<Bounds3> boxes;
  boxes.reserve(bodies.size());
  for (const SolidMatter::Body& body : bodies)
    boxes.push_back(body.Box);
  return boxes;
}

} // namespace

SolidMatter::SolidMatter(std::vector<Body> bodies) : bodies_(std::move(bodies)), boxes_(BoxesOf(bodies_)) {}

bool SolidMatter::Contains(const Vector3& point) const {
  bool found = false;
  boxes_.Search(
      [&](const Bounds3& box) {
        return !found && BoxesMeet(box, {point, point});
      },
      [&](std::uint32_t number) { found = found || bodies_[number].Inside.Contains(point); });
  return found;
}

} // namespace quarvel
