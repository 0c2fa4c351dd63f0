#include "scene/merged_level.h"

#include "math/number_text.h"
#include "scene/face_sets.h"
#include "scene/geometry_fields.h"

#include <algorithm>
#include <bit>
#include <map>
#include <optional>
#include <tuple>
#include <unordered_map>

namespace quarvel {

namespace {

constexpr const char* levelName = "CarvedLevel";

/// Numbers equal values in the order in which they first occur.
template <typename Value, typename Hash>
class Numbering {
 public:
  int NumberOf(const Value& value) {
    const auto [at, isNew] = numbers_.try_emplace(value, static_cast<int>(Values.size()));
    if (isNew) Values.push_back(value);
    return at->second;
  }
  std::vector<Value> Values;

 private:
  std::unordered_map<Value, int, Hash> numbers_;
};

std::size_t Mix(std::size_t hash, double value) {
  return (std::rotl(hash, 5) ^ std::bit_cast<std::uint64_t>(value + 0.0)) * 0x9e3779b97f4a7c15ULL;
}
struct PointHash {
  std::size_t operator()(const Vector3& p) const { return std::rotl(Mix(Mix(Mix(0, p.X), p.Y), p.Z), 32); }
};
struct TexturePointHash {
  std::size_t operator()(const TexturePoint& p) const { return std::rotl(Mix(Mix(0, p.U), p.V), 32); }
};

Bounds3 BoxOf(const LevelSurface& surface) {
  Bounds3 box = InitBounds();
  for (const Vector3& point : surface.Points)
    GrowBounds(box, point);
  return box;
}

std::size_t CornersOf(const SurfaceGroup& group) {
  std::size_t corners = 0;
  for (const LevelSurface* surface : group.Surfaces)
    corners += surface->Points.size();
  return corners;
}

/// Appends the group, or its halves.
void AppendInPieces(SurfaceGroup group, std::size_t mostCorners, std::vector<SurfaceGroup>& groups) {
  if (CornersOf(group) <= mostCorners || group.Surfaces.size() < 2) {
    groups.push_back(std::move(group));
    return;
  }
  Bounds3 box = InitBounds();
  for (const LevelSurface* surface : group.Surfaces)
    GrowBounds(box, BoundsCenter(BoxOf(*surface)));
  const Vector3 size = SubtractVector(box.Max, box.Min);
  double Vector3::*const axis = size.X >= size.Y && size.X >= size.Z ? &Vector3::X
                                : size.Y >= size.Z                   ? &Vector3::Y
                                                                     : &Vector3::Z;
  std::stable_sort(group.Surfaces.begin(), group.Surfaces.end(), [&](const LevelSurface* a, const LevelSurface* b) {
    return BoundsCenter(BoxOf(*a)).*axis < BoundsCenter(BoxOf(*b)).*axis;
  });
  const auto half = group.Surfaces.begin() + static_cast<std::ptrdiff_t>(group.Surfaces.size() / 2);
  AppendInPieces({{group.Surfaces.begin(), half}}, mostCorners, groups);
  AppendInPieces({{half, group.Surfaces.end()}}, mostCorners, groups);
}

/// Positions and texture coordinates have lists and indices of their own: walls that meet share a position, hardly ever
/// a texture coordinate.
struct IndexedSurfaces {
  Numbering<Vector3, PointHash> Points; ///< scene units
  Numbering<TexturePoint, TexturePointHash> TexturePoints;
  std::vector<std::vector<int>> PointIndices, TextureIndices;
};

IndexedSurfaces IndexSurfaces(const SurfaceGroup& group, const SceneSpace& space) {
  IndexedSurfaces indexed;
  for (const LevelSurface* surface : group.Surfaces) {
    std::vector<int>& points = indexed.PointIndices.emplace_back();
    std::vector<int>& textures = indexed.TextureIndices.emplace_back();
    for (std::size_t i = 0; i < surface->Points.size(); ++i) {
      points.push_back(indexed.Points.NumberOf(space.Position(surface->Points[i])));
      textures.push_back(indexed.TexturePoints.NumberOf(surface->TexturePoints[i]));
    }
  }
  return indexed;
}

void WriteShape(SceneContext& context, const SurfaceGroup& group, int number) {
  SceneWriter& scene = context.Scene;
  const LevelSurface& first = *group.Surfaces.front();
  const IndexedSurfaces indexed = IndexSurfaces(group, context.Space);
  const std::string piece = scene.TakePieceName(levelName + std::to_string(number));
  SceneNode shape = scene.Open("    ", "Shape");
  context.Materials.WriteAppearance(first.TextureNumber, context.User);
  SceneNode geometry = scene.Open("      geometry ", "IndexedFaceSet", "F_" + piece, {.Routed = false});
  if (context.Settings.CheckCreaseAngle)
    geometry.Field("        creaseAngle", FormatFlt(context.Settings.TextCreaseAngle * Pi / 180));
  geometry.Flag("        ccw", context.Settings.CheckCCW);
  geometry.Flag("        solid", IsSolidFace(first.Flags));
  scene.OneListNode("        coord ", "Coordinate", "C_" + piece, "point", PointList(indexed.Points.Values));
  scene.OneListNode("        texCoord ", "TextureCoordinate", "TC_" + piece, "point",
                    TexturePointList(indexed.TexturePoints.Values));
  geometry.List("        coordIndex", IndexList(indexed.PointIndices));
  geometry.List("        texCoordIndex", IndexList(indexed.TextureIndices));
}

void WriteGroup(SceneContext& context, const SurfaceGroup& group, int number) {
  const LevelSurface& first = *group.Surfaces.front();
  std::optional<SceneNode> anchor, collision;
  if (!first.Url.empty()) {
    anchor.emplace(context.Scene.Open(" ", "Anchor"));
    anchor->Strings("  url", first.Url);
    anchor->Children("  ");
  }
  if (first.Passable) {
    collision.emplace(context.Scene.Open("   ", "Collision"));
    WritePassable(*collision, "    collide");
    collision->Children("    ");
  }
  WriteShape(context, group, number);
  if (collision) collision->Close();
  if (anchor) anchor->Close();
  context.Scene.Flush();
}

} // namespace

std::vector<SurfaceGroup> GroupSurfaces(std::span<const LevelSurface> surfaces, std::size_t mostCorners) {
  using Kind = std::tuple<int, int, bool, bool, std::string_view>;
  std::map<Kind, std::size_t> known;
  std::vector<SurfaceGroup> groups;
  for (const LevelSurface& surface : surfaces) {
    const Kind kind{surface.TextureNumber, surface.LightPage, surface.Passable, IsSolidFace(surface.Flags),
                    surface.Url};
    const auto [at, isNew] = known.try_emplace(kind, groups.size());
    if (isNew) groups.emplace_back();
    groups[at->second].Surfaces.push_back(&surface);
  }
  std::vector<SurfaceGroup> pieces;
  for (SurfaceGroup& group : groups)
    AppendInPieces(std::move(group), mostCorners, pieces);
  return pieces;
}

Bounds3 WriteMergedLevel(SceneContext& context, std::span<const LevelSurface> surfaces) {
  Bounds3 bounds = InitBounds();
  if (surfaces.empty()) return bounds;
  for (const LevelSurface& surface : surfaces)
    for (const Vector3& point : surface.Points)
      GrowBounds(bounds, context.Space.Position(point));
  SceneNode transform = context.Scene.Open("", "Transform", context.Scene.TakeName(levelName));
  transform.Field("  translation", "0 0 0");
  transform.Children("  ");
  int number = 0;
  for (const SurfaceGroup& group : GroupSurfaces(surfaces))
    WriteGroup(context, group, number++);
  transform.Close();
  return bounds;
}

} // namespace quarvel
