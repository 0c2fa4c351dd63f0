#include "scene/carved_level.h"

#include "math/number_text.h"
#include "scene/brush_geometry.h"
#include "scene/brush_placement.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

namespace quarvel {

namespace {

/// Scene axes are the editor's with Y and Z exchanged.
Matrix4 ExchangeYZ() {
  Matrix4 m = IdentityMatrix();
  m.At(1, 1) = m.At(2, 2) = 0;
  m.At(1, 2) = m.At(2, 1) = 1;
  return m;
}

bool IsPassable(std::uint32_t flags, const ConversionSettings& settings) {
  if (flags & (SurfaceNonSolid | SurfacePortal)) return true;
  const bool staysSolid = settings.CheckTranslucentSolid && (flags & SurfaceTranslucent);
  return (flags & (SurfaceMasked | SurfaceTwoSided)) && !staysSolid;
}

/// Makes surfaces of the polygons of one level's brushes.
class SurfaceMaker {
 public:
  SurfaceMaker(SceneContext& context, std::span<const LevelBrush> brushes)
      : context_(context), brushes_(brushes),
        firstPolygon_(static_cast<int>(RoundToInteger(context.Settings.TextStartAtPoly, 0, 1 << 30))) {}

  /// Adds a surface that is, or is a part of, a polygon; unless it is left out.
  void Add(int brushNumber, int polygonNumber, const Vector3& normal, std::vector<Vector3> points) {
    const LevelBrush& brush = brushes_[static_cast<std::size_t>(brushNumber)];
    const PolygonRecord& polygon = brush.Polygons[static_cast<std::size_t>(polygonNumber)];
    const std::optional<FindingCode> why = polygonNumber < firstPolygon_ ? std::optional(FindingCode::FacesBeforeStart)
                                                                         : WhyIgnored(polygon, context_.Settings);
    if (why) {
      if (ignored_.emplace(brushNumber, polygonNumber).second) context_.Findings.Count(*why);
      return;
    }
    const int texture = context_.Materials.TextureNumber(polygon.Texture, polygon.Flags);
    const TextureFile& file = context_.Materials.Entry(texture).File;
    const TexturePlane plane = MakeTexturePlane(polygon, file.Width, file.Height);
    LevelSurface& surface = Surfaces.emplace_back();
    for (const Vector3& point : points)
      surface.TexturePoints.push_back(TextureCoordinateOf(plane, TransformPoint(brush.FromLevel, point)));
    surface.Points = std::move(points);
    surface.Normal = normal;
    surface.Brush = brushNumber;
    surface.Polygon = polygonNumber;
    surface.Flags = polygon.Flags;
    surface.TextureNumber = texture;
    surface.Passable = IsPassable(polygon.Flags, context_.Settings);
    surface.Url = brush.Url;
    if (context_.User.WantsTextureMapping()) context_.User.ShowTextureMapping(file.Source, surface.TexturePoints);
  }

  std::vector<LevelSurface> Surfaces;

 private:
  SceneContext& context_;
  std::span<const LevelBrush> brushes_;
  int firstPolygon_;
  std::set<std::pair<int, int>> ignored_; ///< polygons of brushes, counted once however often they are cut
};

std::vector<Vector3> PointsInLevel(const LevelBrush& brush, const PolygonRecord& polygon) {
  std::vector<Vector3> points;
  points.reserve(polygon.Vertices.size());
  for (const Vector3& vertex : polygon.Vertices)
    points.push_back(TransformPoint(brush.ToLevel, vertex));
  if (brush.Mirrored) std::reverse(points.begin(), points.end());
  return points;
}

CsgKind KindOf(std::uint32_t flags) {
  if (flags & SurfacePortal) return CsgKind::Portal;
  if (flags & SurfaceNonSolid) return CsgKind::NonSolid;
  return flags & SurfaceSemisolid ? CsgKind::Semisolid : CsgKind::Structural;
}

} // namespace

LevelBrush MakeLevelBrush(BrushRecord brush) {
  const BrushPlacement placement = PlaceBrush(brush, SceneSpace(1));
  LevelBrush kept;
  kept.Name = brush.Header.Name;
  kept.Url = WebAddress(brush.Url);
  kept.Subtracts = !IsAdditive(brush);
  kept.PolyFlags = brush.PolyFlags;
  kept.ToLevel = MultiplyMatrix(placement.WorldMatrix, ExchangeYZ());
  kept.FromLevel = InvertMatrix(kept.ToLevel).value_or(IdentityMatrix());
  kept.Mirrored = placement.Mirrored;
  kept.Polygons = std::move(brush.Polygons);
  return kept;
}

CsgBrush MakeCsgBrush(const LevelBrush& brush) {
  CsgBrush made;
  made.Operation = brush.Subtracts ? CsgOperation::Subtract : CsgOperation::Add;
  made.Kind = KindOf(brush.PolyFlags);
  made.Polygons.reserve(brush.Polygons.size());
  for (const PolygonRecord& polygon : brush.Polygons)
    made.Polygons.push_back({PointsInLevel(brush, polygon), polygon.Flags});
  return made;
}

std::vector<LevelSurface> MakeSurfaces(SceneContext& context, std::span<const LevelBrush> brushes,
                                       const CarvedLevel& level) {
  SurfaceMaker maker(context, brushes);
  for (std::size_t i = 0; i < level.Faces.size(); ++i) {
    const CarvedFace& face = level.Faces[i];
    maker.Add(face.Brush, face.Polygon, face.Plane.Normal, PointsOf(level.Mesh, i));
  }
  return std::move(maker.Surfaces);
}

std::vector<LevelSurface> MakeSurfaces(SceneContext& context, std::span<const LevelBrush> brushes) {
  SurfaceMaker maker(context, brushes);
  for (std::size_t number = 0; number < brushes.size(); ++number)
    for (std::size_t polygon = 0; polygon < brushes[number].Polygons.size(); ++polygon) {
      std::vector<Vector3> points = PointsInLevel(brushes[number], brushes[number].Polygons[polygon]);
      if (points.size() < 3) continue;
      const Vector3 normal = PlaneOfPolygon(points).Normal;
      maker.Add(static_cast<int>(number), static_cast<int>(polygon), normal, std::move(points));
    }
  return std::move(maker.Surfaces);
}

} // namespace quarvel
