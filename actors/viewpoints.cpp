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
                        const std::string& rotation, const std::string& description, pugi::xml_node parent) {
  const pugi::xml_node group = scene.Open(parent, "", "Transform").Element();
  scene.Line("  children [");
  SceneNode place = scene.Open(group, "    ", "Transform");
  place.Field("      translation", position);
  place.Field("    rotation", rotation);
  SceneNode camera = scene.Open(place.Element(), "      children [ ", "Viewpoint", def);
  WriteCameraFields(camera, "        ", "0 0 0", "0 0 1 0", description);
  scene.Line("      } ]");
  scene.Line("    }");
  scene.Line("  ]");
  scene.Line("}");
}

void WriteFilterInterface(SceneWriter& scene, const char* indent, bool connected) {
  const auto line = [&](const char* declaration, const char* name) {
    scene.Line(indent, declaration, connected ? name : "");
  };
  line("eventIn        SFBool set_boolean", "   IS set_boolean");
  line("eventOut     SFBool inputFalse", "    IS inputFalse");
  line("eventOut     SFBool inputNegate", "   IS inputNegate");
  line("eventOut     SFBool inputTrue", "     IS inputTrue");
}

void WriteFilterPrototype(SceneWriter& scene) {
  scene.Line("PROTO BooleanFilter [");
  WriteFilterInterface(scene, "   ", false);
  scene.Line("]");
  scene.Line("{");
  scene.Line("   Script {");
  scene.Line("   directOutput TRUE");
  WriteFilterInterface(scene, "   ", true);
  scene.Line("   url \"javascript:");
  scene.Line("   function set_boolean( bval, curtime ) {");
  scene.Line("      if( bval ){");
  scene.Line("         inputTrue = bval;");
  scene.Line("      }");
  scene.Line("      else {");
  scene.Line("         inputFalse = bval;");
  scene.Line("      }");
  scene.Line("      inputNegate = !bval;");
  scene.Line("   }");
  scene.Line("   \"");
  scene.Line("   }");
  scene.Line("}");
}

void BindByScript(SceneWriter& scene, const std::string& viewpoint, pugi::xml_node parent) {
  const char* name = "SCRIPTDEFAULTVIEW";
  const SceneNode script = scene.Open(parent, "", "Script", name);
  WriteScriptField(script, " eventOut SFBool bind_changed");
  WriteScriptCode(script, {"  function initialize() {", "    bind_changed = true;", "  }"},
                  " url \"javascript:", " \"");
  AddRoute(scene, name, "bind_changed", viewpoint, "set_bind");
}

/// The viewpoint has to be in the box: a sensor that binds a viewpoint outside it is left at once, and would unbind it.
void BindBySensor(ActorContext& context, const std::string& viewpoint, const Vector3& position, Bounds3 bounds,
                  pugi::xml_node parent) {
  const ConversionSettings& settings = context.Settings;
  const char* name = "PROXSENSORDEFAULTVIEW";
  GrowBounds(bounds, position);
  Bounds3 box = BoxWithMargin(bounds);
  if (settings.OptionDefViewPSSize) {
    const Vector3 half = ScaleVector({settings.TextVProxSizeX, settings.TextVProxSizeY, settings.TextVProxSizeZ}, 0.5);
    box = {SubtractVector(position, half), AddVector(position, half)};
  }
  WriteSensorAround(context.Scene, name, box, parent);
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

std::string WriteViewpoint(ActorContext& context, const PlacementRecord& actor, pugi::xml_node parent) {
  SceneWriter& scene = context.Scene;
  const std::string def = TakeActorName(context, actor.Header, "V_");
  const std::string position = PositionText(context, actor.Location);
  const std::string rotation = RotatorToAxisAngleText(actor.Rotation, scene.ConversionMatrix);
  const std::string description = MakeSceneText(ViewpointDescription(actor.Header));
  if (context.Settings.CheckGroupCamera) {
    WriteGroupedCamera(scene, def, position, rotation, description, parent);
  } else {
    SceneNode camera = scene.Open(parent, "", "Viewpoint", def);
    WriteCameraFields(camera, "  ", position, rotation, description);
    scene.Line("}");
  }
  return def;
}

void DeclareBooleanFilter(ActorContext& context) {
  if (context.BooleanFilterDeclared || context.Scene.IsX3DClassic()) return;
  WriteFilterPrototype(context.Scene);
  context.BooleanFilterDeclared = true;
}

void WriteBooleanFilter(ActorContext& context, const std::string& name, pugi::xml_node parent) {
  SceneWriter& scene = context.Scene;
  DeclareBooleanFilter(context);
  scene.Line("DEF ", name, " BooleanFilter {");
  scene.Line("}");
  scene.Define(name);
  AddAttribute(parent.append_child(scene.Conforming() ? "BooleanFilter" : "Viewpoint"), "DEF", name);
}

Bounds3 BoxWithMargin(const Bounds3& bounds) {
  const Vector3 extent = SubtractVector(bounds.Max, bounds.Min);
  const double margin = std::max({extent.X, extent.Y, extent.Z}) + 10;
  const Vector3 margins{margin, margin, margin};
  return {SubtractVector(bounds.Min, margins), AddVector(bounds.Max, margins)};
}

void WriteSensorAround(SceneWriter& scene, const std::string& name, const Bounds3& box, pugi::xml_node parent) {
  SceneNode sensor = scene.Open(parent, "", "ProximitySensor", name);
  sensor.Field(" center", FormatVec(BoundsCenter(box)));
  sensor.Field(" size", FormatVec(SubtractVector(box.Max, box.Min)));
  sensor.Flag(" enabled", true);
  scene.Line("}");
}

PlacementRecord PlaceAbove(const Bounds3& bounds, double worldScale) {
  PlacementRecord place;
  if (IsEmpty(bounds)) return place;
  const Vector3 extent = SubtractVector(bounds.Max, bounds.Min);
  Vector3 above = BoundsCenter(bounds);
  above.Y = bounds.Max.Y + std::max(extent.X, extent.Z) / 2 / std::tan(FieldOfView / 2);
  place.Location = ScaleVector(FromSceneAxes(above), 1 / worldScale);
  place.Rotation.Pitch = -16384;
  return place;
}

void WriteDefaultViewpoint(ActorContext& context, PlacementRecord place, const Bounds3& bounds, pugi::xml_node parent) {
  place.Header = {};
  place.Header.Name = "DefaultViewpoint";
  place.Header.Tag = "Default Viewpoint";
  const std::string def = WriteViewpoint(context, place, parent);
  if (!context.Settings.OptionDefViewAsProxSensor) return BindByScript(context.Scene, def, parent);
  const Vector3 position =
      ScaleVector(ToSceneAxes(context.Scene.ConversionMatrix, place.Location), context.Settings.TextScale);
  BindBySensor(context, def, position, bounds, parent);
}

} // namespace quarvel
