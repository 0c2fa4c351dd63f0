#pragma once

#include "images/image.h"
#include "light/light_baker.h"

#include <vector>

namespace quarvel::test {

/// A rectangle with one corner at `corner` and two sides; its normal points to where they turn left to right as seen
/// from the front in the editor's left-handed axes, which is the right-handed cross product of the sides.
LitSurface Rectangle(const Vector3& corner, const Vector3& side, const Vector3& otherSide);

/// The six sides of a box, seen from within (a room) or from outside (a block).
std::vector<LitSurface> BoxSides(const Vector3& low, const Vector3& high, bool fromWithin);

void Append(std::vector<LitSurface>& to, const std::vector<LitSurface>& surfaces);

Lamp LampAt(const Vector3& position, double brightness = 64, double radius = 64);

/// Baked surfaces, with their pages as images.
struct BakedScene {
  std::vector<LitSurface> Surfaces;
  BakedLight Light;
  std::vector<Image> Pages;

  /// The light of a surface at one of its points as a viewer shows it, filtered between texels; 0 to 1. NaN when no
  /// piece of the surface holds the point.
  Vector3 At(int surface, const Vector3& point) const;
};

BakedScene Bake(std::vector<LitSurface> surfaces, const std::vector<Lamp>& lamps, const BakeOptions& options = {});

} // namespace quarvel::test
