#pragma once

#include "scene/brush_placement.h"
#include "scene/materials.h"
#include "t3d/brush_record.h"

#include <vector>

namespace quarvel {

/// Two-sided, masked and translucent surfaces are seen from behind, others only from in front.
inline bool IsSolidFace(std::uint32_t flags) {
  return (flags & (SurfaceTwoSided | SurfaceMasked | SurfaceTranslucent)) == 0;
}

/// One face set to be written: faces of one texture entry, with the corners that they share.
struct FaceSet {
  int TextureNumber = 0;
  std::uint32_t Flags = 0;                    ///< of its first polygon
  std::vector<Vector3> Points;                ///< in the brush's Transform, scene units
  std::vector<TexturePoint> TexturePoints;    ///< as many, unless they have indices of their own
  std::vector<std::vector<int>> Faces;        ///< indices into both, or into the points alone:
  std::vector<std::vector<int>> TextureFaces; ///< indices into the texture points where they are others

  // Only where light is baked.
  int LightPage = MaterialWriter::NoPage;
  std::vector<TexturePoint> LightPoints;        ///< on the page; as many as texture points
  std::vector<std::vector<Vector3>> FaceColors; ///< the light at each corner of each face; may be left out
};

/// One polygon of a brush that is to be converted.
struct ChosenFace {
  const PolygonRecord* Polygon = nullptr;
  int Number = 0; ///< among the brush's polygons, from 0
  int TextureNumber = 0;
  std::vector<Vector3> Colors; ///< the light at its corners, where light is baked
};

/// A face set of a single polygon; no corner is shared.
FaceSet MakeFaceSet(const ChosenFace& face, const BrushPlacement& placement, const MaterialWriter& materials);

/// One face set per texture entry, in the order in which the entries first occur; corners of equal position and texture
/// coordinate are shared.
std::vector<FaceSet> MergeFaces(const std::vector<ChosenFace>& faces, const BrushPlacement& placement,
                                const MaterialWriter& materials);

/// The pieces of an unlit face set whose faces hang together by the positions of their corners, in the order of their
/// first faces.
std::vector<FaceSet> SplitByPosition(const FaceSet& faces);

} // namespace quarvel
