#pragma once

#include "math/matrix.h"
#include "math/number_text.h"
#include "math/rotation.h"

#include <string>

namespace quarvel {

/// How the level's space becomes the scene's: the axes, and the world scale. Locations and lengths of the level are in
/// Unreal units.
class SceneSpace {
 public:
  /// `scale` is in scene units per Unreal unit.
  explicit SceneSpace(double scale) : scale_(scale) {}

  double Scale() const { return scale_; }
  /// Applies to right-handed Unreal axes.
  const Matrix4& ConversionMatrix() const { return conversionMatrix_; }

  Vector3 Position(const Vector3& location) const {
    return ScaleVector(ToSceneAxes(conversionMatrix_, location), scale_);
  }
  /// What Position was handed.
  Vector3 Location(const Vector3& position) const { return ScaleVector(FromSceneAxes(position), 1 / scale_); }

  std::string PositionText(const Vector3& location) const { return FormatVec(Position(location)); }
  /// Where a camera of this rotation looks; `BrushRotator` makes one of what is placed.
  std::string RotationText(const Rotator3& rotation) const {
    return RotatorToAxisAngleText(rotation, conversionMatrix_);
  }

 private:
  double scale_;
  Matrix4 conversionMatrix_ = MakeConversionMatrix();
};

} // namespace quarvel
