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

BoxTree TreeOf(std::span<const ZoneSeed> seeds) {
  std::vector<Bounds3> places;
  for (const ZoneSeed& seed : seeds)
    places.push_back({seed.Place, seed.Place});
  return BoxTree(std::move(places));
}

/// From a place to a box, which may be a single point.
double SquareOfDistance(const Vector3& place, const Bounds3& box) {
  const auto along = [](double at, double from, double to) { return std::max({from - at, at - to, 0.0}); };
  const Vector3 way{along(place.X, box.Min.X, box.Max.X), along(place.Y, box.Min.Y, box.Max.Y),
                    along(place.Z, box.Min.Z, box.Max.Z)};
  return DotProduct(way, way);
}

/// Whether some of a box lies in front of a plane through the place.
bool IsInFront(const Bounds3& box, const Vector3& place, const Vector3& normal) {
  if (normal == Vector3()) return true;
  const Vector3 foremost{normal.X > 0 ? box.Max.X : box.Min.X, normal.Y > 0 ? box.Max.Y : box.Min.Y,
                         normal.Z > 0 ? box.Max.Z : box.Min.Z};
  return DotProduct(SubtractVector(foremost, place), normal) > 0;
}

} // namespace

ZoneLight::ZoneLight(std::span<const LitSurface> surfaces, std::vector<ZoneSeed> seeds, const Vector3& everywhere)
    : walls_(WithPortalsClosed(surfaces)), seeds_(std::move(seeds)), places_(TreeOf(seeds_)), everywhere_(everywhere) {}

void ZoneLight::AddSeeds(std::vector<ZoneSeed> seeds) {
  seeds_.insert(seeds_.end(), seeds.begin(), seeds.end());
  places_ = TreeOf(seeds_);
}

std::vector<ZoneLight::Candidate> ZoneLight::Within(double reach, const Vector3& place, const Vector3& normal,
                                                    std::size_t count) const {
  std::vector<Candidate> nearest; // a heap, the farthest first
  const auto mayBeNearer = [&](const Bounds3& box) {
    const double nearestOfBox = SquareOfDistance(place, box);
    const double farthest = nearest.size() < count ? reach * reach : nearest.front().first;
    return nearestOfBox < farthest && IsInFront(box, place, normal);
  };
  places_.Search(mayBeNearer, [&](std::size_t seed) {
    nearest.emplace_back(SquareOfDistance(place, {seeds_[seed].Place, seeds_[seed].Place}), seed);
    std::push_heap(nearest.begin(), nearest.end());
    if (nearest.size() <= count) return;
    std::pop_heap(nearest.begin(), nearest.end());
    nearest.pop_back();
  });
  std::sort_heap(nearest.begin(), nearest.end());
  return nearest;
}

std::vector<ZoneLight::Candidate> ZoneLight::Nearest(const Vector3& place, const Vector3& normal,
                                                     std::size_t count) const {
  constexpr double firstReach = 256, lastReach = 1e6; // Unreal units; past any level
  for (double reach = firstReach;; reach *= 4)
    if (std::vector<Candidate> nearest = Within(reach, place, normal, count);
        nearest.size() == count || reach > lastReach)
      return nearest;
}

bool ZoneLight::Sees(std::size_t seed, const Vector3& point, const Vector3& normal) const {
  const Vector3& place = seeds_[seed].Place;
  return DotProduct(SubtractVector(place, point), normal) > 0 && walls_.Connected(point, place, normal);
}

std::vector<ZoneLight::Candidate> ZoneLight::NearestAmong(const std::vector<std::size_t>& seeds, const Vector3& place,
                                                          const Vector3& normal) const {
  std::vector<Candidate> nearest;
  for (const std::size_t seed : seeds) {
    const Vector3 way = SubtractVector(seeds_[seed].Place, place);
    if (DotProduct(way, normal) > 0) nearest.push_back({DotProduct(way, way), seed});
  }
  std::sort(nearest.begin(), nearest.end());
  nearest.resize(std::min(nearest.size(), mostLookedFor));
  return nearest;
}

std::optional<Vector3> ZoneLight::At(const Vector3& point, const Vector3& normal, Search& search) const {
  if (search.Last < seeds_.size() && Sees(search.Last, point, normal)) return seeds_[search.Last].Ambient;
  const std::vector<Candidate> nearest =
      search.Among.empty() ? Nearest(point, normal, mostLookedFor) : NearestAmong(search.Among, point, normal);
  for (const auto& [distance, seed] : nearest) {
    if (!Sees(seed, point, normal)) continue;
    search.Last = seed;
    return seeds_[seed].Ambient;
  }
  return std::nullopt;
}

ZoneLight::Search ZoneLight::Around(const Vector3& place) const {
  Search search;
  for (const auto& [distance, seed] : Nearest(place, {}, mostAround))
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
    AddSeeds(std::move(found));
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
