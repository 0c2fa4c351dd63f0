#pragma once

#include "actors/scene_run.h"
#include "scene/brush_geometry.h"
#include "t3d/brush_record.h"

#include <optional>

namespace quarvel {

/// The brush or mover of an actor, if this scene shows it.
std::optional<BrushRecord> ShownBrush(SceneRun& run, const ActorBlock& actor);

/// Writes a brush, or a mover at rest, as the next child of the scene, and counts it.
WrittenBrush WriteNextBrush(SceneRun& run, const BrushRecord& brush);

/// Notes that a brush is not written.
void SkipBrush(SceneRun& run, const BrushRecord& brush);

/// Writes the brushes that add to the world, or with `CheckBuildBrush` the builder brush alone, each by itself. The
/// polygon lists of a file without actors are brushes, too. Throws RunStopped.
void WriteBrushesOneByOne(SceneRun& run);

} // namespace quarvel
