#pragma once

#include "math/vector.h"

#include <vector>

namespace quarvel {

/// A point of a plane, in texels.
struct PlanePoint {
  double U = 0, V = 0;
};

/// The texels of a plane: a lattice that depends on the plane alone, so that neighbours in one plane sample their light
/// at the same places and meet without a seam.
struct TexelLattice {
  Vector3 Normal;
  double Distance = 0; ///< of the plane from the origin
  Vector3 U, V;        ///< of length 1
  double Texel = 1;    ///< Unreal units

  PlanePoint ToPlane(const Vector3& point) const {
    return {DotProduct(point, U) / Texel, DotProduct(point, V) / Texel};
  }
  Vector3 ToSpace(const PlanePoint& point) const {
    return AddVector(ScaleVector(Normal, Distance),
                     AddVector(ScaleVector(U, point.U * Texel), ScaleVector(V, point.V * Texel)));
  }
};

TexelLattice MakeLattice(const Vector3& normal, double distance, double texel);

/// A convex polygon of a plane, in texels.
using PlanePolygon = std::vector<PlanePoint>;

/// A box of a plane, in texels; inverted while it is empty.
struct PlaneBox {
  double MinU = 1e30, MinV = 1e30, MaxU = -1e30, MaxV = -1e30;

  void Grow(const PlanePoint& point);
  void Grow(const PlaneBox& box);
  double Area() const { return (MaxU - MinU) * (MaxV - MinV); }
};

PlaneBox BoxOf(const PlanePolygon& polygon);
double AreaOf(const PlanePolygon& polygon);
PlanePoint CenterOf(const PlanePolygon& polygon);
double DistanceOf(const PlanePoint& a, const PlanePoint& b);

/// The point of the polygon that is nearest to another; that point itself when it lies within.
PlanePoint NearestPointOf(const PlanePolygon& polygon, const PlanePoint& point);

/// How far a point within the polygon is from its edges.
double DistanceToEdge(const PlanePolygon& polygon, const PlanePoint& point);

/// The point moved into the polygon by at most `by` texels.
PlanePoint MovedInside(const PlanePoint& point, const PlanePoint& center, double by);

} // namespace quarvel
