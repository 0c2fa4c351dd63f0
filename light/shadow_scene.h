#pragma once

#include "light/lamp.h"
#include "light/lit_surface.h"
#include "light/solid_matter.h"

#include <array>
#include <memory>
#include <span>

namespace quarvel {

/// The surfaces that cast shadows, ready for rays. May be asked by several threads at once.
class ShadowScene {
 public:
  /// Throws std::runtime_error when the ray library cannot be set up.
  explicit ShadowScene(std::span<const LitSurface> surfaces, SolidMatter matter = SolidMatter());
  ~ShadowScene();
  ShadowScene(const ShadowScene&) = delete;
  ShadowScene& operator=(const ShadowScene&) = delete;

  /// True when nothing stands between the lamp and the point of a surface with that normal.
  bool Sees(const Lamp& lamp, const Vector3& point, const Vector3& normal) const;

  /// What the lamp adds there, shadow included.
  Vector3 Light(const Lamp& lamp, const Vector3& point, const Vector3& normal) const;

  /// Which of four points of one surface see the lamp, a bit each.
  unsigned WhichSee(const Lamp& lamp, const std::array<Vector3, 4>& points, const Vector3& normal) const;

  /// True when the straight way between two points of one surface is free.
  bool Connected(const Vector3& from, const Vector3& to, const Vector3& normal) const;

  /// For each of four points of one surface, whether the straight way to it is free.
  std::array<bool, 4> Connected(const Vector3& from, const std::array<Vector3, 4>& to, const Vector3& normal) const;

  /// True when the point of a surface with that normal is inside solid matter.
  bool InSolid(const Vector3& point, const Vector3& normal) const;

 private:
  struct Rays;
  std::unique_ptr<Rays> rays_;
  SolidMatter matter_;
};

} // namespace quarvel
