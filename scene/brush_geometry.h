#pragma once

#include "base/report.h"
#include "base/run_interface.h"
#include "scene/brush_placement.h"
#include "scene/materials.h"
#include "scene/node_writer.h"
#include "settings/conversion_settings.h"
#include "t3d/brush_record.h"

#include <functional>
#include <string>

namespace quarvel {

/// What the brush geometry writer works with, and what it counts.
struct GeometryContext {
  SceneWriter& Scene;
  MaterialWriter& Materials;
  const ConversionSettings& Settings;
  RunInterface& User;
  Report& Findings;

  Bounds3 Bounds = InitBounds(); ///< of everything written, in scene units
  int GeometryCount = 1;         ///< the running brush number
  int Faces = 0;
};

/// What was written for one brush.
struct WrittenBrush {
  std::string Name;              ///< DEF of its Transform
  Bounds3 Bounds = InitBounds(); ///< at rest, in scene units; empty when no face was written
};

/// Writes a brush: its Transform, an Anchor when it has a web address, and its face sets. `extraChildren` may add nodes
/// to the Transform's children, after the faces.
WrittenBrush WriteBrush(GeometryContext& context, const BrushRecord& brush,
                        const std::function<void()>& extraChildren = {});

/// The DEF name for a brush before it is made unique: from the actor's name, or for other classes than Brush from the
/// class and the running number.
std::string BrushName(const ActorHeader& header, int number);

/// The URL that a brush's address text stands for ("http---a--b" is "http://a.b"), percent-encoded; empty when it is
/// none.
std::string WebAddress(const std::string& text);

/// True when the polygon is one that nobody sees in the game, or that the options leave out.
bool IsIgnoredFace(const PolygonRecord& polygon, const ConversionSettings& settings);

} // namespace quarvel
