#include "scene/lit_level.h"

#include "csg/box_tree.h"
#include "scene/brush_geometry.h"

#include <algorithm>
#include <cstdint>
#include <utility>

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

TexturePoint PointBetween(const TexturePoint& a, const TexturePoint& b, double share) {
  return {a.U + share * (b.U - a.U), a.V + share * (b.V - a.V)};
}

/// Makes the corners of cuts corners of the surfaces on whose edges they lie: viewers show a crack where a corner has
/// none opposite.
class SharedCorners {
 public:
  explicit SharedCorners(std::vector<Vector3> corners) : corners_(std::move(corners)), tree_(BoxesOf(corners_)) {}

  void AddTo(LevelSurface& surface) const {
    LevelSurface all = surface;
    all.Points.clear();
    all.TexturePoints.clear();
    all.LightPoints.clear();
    for (std::size_t i = 0; i < surface.Points.size(); ++i) {
      const std::size_t next = (i + 1) % surface.Points.size();
      const auto add = [&](const Vector3& point, double share) {
        all.Points.push_back(point);
        all.TexturePoints.push_back(PointBetween(surface.TexturePoints[i], surface.TexturePoints[next], share));
        if (!surface.LightPoints.empty())
          all.LightPoints.push_back(PointBetween(surface.LightPoints[i], surface.LightPoints[next], share));
      };
      add(surface.Points[i], 0);
      for (const auto& [share, corner] : Between(surface.Points[i], surface.Points[next]))
        add(corners_[corner], share);
    }
    if (all.Points.size() > surface.Points.size()) surface = std::move(all);
  }

 private:
  static std::vector<Bounds3> BoxesOf(const std::vector<Vector3>& corners) {
    std::vector<Bounds3> boxes;
    for (const Vector3& corner : corners)
      boxes.push_back({corner, corner});
    return boxes;
  }

  /// Those between two points, each once, by their share of the way.
  std::vector<std::pair<double, std::uint32_t>> Between(const Vector3& from, const Vector3& to) const {
    std::vector<std::pair<double, std::uint32_t>> found;
    const Vector3 edge = SubtractVector(to, from);
    const double length = VectorLength(edge);
    if (length <= 2 * WeldDistance) return found;
    Bounds3 box = InitBounds();
    GrowBounds(box, from);
    GrowBounds(box, to);
    box = WidenBox(box, WeldDistance);
    tree_.Search([&](const Bounds3& other) { return BoxesMeet(box, other); },
                 [&](std::uint32_t corner) {
                   const Vector3 offset = SubtractVector(corners_[corner], from);
                   const double along = DotProduct(offset, edge) / length;
                   if (along <= WeldDistance || along >= length - WeldDistance) return;
                   const double off = VectorLength(CrossProduct(offset, edge)) / length;
                   if (off <= WeldDistance) found.emplace_back(along / length, corner);
                 });
    std::sort(found.begin(), found.end());
    const auto isSame = [&](const auto& a, const auto& b) { return (b.first - a.first) * length <= WeldDistance; };
    found.erase(std::unique(found.begin(), found.end(), isSame), found.end());
    return found;
  }

  std::vector<Vector3> corners_;
  BoxTree tree_;
};

/// Appends the corners that the pieces of a surface have beyond its own.
void NoteCut(const LevelSurface& surface, std::span<const LevelSurface> pieces, std::vector<Vector3>& corners) {
  for (const LevelSurface& piece : pieces)
    for (const Vector3& point : piece.Points)
      if (std::find(surface.Points.begin(), surface.Points.end(), point) == surface.Points.end())
        corners.push_back(point);
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
  lit.IsPortal = sound && (flags & SurfacePortal);
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
    lit.BoundsSolid = lit.BoundsSolid && face.IsStructural; // else what is inside can be seen
    surfaces.push_back(std::move(lit));
  }
}

SolidMatter MakeSolidMatter(const SceneContext& context, std::span<const LevelBrush> brushes,
                            const CarvedLevel& level) {
  constexpr std::uint32_t seenThrough = SurfaceMasked | SurfaceTranslucent;
  std::vector<SolidMatter::Body> bodies;
  for (const SemisolidBrush& semisolid : level.Semisolids) {
    const std::vector<PolygonRecord>& polygons = brushes[static_cast<std::size_t>(semisolid.Brush)].Polygons;
    const bool closed = std::none_of(polygons.begin(), polygons.end(), [&](const PolygonRecord& polygon) {
      return (polygon.Flags & seenThrough) != 0 || WhyIgnored(polygon, context.Settings).has_value();
    });
    if (closed) bodies.push_back({semisolid.Box, semisolid.Inside});
  }
  return SolidMatter(std::move(bodies));
}

void RemoveBuried(const SolidMatter& matter, std::vector<LevelSurface>& surfaces, std::vector<LitSurface>& lit) {
  std::vector<LevelSurface> seen;
  std::vector<LitSurface> seenLit;
  for (std::size_t i = 0; i < lit.size(); ++i) {
    if (lit[i].TakesLight && matter.Covers(lit[i])) continue;
    if (i < surfaces.size()) seen.push_back(std::move(surfaces[i]));
    seenLit.push_back(std::move(lit[i]));
  }
  surfaces = std::move(seen);
  lit = std::move(seenLit);
}

std::vector<LevelSurface> WithLightMaps(std::span<const LevelSurface> surfaces, const BakedLight& baked,
                                        const LevelLight& light, bool withColors) {
  std::vector<LevelSurface> lit;
  std::vector<Vector3> cutCorners;
  auto piece = baked.Pieces.begin();
  for (std::size_t i = 0; i < surfaces.size(); ++i) {
    const std::size_t first = lit.size();
    for (; piece != baked.Pieces.end() && piece->Surface == static_cast<int>(i); ++piece)
      lit.push_back(PieceOf(surfaces[i], *piece));
    if (first == lit.size()) lit.push_back(surfaces[i]);
    if (lit.size() - first > 1) NoteCut(surfaces[i], std::span(lit).subspan(first), cutCorners);
  }
  const SharedCorners shared(cutCorners);
  for (LevelSurface& surface : lit) {
    if (!cutCorners.empty()) shared.AddTo(surface);
    if (withColors && !(surface.Flags & SurfaceUnlit))
      surface.Colors = light.OfCorners(surface.Points, surface.Normal, (surface.Flags & SurfaceSpecialLit) != 0);
  }
  return lit;
}

} // namespace quarvel
