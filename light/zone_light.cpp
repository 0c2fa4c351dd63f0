#include "light/zone_light.h"

#include <algorithm>
#include <utility>

namespace quarvel {

namespace {

constexpr std::size_t mostLookedFor = 24; // the nearest seeds
constexpr int mostRounds = 32;
constexpr std::size_t mostAround = 128;
constexpr double towardsCorner = 0.95; // of the way from the middle of a surface
constexpr double aboveSurface = 2;     // Unreal units from a surface to the seed that stands for it

std::vector<LitSurface> WithPortalsClosed(std::span<const LitSurface> surfaces) {
  std::vector<LitSurface> walls(surfaces.begin(), surfaces.end());
  for (LitSurface& wall : walls)
    wall.BlocksLamps = wall.BlocksLamps || wall.IsPortal;
  return walls;
}

Vector3 MiddleOf(const LitSurface& surface) {
  Vector3 sum;
  for (const Vector3& point : surface.Points)
    sum = AddVector(sum, point);
  return ScaleVector(sum, 1.0 / static_cast<double>(surface.Points.size()));
}

Vector3 NearCorner(const LitSurface& surface, std::size_t corner, const Vector3& middle) {
  return AddVector(middle, ScaleVector(SubtractVector(surface.Points[corner], middle), towardsCorner));
}

using Candidate = std::pair<double, std::size_t>; ///< the square of a distance, and a seed

/// From near to far.
void KeepNearest(std::vector<Candidate>& candidates, std::size_t count) {
  const auto middle = candidates.begin() + static_cast<std::ptrdiff_t>(std::min(candidates.size(), count));
  std::partial_sort(candidates.begin(), middle, candidates.end());
  candidates.erase(middle, candidates.end());
}

} // namespace

ZoneLight::ZoneLight(std::span<const LitSurface> surfaces, std::vector<ZoneSeed> seeds, const Vector3& everywhere)
    : walls_(WithPortalsClosed(surfaces)), seeds_(std::move(seeds)), everywhere_(everywhere) {}

bool ZoneLight::Sees(std::size_t seed, const Vector3& point, const Vector3& normal) const {
  const Vector3& place = seeds_[seed].Place;
  return DotProduct(SubtractVector(place, point), normal) > 0 && walls_.Connected(point, place, normal);
}

std::optional<Vector3> ZoneLight::At(const Vector3& point, const Vector3& normal, Search& search) const {
  if (search.Last < seeds_.size() && Sees(search.Last, point, normal)) return seeds_[search.Last].Ambient;
  std::vector<Candidate> nearest;
  const auto add = [&](std::size_t seed) {
    const Vector3 way = SubtractVector(seeds_[seed].Place, point);
    if (DotProduct(way, normal) > 0) nearest.push_back({DotProduct(way, way), seed});
  };
  for (const std::size_t seed : search.Among)
    add(seed);
  for (std::size_t seed = 0; search.Among.empty() && seed < seeds_.size(); ++seed)
    add(seed);
  KeepNearest(nearest, mostLookedFor);
  for (const auto& [distance, seed] : nearest) {
    if (!Sees(seed, point, normal)) continue;
    search.Last = seed;
    return seeds_[seed].Ambient;
  }
  return std::nullopt;
}

ZoneLight::Search ZoneLight::Around(const Vector3& place) const {
  std::vector<Candidate> nearest;
  for (std::size_t seed = 0; seed < seeds_.size(); ++seed) {
    const Vector3 way = SubtractVector(seeds_[seed].Place, place);
    nearest.push_back({DotProduct(way, way), seed});
  }
  KeepNearest(nearest, mostAround);
  Search search;
  for (const auto& [distance, seed] : nearest)
    search.Among.push_back(seed);
  return search;
}

void ZoneLight::AddAmbient(const Vector3& ambient) {
  everywhere_ = AddVector(everywhere_, ambient);
  for (ZoneSeed& seed : seeds_)
    seed.Ambient = AddVector(seed.Ambient, ambient);
}

/// From the middle, else from near the corners.
std::optional<Vector3> ZoneLight::LookFrom(const LitSurface& surface, Search& search) const {
  const Vector3 middle = MiddleOf(surface);
  std::optional<Vector3> found = At(middle, surface.Normal, search);
  for (std::size_t i = 0; !found && i < surface.Points.size(); ++i)
    found = At(NearCorner(surface, i, middle), surface.Normal, search);
  return found;
}

/// Round by round, surfaces that see what is known become known themselves.
void ZoneLight::Spread(std::span<LitSurface> surfaces) {
  std::vector<std::size_t> open;
  for (std::size_t i = 0; i < surfaces.size(); ++i)
    if (surfaces[i].TakesLight) open.push_back(i);
  for (int round = 0; round < mostRounds && !open.empty(); ++round) {
    std::vector<ZoneSeed> found;
    std::vector<std::size_t> rest;
    Search search;
    for (const std::size_t i : open) {
      LitSurface& surface = surfaces[i];
      const std::optional<Vector3> ambient = LookFrom(surface, search);
      if (!ambient) {
        rest.push_back(i);
        continue;
      }
      surface.Ambient = *ambient;
      const Vector3 middle = MiddleOf(surface);
      if (Sees(search.Last, middle, surface.Normal))
        found.push_back({AddVector(middle, ScaleVector(surface.Normal, aboveSurface)), *ambient});
    }
    if (found.empty()) return;
    seeds_.insert(seeds_.end(), found.begin(), found.end());
    open = std::move(rest);
  }
}

void ZoneLight::Light(std::span<LitSurface> surfaces) {
  Spread(surfaces);
  Search search;
  for (LitSurface& surface : surfaces) {
    if (!surface.TakesLight) continue;
    const Vector3 middle = MiddleOf(surface);
    const std::optional<Vector3> inMiddle = At(middle, surface.Normal, search);
    for (std::size_t i = 0; i < surface.Points.size() && !surface.HasZones; ++i)
      surface.HasZones = At(NearCorner(surface, i, middle), surface.Normal, search) != inMiddle;
  }
}

} // namespace quarvel
