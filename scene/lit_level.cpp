#include "scene/lit_level.h"

#include "scene/brush_geometry.h"

namespace quarvel {

namespace {

double TexelScaleOf(std::uint32_t flags) {
  return flags & SurfaceHighShadowDetail ? 0.5 : flags & SurfaceLowShadowDetail ? 2 : 1;
}

/// The texture coordinate of any point of a face: linear over its plane.
class FaceMapping {
 public:
  explicit FaceMapping(const LevelSurface& face) : face_(face) {
    double best = 0;
    for (std::size_t i = 1; i + 1 < face.Points.size(); ++i) {
      const double area = VectorLength(CrossProduct(From0(i), From0(i + 1)));
      if (area <= best) continue;
      best = area;
      corner_ = i;
    }
  }

  TexturePoint At(const Vector3& point) const {
    const Vector3 b = From0(corner_), c = From0(corner_ + 1), p = SubtractVector(point, face_.Points[0]);
    const Vector3 normal = CrossProduct(b, c);
    const double area = DotProduct(normal, normal);
    if (area == 0) return face_.TexturePoints[0];
    const double s = DotProduct(CrossProduct(p, c), normal) / area, t = DotProduct(CrossProduct(b, p), normal) / area;
    const TexturePoint &o = face_.TexturePoints[0], &m = face_.TexturePoints[corner_],
                       &n = face_.TexturePoints[corner_ + 1];
    return {o.U + s * (m.U - o.U) + t * (n.U - o.U), o.V + s * (m.V - o.V) + t * (n.V - o.V)};
  }

 private:
  Vector3 From0(std::size_t i) const { return SubtractVector(face_.Points[i], face_.Points[0]); }

  const LevelSurface& face_;
  std::size_t corner_ = 1;
};

/// One piece of a surface, with its place on a page.
LevelSurface PieceOf(const LevelSurface& surface, const LitPiece& piece) {
  LevelSurface made = surface;
  made.LightPage = piece.Page;
  if (piece.Points != surface.Points) {
    const FaceMapping mapping(surface);
    made.Points = piece.Points;
    made.TexturePoints.clear();
    for (const Vector3& point : piece.Points)
      made.TexturePoints.push_back(mapping.At(point));
  }
  for (const MapPoint& point : piece.Coordinates)
    made.LightPoints.push_back({point.U, point.V});
  return made;
}

} // namespace

LitSurface MakeLitSurface(const std::vector<Vector3>& points, const Vector3& normal, std::uint32_t flags) {
  LitSurface lit;
  lit.Points = points;
  lit.Normal = normal;
  lit.TexelScale = TexelScaleOf(flags);
  lit.SpecialLit = (flags & SurfaceSpecialLit) != 0;
  const bool sound = IsSoundSurface(lit);
  lit.TakesLight = sound && !(flags & SurfaceUnlit);
  lit.BlocksLamps = sound && !(flags & (SurfacePortal | SurfaceMasked | SurfaceTranslucent));
  lit.BlocksSun = lit.BlocksLamps && !(flags & SurfaceFakeBackdrop);
  lit.BoundsSolid = lit.BlocksLamps && !(flags & (SurfaceNonSolid | SurfaceTwoSided));
  return lit;
}

std::vector<LitSurface> MakeLitSurfaces(std::span<const LevelSurface> surfaces) {
  std::vector<LitSurface> lit;
  lit.reserve(surfaces.size());
  for (const LevelSurface& surface : surfaces) {
    lit.push_back(MakeLitSurface(surface.Points, surface.Normal, surface.Flags));
    lit.back().Texture = surface.TextureNumber;
  }
  return lit;
}

void AddHiddenSurfaces(const SceneContext& context, std::span<const LevelBrush> brushes, const CarvedLevel& level,
                       std::vector<LitSurface>& surfaces) {
  for (std::size_t i = 0; i < level.Faces.size(); ++i) {
    const CarvedFace& face = level.Faces[i];
    const LevelBrush& brush = brushes[static_cast<std::size_t>(face.Brush)];
    if (!WhyIgnored(brush.Polygons[static_cast<std::size_t>(face.Polygon)], context.Settings)) continue;
    LitSurface lit = MakeLitSurface(PointsOf(level.Mesh, i), face.Plane.Normal, face.Flags);
    lit.TakesLight = false;
    surfaces.push_back(std::move(lit));
  }
}

std::vector<LevelSurface> WithLightMaps(std::span<const LevelSurface> surfaces, const BakedLight& baked,
                                        const LevelLight& light, bool withColors) {
  std::vector<LevelSurface> lit;
  auto piece = baked.Pieces.begin();
  for (std::size_t i = 0; i < surfaces.size(); ++i) {
    const std::size_t first = lit.size();
    for (; piece != baked.Pieces.end() && piece->Surface == static_cast<int>(i); ++piece)
      lit.push_back(PieceOf(surfaces[i], *piece));
    if (first == lit.size()) lit.push_back(surfaces[i]);
    if (!withColors || (surfaces[i].Flags & SurfaceUnlit)) continue;
    for (std::size_t k = first; k < lit.size(); ++k)
      lit[k].Colors = light.OfCorners(lit[k].Points, lit[k].Normal, (surfaces[i].Flags & SurfaceSpecialLit) != 0);
  }
  return lit;
}

} // namespace quarvel
