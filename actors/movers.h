#pragma once

#include "actors/mover_animation.h"
#include "actors/scene_run.h"
#include "actors/trigger_list.h"
#include "scene/brush_geometry.h"
#include "scene/scene_context.h"
#include "t3d/brush_record.h"

namespace quarvel {

/// The track of a mover: its keys with the pauses of its state, or the endless turn of one with rotating physics. What
/// cannot be taken as it stands is reported. A mover without keys animates neither position nor rotation.
MoverAnimation AnimationOf(const BrushRecord& mover, Report& findings);

/// The room in which a visitor starts a mover by touching it: its bounds at rest (`bounds`, in scene units) with twice
/// the margin (Unreal units) added to each extent.
TriggerBox TouchBox(const BrushRecord& mover, const Bounds3& bounds, double margin, const SceneSpace& space);

/// Animates the mover whose Transform was just written: interpolators, timer, and what starts it. That is a sensor of
/// its own, written here, or the triggers that name its Tag, whose routes are noted.
void WriteMover(SceneContext& context, TriggerList& triggers, const BrushRecord& mover, const WrittenBrush& written);

/// Writes the movers of the level class by class, the four known ones first. Throws RunStopped.
void WriteMovers(SceneRun& run);

} // namespace quarvel
