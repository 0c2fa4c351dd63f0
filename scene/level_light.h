#pragma once

#include "light/light_baker.h"

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace quarvel {

/// The directions in which a thing that stands free is lit: the corners of a tetrahedron, on the editor's axes, so that
/// every side of it is reached by one at least.
inline constexpr std::array<Vector3, 4> SidesOfLight{
    {{0, 0, 1}, {0.942809, 0, -0.333333}, {-0.471405, 0.816497, -0.333333}, {-0.471405, -0.816497, -0.333333}}};

/// What stands free is never wholly black: eyes get used to the dark.
inline constexpr double LeastLight = 0.04;

/// The light of a level that never changes, for all that is not in the light maps. Unreal units, the editor's axes;
/// colours are 0 to 1 each.
class LevelLight {
 public:
  /// `ambient` is wherever none of the zones is that `seeds` are in.
  LevelLight(std::vector<LitSurface> surfaces, std::vector<Lamp> lamps, const Vector3& ambient,
             SolidMatter matter = SolidMatter(), std::vector<ZoneSeed> seeds = {});

  /// See BakeLight.
  BakedLight Bake(const BakeOptions& options, const BakeProgress& progress) const {
    return BakeLight(surfaces_, lamps_, shadows_, options, progress, zones_.get());
  }

  /// More light that is everywhere.
  void AddAmbient(const Vector3& ambient);

  const std::vector<LitSurface>& Surfaces() const { return surfaces_; }
  std::size_t Lamps() const { return lamps_.size(); }

  /// The mean light of a flat surface towards one of its corners. `center` is the middle of the surface.
  Vector3 TowardsCorner(const Vector3& corner, const Vector3& center, const Vector3& normal, bool specialLit) const;

  /// For every corner of a polygon with that normal.
  std::vector<Vector3> OfCorners(const std::vector<Vector3>& corners, const Vector3& normal, bool specialLit) const;

  /// The light of one point of a surface.
  Vector3 At(const Vector3& point, const Vector3& normal) const;

  /// The light that falls on a thing at this place from each of the SidesOfLight.
  std::array<Vector3, 4> Around(const Vector3& place) const;

 private:
  Vector3 AmbientAt(const Vector3& point, const Vector3& normal) const;

  std::vector<LitSurface> surfaces_;
  std::vector<Lamp> lamps_;
  Vector3 ambient_;
  ShadowScene shadows_;
  std::unique_ptr<ZoneLight> zones_; ///< none when all have the same light
};

} // namespace quarvel
