#pragma once

#include "csg/box_tree.h"
#include "light/lit_surface.h"
#include "light/shadow_scene.h"

#include <cstddef>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace quarvel {

/// A place in the open whose zone is known, and the light that is everywhere in that zone.
struct ZoneSeed {
  Vector3 Place; ///< Unreal units, the editor's axes
  Vector3 Ambient;
};

/// The ambient light of zones. A text says in which zone its actors stand, and nothing of surfaces: what an actor sees
/// without looking through a portal is in its zone.
class ZoneLight {
 public:
  /// What neighbours may share.
  struct Search {
    std::size_t Last = 0;           ///< the seed that was seen last: neighbours mostly see the same
    std::vector<std::size_t> Among; ///< where to look for seeds; empty for all
  };

  /// `everywhere` is the light of places whose zone is not known.
  ZoneLight(std::span<const LitSurface> surfaces, std::vector<ZoneSeed> seeds, const Vector3& everywhere);

  /// Gives the surfaces that take light what is everywhere in their zones. What sees no seed takes the zone of a
  /// surface that it sees; what is found nowhere stays as it is.
  void Light(std::span<LitSurface> surfaces);

  /// The ambient light at the point of a surface with that normal; nullopt where nothing known is seen.
  std::optional<Vector3> At(const Vector3& point, const Vector3& normal, Search& search) const;

  /// A search for points that are not far from this one.
  Search Around(const Vector3& place) const;

  const Vector3& Everywhere() const { return everywhere_; }

  /// More light that is everywhere.
  void AddAmbient(const Vector3& ambient);

 private:
  using Candidate = std::pair<double, std::size_t>; ///< the square of a distance, and a seed
  /// The nearest seeds in front of a plane through the place, from near to far; without a normal on all sides.
  std::vector<Candidate> Nearest(const Vector3& place, const Vector3& normal, std::size_t count) const;
  std::vector<Candidate> Within(double reach, const Vector3& place, const Vector3& normal, std::size_t count) const;
  std::vector<Candidate> NearestAmong(const std::vector<std::size_t>& seeds, const Vector3& place,
                                      const Vector3& normal) const;
  void AddSeeds(std::vector<ZoneSeed> seeds);
  bool Sees(std::size_t seed, const Vector3& point, const Vector3& normal) const;
  std::optional<Vector3> LookFrom(const LitSurface& surface, Search& search) const;
  void Spread(std::span<LitSurface> surfaces);

  ShadowScene walls_; ///< portals are walls here
  std::vector<ZoneSeed> seeds_;
  BoxTree places_; ///< of the seeds
  Vector3 everywhere_;
};

} // namespace quarvel
