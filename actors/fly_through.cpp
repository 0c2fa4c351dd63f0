#include "actors/fly_through.h"

#include "actors/script_writer.h"
#include "actors/viewpoints.h"
#include "math/number_text.h"
#include "math/rotation.h"

#include <algorithm>

namespace quarvel {

namespace {

constexpr double reach = 1e6; ///< scene units; beyond any level

double UsableStep(ActorContext& context) {
  const double step = context.Settings.TextBezierSubD;
  if (step > 0 && step <= 0.5) return std::max(step, 0.01);
  context.Findings.Add("TextBezierSubD", "the step " + FormatFlt(step) + " is not between 0 and 0.5; 0.1 was taken");
  return 0.1;
}

/// The camera in its Transform, which the flight moves. The Transform turns as a brush does; the camera in it is turned
/// once so that it looks along the brush's forward axis.
std::string WriteCamera(ActorContext& context, const std::string& name, const MoverAnimation& track,
                        pugi::xml_node parent) {
  SceneWriter& scene = context.Scene;
  SceneNode transform = scene.Open(parent, "", "Transform", name);
  transform.Field("  translation", PositionText(context, track.PositionKeys.front()));
  transform.Field("  rotation",
                  RotatorToAxisAngleText(BrushRotator(track.RotationKeys.front()), scene.ConversionMatrix));
  scene.Line("  children [");
  const std::string viewpoint = scene.Names.Take("V_" + name);
  SceneNode camera = scene.Open(transform.Element(), "    ", "Viewpoint", viewpoint);
  WriteCameraFields(camera, "      ", "0 0 0", RotatorToAxisAngleText({}, scene.ConversionMatrix), name);
  scene.Line("    }");
  scene.Line("  ]");
  scene.Line("}");
  return viewpoint;
}

/// A walking visitor would sink to the ground below the path; while the camera is bound they fly.
void WriteFlyingMode(ActorContext& context, const std::string& name, const std::string& viewpoint,
                     pugi::xml_node parent) {
  SceneWriter& scene = context.Scene;
  const std::string def = scene.Names.Take(name + "NAVINFO");
  SceneNode mode = scene.Open(parent, "", "NavigationInfo", def);
  mode.Strings(" type", "FLY");
  mode.Flag(" headlight", context.Settings.CheckHeadlight);
  scene.Line("}");
  AddRoute(scene, viewpoint, "isBound", def, "set_bind");
}

/// Lets the flight begin when its camera is bound, or `TextFlyThruDelay` seconds later, and end when it is unbound: a
/// timer that still runs would not begin anew.
void WriteTakeOff(ActorContext& context, const std::string& name, const std::string& viewpoint, pugi::xml_node parent) {
  SceneWriter& scene = context.Scene;
  const std::string timer = name + "TIMER";
  AddRoute(scene, viewpoint, "isBound", timer, "enabled");
  if (!context.Settings.CheckFlyThruDelay) return AddRoute(scene, viewpoint, "bindTime", timer, "startTime");
  const std::string def = scene.Names.Take("SCRIPT" + name);
  const SceneNode script = scene.Open(parent, "", "Script", def);
  WriteScriptField(script, " eventIn SFTime set_bindTime");
  WriteScriptField(script, " eventOut SFTime startTime_changed");
  const std::string delay = FormatGeneral(std::max<double>(context.Settings.TextFlyThruDelay, 0));
  WriteScriptCode(script,
                  {"  function set_bindTime(value,time) {", "    startTime_changed = value + " + delay + ";", "  }"},
                  " url \"javascript:", " \"");
  AddRoute(scene, viewpoint, "bindTime", def, "set_bindTime");
  AddRoute(scene, def, "startTime_changed", timer, "startTime");
}

std::string LineIndices(int count) {
  std::string indices;
  for (int i = 0; i < count; ++i)
    indices += std::to_string(i) + ", ";
  return indices + "-1";
}

void WritePathLine(ActorContext& context, const MoverAnimation& track, pugi::xml_node parent) {
  SceneWriter& scene = context.Scene;
  if (track.PositionKeys.size() < 2) return;
  std::string points;
  for (const Vector3& key : track.PositionKeys)
    points += (points.empty() ? "" : ",") + PositionText(context, key);
  const pugi::xml_node shape = scene.Open(parent, "", "Shape").Element();
  const pugi::xml_node appearance = scene.Open(shape, "  appearance ", "Appearance").Element();
  SceneNode material = scene.Open(appearance, "    material ", "Material");
  material.Field("      emissiveColor", "1 1 0");
  scene.Line("    }");
  scene.Line("  }");
  SceneNode line = scene.Open(shape, "  geometry ", "IndexedLineSet");
  SceneNode coordinates = scene.Open(line.Element(), "    coord ", "Coordinate");
  coordinates.List("      point", points, "        ", "      ]");
  scene.Line("    }");
  line.List("    coordIndex", LineIndices(track.PositionKeyCount), "      ", "    ]");
  scene.Line("  }");
  scene.Line("}");
}

std::string WriteFlight(ActorContext& context, const Flight& flight, const std::string& name, double step,
                        pugi::xml_node parent) {
  const MoverAnimation track = TrackOfFlight(flight, step);
  const std::string viewpoint = WriteCamera(context, name, track, parent);
  WriteInterpolators(context.Scene, name, track, context.Settings.TextScale, parent);
  WriteFlyingMode(context, name, viewpoint, parent);
  WriteTakeOff(context, name, viewpoint, parent);
  if (context.Settings.CheckShowFlyThru) WritePathLine(context, track, parent);
  return viewpoint;
}

/// Binds the camera as soon as there is a viewer. The sensor is so large that nobody leaves it: who came back, after a
/// fall from the level's edge, would be sent on the flight again. What stands for the filter in the document by default
/// cannot pass anything on.
void BindWhenLoaded(ActorContext& context, const std::string& viewpoint, pugi::xml_node parent) {
  SceneWriter& scene = context.Scene;
  const std::string sensor = "STARTFLYTHRU", filter = "STARTFLYTHRUBF";
  WriteSensorAround(scene, sensor, {{-reach, -reach, -reach}, {reach, reach, reach}}, parent);
  WriteBooleanFilter(context, filter, parent);
  const RouteScope scope = scene.Conforming() ? RouteScope::Both : RouteScope::Text;
  AddRoute(scene, sensor, "isActive", filter, "set_boolean", scope);
  AddRoute(scene, filter, "inputTrue", viewpoint, "set_bind", scope);
}

} // namespace

void WriteFlyThrough(ActorContext& context, const std::vector<Flight>& flights, pugi::xml_node parent) {
  if (flights.empty()) return;
  const double step = UsableStep(context);
  std::string first;
  int number = 0;
  for (const Flight& flight : flights) {
    const std::string name = ++number == 1 ? "FlyThru" : "FlyThru" + std::to_string(number);
    const std::string viewpoint = WriteFlight(context, flight, context.Scene.Names.Take(name), step, parent);
    if (first.empty()) first = viewpoint;
  }
  BindWhenLoaded(context, first, parent);
}

} // namespace quarvel
