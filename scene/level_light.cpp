#include "scene/level_light.h"

#include <algorithm>

namespace quarvel {

namespace {

/// Where a corner's light is looked up, as parts of the way from the corner to the middle of its surface.
constexpr std::array<double, 3> samplesOfCorner{0.08, 0.3, 0.55};

Vector3 AtLeast(const Vector3& light, double least) {
  return {std::max(light.X, least), std::max(light.Y, least), std::max(light.Z, least)};
}

} // namespace

LevelLight::LevelLight(std::vector<LitSurface> surfaces, std::vector<Lamp> lamps, const Vector3& ambient,
                       SolidMatter matter, std::vector<ZoneSeed> seeds)
    : surfaces_(std::move(surfaces)), lamps_(std::move(lamps)), shadows_(surfaces_, std::move(matter)) {
  AddAmbient(ambient);
  if (seeds.empty()) return;
  zones_ = std::make_unique<ZoneLight>(surfaces_, std::move(seeds), ambient_);
  zones_->Light(surfaces_);
}

Vector3 LevelLight::AmbientAt(const Vector3& point, const Vector3& normal) const {
  ZoneLight::Search search;
  return zones_ ? zones_->At(point, normal, search).value_or(ambient_) : ambient_;
}

void LevelLight::AddAmbient(const Vector3& ambient) {
  ambient_ = AddVector(ambient_, ambient);
  if (zones_) zones_->AddAmbient(ambient);
  for (LitSurface& surface : surfaces_)
    surface.Ambient = AddVector(surface.Ambient, ambient);
}

Vector3 LevelLight::At(const Vector3& point, const Vector3& normal) const {
  return AtLeast(LightAtPoint(lamps_, shadows_, point, normal, false, AmbientAt(point, normal)), LeastLight);
}

Vector3 LevelLight::TowardsCorner(const Vector3& corner, const Vector3& center, const Vector3& normal,
                                  bool specialLit) const {
  const Vector3 ambient =
      AmbientAt(AddVector(corner, ScaleVector(SubtractVector(center, corner), samplesOfCorner[0])), normal);
  Vector3 sum;
  int count = 0;
  for (const double part : samplesOfCorner) {
    const Vector3 point = AddVector(corner, ScaleVector(SubtractVector(center, corner), part));
    if (shadows_.InSolid(point, normal)) continue;
    sum = AddVector(sum, LightAtPoint(lamps_, shadows_, point, normal, specialLit, ambient));
    ++count;
  }
  return AtLeast(count == 0 ? ToneMapped(ambient) : ScaleVector(sum, 1.0 / count), LeastLight);
}

std::vector<Vector3> LevelLight::OfCorners(const std::vector<Vector3>& corners, const Vector3& normal,
                                           bool specialLit) const {
  Vector3 center;
  for (const Vector3& corner : corners)
    center = AddVector(center, ScaleVector(corner, 1.0 / static_cast<double>(corners.size())));
  std::vector<Vector3> colors;
  colors.reserve(corners.size());
  for (const Vector3& corner : corners)
    colors.push_back(TowardsCorner(corner, center, normal, specialLit));
  return colors;
}

std::array<Vector3, 4> LevelLight::Around(const Vector3& place) const {
  std::array<Vector3, 4> light;
  for (std::size_t i = 0; i < light.size(); ++i)
    light[i] = At(place, SidesOfLight[i]);
  return light;
}

} // namespace quarvel
