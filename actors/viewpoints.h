#pragma once

#include "actors/scene_run.h"
#include "scene/scene_context.h"
#include "t3d/placement_records.h"

#include <string>

namespace quarvel {

/// The field of view of every camera, in radians.
inline constexpr double FieldOfView = 0.875;

/// Writes a camera that stands where the actor stands and looks where it looks; with `CheckGroupCamera` within two
/// Transforms that can be moved. Returns its DEF name.
std::string WriteViewpoint(SceneContext& context, const PlacementRecord& actor);

/// The fields of a camera, one a line behind the indentation, in text and element.
void WriteCameraFields(SceneNode& camera, const std::string& indent, const std::string& position,
                       const std::string& orientation, const std::string& description);

/// What a viewer's list calls the camera: the Tag, or the Name when the Tag says nothing.
std::string ViewpointDescription(const ActorHeader& header);

/// Declares the node BooleanFilter, which VRML97 has not, unless that is done; see SceneWriter::DeclarePrototype.
void DeclareBooleanFilter(SceneContext& context);
/// Writes a filter that passes TRUE on as "inputTrue", in the text at least: by default the document has a Viewpoint of
/// that name in its place, which passes on nothing.
void WriteBooleanFilter(SceneContext& context, const std::string& name);

/// The level's box with a wide margin. Scene units.
Bounds3 BoxWithMargin(const Bounds3& bounds);
/// Writes a proximity sensor that fills the box.
void WriteSensorAround(SceneWriter& scene, const std::string& name, const Bounds3& box);

/// A place above the middle of the level's box (scene units) from which the whole of it is seen.
PlacementRecord PlaceAbove(const Bounds3& bounds, const SceneSpace& space);

/// Writes the default viewpoint at the place, and the script or the sensor that binds it. `bounds` is the level's box
/// in scene units.
void WriteDefaultViewpoint(SceneContext& context, const PlacementRecord& place, const Bounds3& bounds);

/// Writes a viewpoint for each player start. Throws RunStopped.
void WriteStarts(SceneRun& run);

/// Writes the default viewpoint, at the first player start or above the level.
void WriteFirstView(SceneRun& run);

} // namespace quarvel
