#pragma once

#include "actors/scene_run.h"

namespace quarvel {

/// Converts the brushes that are chosen: those that add to the world, or with `CheckBuildBrush` the builder brush alone.
/// A file of bare polygon lists is taken as brushes.
void ConvertBrushes(SceneRun& run);

/// Converts the movers class by class, the four known ones first.
void ConvertMovers(SceneRun& run);

} // namespace quarvel
