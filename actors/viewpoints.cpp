#include "actors/viewpoints.h"

#include "actors/script_writer.h"
#include "base/ascii_text.h"
#include "math/number_text.h"
#include "math/rotation.h"

#include <algorithm>
#include <cmath>

namespace quarvel {

namespace {

void WriteGroupedCamera(SceneWriter& scene, const std::string& def, const std::string& position,
                        const std::string& rotation, const std::string& description) {
  SceneNode group = scene.Open("", "Transform");
  group.Children("  ");
  SceneNode place = scene.Open("    ", "Transform");
  place.Field("      translation", position);
  place.Field("    rotation", rotation);
  SceneNode camera = scene.OpenOnlyChild("      ", "Viewpoint", def);
  WriteCameraFields(camera, "        ", "0 0 0", "0 0 1 0", description);
}

/// What VRML97 has not, as a prototype (VRML97, clause 4.8).
constexpr const char* booleanFilterPrototype[] = {
    "PROTO BooleanFilter [",
    "   eventIn        SFBool set_boolean",
    "   eventOut     SFBool inputFalse",
    "   eventOut     SFBool inputNegate",
    "   eventOut     SFBool inputTrue",
    "]",
    "{",
    "   Script {",
    "   directOutput TRUE",
    "   eventIn        SFBool set_boolean   IS set_boolean",
    "   eventOut     SFBool inputFalse    IS inputFalse",
    "   eventOut     SFBool inputNegate   IS inputNegate",
    "   eventOut     SFBool inputTrue     IS inputTrue",
    "   url \"javascript:",
    "   function set_boolean( bval, curtime ) {",
    "      if( bval ){",
    "         inputTrue = bval;",
    "      }",
    "      else {",
    "         inputFalse = bval;",
    "      }",
    "      inputNegate = !bval;",
    "   }",
    "   \"",
    "   }",
    "}",
};

void BindByScript(SceneWriter& scene, const std::string& viewpoint) {
  const char* name = "SCRIPTDEFAULTVIEW";
  SceneNode script = scene.Open("", "Script", name);
  WriteScriptField(script, " eventOut SFBool bind_changed");
  script.Code({"  function initialize() {", "    bind_changed = true;", "  }"}, " ", " ");
  script.Close();
  AddRoute(scene, name, "bind_changed", viewpoint, "set_bind");
}

/// The viewpoint has to be in the box: a sensor that binds a viewpoint outside it is left at once, and would unbind it.
void BindBySensor(SceneContext& context, const std::string& viewpoint, const Vector3& position, Bounds3 bounds) {
  const ConversionSettings& settings = context.Settings;
  const char* name = "PROXSENSORDEFAULTVIEW";
  GrowBounds(bounds, position);
  Bounds3 box = BoxWithMargin(bounds);
  if (settings.OptionDefViewPSSize) {
    const Vector3 half = ScaleVector({settings.TextVProxSizeX, settings.TextVProxSizeY, settings.TextVProxSizeZ}, 0.5);
    box = {SubtractVector(position, half), AddVector(position, half)};
  }
  WriteSensorAround(context.Scene, name, box);
  AddRoute(context.Scene, name, "isActive", viewpoint, "set_bind");
}

} // namespace

void WriteCameraFields(SceneNode& camera, const std::string& indent, const std::string& position,
                       const std::string& orientation, const std::string& description) {
  camera.Field((indent + "position").c_str(), position);
  camera.Field((indent + "orientation").c_str(), orientation);
  camera.String((indent + "description").c_str(), description);
  camera.Field((indent + "fieldOfView").c_str(), FormatFlt(FieldOfView));
  camera.Flag((indent + "jump").c_str(), true);
}

std::string ViewpointDescription(const ActorHeader& header) {
  return header.Tag.empty() || SameText(header.Tag, "PlayerStart") ? header.Name : header.Tag;
}

std::string WriteViewpoint(SceneContext& context, const PlacementRecord& actor) {
  SceneWriter& scene = context.Scene;
  const std::string def = TakeActorName(context, actor.Header, "V_");
  const std::string position = context.Space.PositionText(actor.Location);
  const std::string rotation = context.Space.RotationText(actor.Rotation);
  const std::string description = MakeSceneText(ViewpointDescription(actor.Header));
  if (context.Settings.CheckGroupCamera) {
    WriteGroupedCamera(scene, def, position, rotation, description);
  } else {
    SceneNode camera = scene.Open("", "Viewpoint", def);
    WriteCameraFields(camera, "  ", position, rotation, description);
  }
  return def;
}

void DeclareBooleanFilter(SceneContext& context) {
  if (!context.Scene.IsX3DClassic()) context.Scene.DeclarePrototype("BooleanFilter", booleanFilterPrototype);
}

void WriteBooleanFilter(SceneContext& context, const std::string& name) {
  SceneWriter& scene = context.Scene;
  DeclareBooleanFilter(context);
  scene.Open("", "BooleanFilter", name, {.Scope = SceneScope::Text}).Close();
  scene.Open("", scene.Conforming() ? "BooleanFilter" : "Viewpoint", name, {.Scope = SceneScope::Document}).Close();
}

Bounds3 BoxWithMargin(const Bounds3& bounds) {
  const Vector3 extent = SubtractVector(bounds.Max, bounds.Min);
  const double margin = std::max({extent.X, extent.Y, extent.Z}) + 10;
  const Vector3 margins{margin, margin, margin};
  return {SubtractVector(bounds.Min, margins), AddVector(bounds.Max, margins)};
}

void WriteSensorAround(SceneWriter& scene, const std::string& name, const Bounds3& box) {
  SceneNode sensor = scene.Open("", "ProximitySensor", name);
  sensor.Field(" center", FormatVec(BoundsCenter(box)));
  sensor.Field(" size", FormatVec(SubtractVector(box.Max, box.Min)));
  sensor.Flag(" enabled", true);
}

PlacementRecord PlaceAbove(const Bounds3& bounds, const SceneSpace& space) {
  PlacementRecord place;
  if (IsEmpty(bounds)) return place;
  const Vector3 extent = SubtractVector(bounds.Max, bounds.Min);
  Vector3 above = BoundsCenter(bounds);
  above.Y = bounds.Max.Y + std::max(extent.X, extent.Z) / 2 / std::tan(FieldOfView / 2);
  place.Location = space.Location(above);
  place.Rotation.Pitch = -16384;
  return place;
}

void WriteDefaultViewpoint(SceneContext& context, const PlacementRecord& place, const Bounds3& bounds) {
  ActorHeader header;
  header.Name = "DefaultViewpoint";
  header.Tag = "Default Viewpoint";
  const std::string def = WriteViewpoint(context, {header, place.Location, place.Rotation});
  if (!context.Settings.OptionDefViewAsProxSensor) return BindByScript(context.Scene, def);
  BindBySensor(context, def, context.Space.Position(place.Location), bounds);
}

void WriteStarts(SceneRun& run) {
  ForEachActor(run, ActorFamily::PlayerStart, ReadPlacement,
               [&](const PlacementRecord& start) { WriteViewpoint(run.Context, start); });
}

void WriteFirstView(SceneRun& run) {
  const auto starts = ReadAllShown(run, ActorFamily::PlayerStart, ReadPlacement);
  const Bounds3& bounds = run.Bounds;
  WriteDefaultViewpoint(run.Context, starts.empty() ? PlaceAbove(bounds, run.Context.Space) : starts.front(), bounds);
}

} // namespace quarvel
