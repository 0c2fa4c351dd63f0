#pragma once

#include "math/vector.h"

#include <vector>

namespace quarvel {

/// A flat, convex surface of the level. Unreal units, the editor's axes.
struct LitSurface {
  std::vector<Vector3> Points;
  Vector3 Normal;         ///< of length 1, towards the side that is seen
  int Texture = 0;        ///< neighbours in one plane share a rectangle of a light map when this is the same for both
  double TexelScale = 1;  ///< how much larger than usual its texels are
  bool TakesLight = true; ///< false for a surface that only casts shadows
  bool BlocksLamps = true;
  bool BlocksSun = true;   ///< directional lamps
  bool BoundsSolid = true; ///< behind it is solid matter, so that whoever sees its back is inside
  bool SpecialLit = false; ///< takes the light of special-lit lamps and of no others
  bool IsPortal = false;   ///< parts two zones
  Vector3 Ambient;         ///< light that is everywhere in its zone
  bool HasZones = false;   ///< may lie in several: each texel looks for its own
};

/// A point above that of a surface with this normal, clear of the rounding of the surface's plane: rays begin there.
inline Vector3 Lifted(const Vector3& point, const Vector3& normal) {
  constexpr double lift = 0.25; // Unreal units
  return AddVector(point, ScaleVector(normal, lift));
}

} // namespace quarvel
