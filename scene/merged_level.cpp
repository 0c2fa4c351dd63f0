#include "scene/merged_level.h"

#include "scene/face_set_writer.h"
#include "scene/fan_order.h"

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
/// A corner on its texture and on its light map.
struct SurfacePoint {
  TexturePoint Texture, Light;
  bool operator==(const SurfacePoint&) const = default;
};
struct SurfacePointHash {
  std::size_t operator()(const SurfacePoint& p) const {
    return std::rotl(Mix(Mix(Mix(Mix(0, p.Texture.U), p.Texture.V), p.Light.U), p.Light.V), 32);
  }
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
FaceSet IndexSurfaces(const SurfaceGroup& group, const SceneSpace& space) {
  Numbering<Vector3, PointHash> points; // scene units
  Numbering<SurfacePoint, SurfacePointHash> onSurface;
  FaceSet set;
  set.TextureNumber = group.Surfaces.front()->TextureNumber;
  set.Flags = group.Surfaces.front()->Flags;
  set.LightPage = group.Surfaces.front()->LightPage;
  const auto addFace = [&](const LevelSurface& surface, const std::vector<std::size_t>& corners) {
    std::vector<int>& face = set.Faces.emplace_back();
    std::vector<int>& textureFace = set.TextureFaces.emplace_back();
    std::vector<Vector3> colors;
    for (const std::size_t i : corners) {
      face.push_back(points.NumberOf(space.Position(surface.Points[i])));
      const TexturePoint light = surface.LightPoints.empty() ? TexturePoint() : surface.LightPoints[i];
      textureFace.push_back(onSurface.NumberOf({surface.TexturePoints[i], light}));
      if (!surface.Colors.empty()) colors.push_back(surface.Colors[i]);
    }
    if (!colors.empty()) set.FaceColors.push_back(std::move(colors));
  };
  for (const LevelSurface* surface : group.Surfaces)
    for (const std::vector<std::size_t>& corners : FansOf(surface->Points))
      addFace(*surface, corners);
  set.Points = std::move(points.Values);
  for (const SurfacePoint& point : onSurface.Values) {
    set.TexturePoints.push_back(point.Texture);
    if (set.LightPage >= 0) set.LightPoints.push_back(point.Light);
  }
  return set;
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
  WriteFaceSet(context, IndexSurfaces(group, context.Space), levelName + std::to_string(number));
  if (collision) collision->Close();
  if (anchor) anchor->Close();
  context.Scene.Flush();
}

} // namespace

std::vector<SurfaceGroup> GroupSurfaces(std::span<const LevelSurface> surfaces, std::size_t mostCorners) {
  using Kind = std::tuple<int, int, bool, bool, bool, std::string_view>;
  std::map<Kind, std::size_t> known;
  std::vector<SurfaceGroup> groups;
  for (const LevelSurface& surface : surfaces) {
    const Kind kind{surface.TextureNumber,      surface.LightPage,       surface.Passable,
                    IsSolidFace(surface.Flags), !surface.Colors.empty(), surface.Url};
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
