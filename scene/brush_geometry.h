#pragma once

#include "math/vector.h"
#include "scene/scene_context.h"
#include "t3d/brush_record.h"

#include <optional>
#include <string>

namespace quarvel {

/// What was written for one brush.
struct WrittenBrush {
  std::string Name;              ///< DEF of its Transform
  Bounds3 Bounds = InitBounds(); ///< at rest, in scene units; empty when no face was written
  int Faces = 0;
};

/// Writes a brush: its Transform, an Anchor when it has a web address, its face sets, and a mesh that stands in for
/// them. `number` is the running one among brushes and movers.
WrittenBrush WriteBrush(SceneContext& context, const BrushRecord& brush, int number);

/// Whether a mesh is written for the brush, as for a mover of the second generation, which has no polygons.
bool HasMeshForPolygons(const BrushRecord& brush, const ConversionSettings& settings);

/// The DEF name for a brush before it is made unique: from the actor's name, or for other classes than Brush from the
/// class and the running number.
std::string BrushName(const ActorHeader& header, int number);

/// The URL that a brush's address text stands for ("http---a--b" is "http://a.b"), percent-encoded; empty when it is
/// none.
std::string WebAddress(const std::string& text);

/// Why a polygon is left out: nobody sees it in the game, or the options leave it out. nullopt when it is not.
std::optional<FindingCode> WhyIgnored(const PolygonRecord& polygon, const ConversionSettings& settings);

} // namespace quarvel
