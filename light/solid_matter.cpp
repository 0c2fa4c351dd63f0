#include "light/solid_matter.h"

#include "light/texel_lattice.h"

#include <algorithm>
#include <utility>

namespace quarvel {

namespace {

// Where a surface is looked at: Unreal units from point to point, points along a side at most, and Unreal units from
// the outline, on which a wall may stand.
constexpr double betweenPoints = 8, mostPoints = 128, fromOutline = 0.5;

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

bool SolidMatter::Covers(const LitSurface& surface) const {
  const TexelLattice lattice =
      MakeLattice(surface.Normal, DotProduct(surface.Points[0], surface.Normal), betweenPoints);
  PlanePolygon outline;
  for (const Vector3& point : surface.Points)
    outline.push_back(lattice.ToPlane(point));
  const PlanePoint center = CenterOf(outline);
  const auto isCovered = [&](const PlanePoint& point) {
    const PlanePoint inside = MovedInside(point, center, fromOutline / betweenPoints);
    return Contains(Lifted(lattice.ToSpace(inside), surface.Normal));
  };
  if (!isCovered(center)) return false;
  const PlaneBox box = BoxOf(outline);
  const double step = std::max({1.0, (box.MaxU - box.MinU) / mostPoints, (box.MaxV - box.MinV) / mostPoints});
  for (double u = box.MinU; u < box.MaxU + step; u += step)
    for (double v = box.MinV; v < box.MaxV + step; v += step)
      if (const PlanePoint nearest = NearestPointOf(outline, {u, v}); DistanceOf(nearest, {u, v}) <= step)
        if (!isCovered(nearest)) return false;
  return true;
}

} // namespace quarvel
