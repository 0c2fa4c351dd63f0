#include "core/sky_brushes.h"

#include "base/ascii_text.h"
#include "csg/solid_brush.h"
#include "scene/carved_level.h"
#include "t3d/world_records.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace quarvel {

namespace {

struct PlacedBrush {
  const ActorBlock* Actor = nullptr;
  CsgBrush Shape;
  Bounds3 Box = InitBounds();
};

bool IsWithin(const Bounds3& box, const Vector3& point, double margin) {
  return point.X >= box.Min.X - margin && point.X <= box.Max.X + margin && point.Y >= box.Min.Y - margin &&
         point.Y <= box.Max.Y + margin && point.Z >= box.Min.Z - margin && point.Z <= box.Max.Z + margin;
}

std::vector<PlacedBrush> PlaceBrushes(const T3DLevel& level) {
  std::vector<PlacedBrush> placed;
  NumberCheck unused;
  for (const ActorBlock* actor : level.ActorsOf(ActorFamily::Brush)) {
    BrushRecord brush = ReadBrush(level, *actor, unused);
    if (!IsAdditive(brush) && brush.CsgOper != "CSG_Subtract") continue;
    PlacedBrush& made = placed.emplace_back();
    made.Actor = actor;
    made.Shape = MakeCsgBrush(MakeLevelBrush(std::move(brush)));
    for (const CsgPolygon& polygon : made.Shape.Polygons)
      for (const Vector3& point : polygon.Points)
        GrowBounds(made.Box, point);
  }
  return placed;
}

/// The inside of the brush that decides what is at the point, and its number. None when that is solid.
std::optional<BrushTree> RoomAround(const std::vector<PlacedBrush>& brushes, const Vector3& point,
                                    std::size_t& number) {
  for (number = brushes.size(); number-- > 0;) {
    const PlacedBrush& brush = brushes[number];
    const bool subtracts = brush.Shape.Operation == CsgOperation::Subtract;
    if (!IsWithin(brush.Box, point, 0) || (!subtracts && brush.Shape.Kind != CsgKind::Structural)) continue;
    std::optional<BrushTree> inside = PrepareBrush(brush.Shape).Tree;
    if (!inside || !inside->Contains(point)) continue;
    if (!subtracts) inside.reset();
    return inside;
  }
  return std::nullopt;
}

/// Whether an actor that is none of the sky stands in the room: then it is more than a sky.
bool HoldsOthers(const T3DLevel& level, const BrushTree& room) {
  return std::any_of(level.Actors.begin(), level.Actors.end(), [&](const ActorBlock& block) {
    if (!block.IsComplete() || SameText(block.Class, "Brush")) return false;
    const RegionRecord actor = ReadRegion(level, block);
    return actor.Location && !actor.Header.Region.empty() && !actor.Header.IsSkyZone && room.Contains(*actor.Location);
  });
}

} // namespace

std::set<const ActorBlock*> FindSkyBrushes(const T3DLevel& level, const Vector3& zone) {
  const std::vector<PlacedBrush> brushes = PlaceBrushes(level);
  std::size_t number = 0;
  const std::optional<BrushTree> room = RoomAround(brushes, zone, number);
  if (!room || HoldsOthers(level, *room)) return {};
  std::set<const ActorBlock*> found;
  const Bounds3& box = brushes[number].Box;
  for (const PlacedBrush& brush : brushes)
    if (!brush.Shape.Polygons.empty() && IsWithin(box, brush.Box.Min, 1) && IsWithin(box, brush.Box.Max, 1))
      found.insert(brush.Actor);
  return found;
}

} // namespace quarvel
