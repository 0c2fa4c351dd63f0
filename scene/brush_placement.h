#pragma once

#include "scene/scene_space.h"
#include "t3d/brush_record.h"

#include <string>

namespace quarvel {

/// Where a brush stands: the fields of its Transform, and how its vertices are written into it. The editor places a
/// vertex at Location + PostScale x Rotation x MainScale x (vertex - PrePivot), where each of the two scales is
/// followed by its sheer.
struct BrushPlacement {
  std::string Translation, Rotation;
  std::string Scale;     ///< "1 1 1" when the vertices carry it
  Matrix4 VertexMatrix;  ///< vertex of the brush to point of its Transform, in scene units
  Matrix4 WorldMatrix;   ///< vertex of the brush to point of the scene
  bool Mirrored = false; ///< an odd number of scale components is negative, so the winding of the faces is reversed
};

/// The rate by which the editor sheers where the level says `rate`: it snaps to none and to one half (public editor
/// headers).
double SnappedSheerRate(double rate);

BrushPlacement PlaceBrush(const BrushRecord& brush, const SceneSpace& space);

/// Texture coordinates of one polygon: two linear functions of a vertex.
struct TexturePlane {
  Vector3 U, V; ///< gradients, in texture widths and heights per unit
  double OffsetU = 1, OffsetV = 1;
};

/// `width` and `height` of the image in pixels; 0 when unknown. An unknown size or an axis of no length makes the
/// coordinate 1 everywhere.
TexturePlane MakeTexturePlane(const PolygonRecord& polygon, int width, int height);

TexturePoint TextureCoordinateOf(const TexturePlane& plane, const Vector3& vertex);

} // namespace quarvel
