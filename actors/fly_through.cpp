#include "actors/fly_through.h"

#include "actors/script_writer.h"
#include "actors/viewpoints.h"
#include "base/ascii_text.h"
#include "math/number_text.h"
#include "math/rotation.h"
#include "scene/avatar.h"

#include <algorithm>

namespace quarvel {

namespace {

constexpr double reach = 1e6; ///< scene units; beyond any level

double UsableStep(SceneContext& context) {
  const double step = context.Settings.TextBezierSubD;
  if (step > 0 && step <= 0.5) return std::max(step, 0.01);
  context.Findings.Add(FindingCode::StepOutOfRange, "TextBezierSubD", FormatFlt(step));
  return 0.1;
}

/// The camera in its Transform, which the flight moves. The Transform turns as a brush does; the camera in it is turned
/// once so that it looks along the brush's forward axis.
std::string WriteCamera(SceneContext& context, const std::string& name, const MoverAnimation& track) {
  SceneWriter& scene = context.Scene;
  SceneNode transform = scene.Open("", "Transform", name);
  transform.Field("  translation", context.Space.PositionText(track.PositionKeys.front()));
  transform.Field("  rotation", context.Space.RotationText(BrushRotator(track.RotationKeys.front())));
  transform.Children("  ");
  const std::string viewpoint = scene.TakeName("V_" + name);
  SceneNode camera = scene.Open("    ", "Viewpoint", viewpoint);
  WriteCameraFields(camera, "      ", "0 0 0", context.Space.RotationText({}), name);
  return viewpoint;
}

/// A walking visitor would sink to the ground below the path: they fly from when the camera is bound until the flight
/// is over, or they leave the camera.
void WriteFlyingMode(SceneContext& context, const std::string& name, const std::string& viewpoint) {
  if (!SameText(context.Settings.ListMovement, "walk")) return;
  SceneWriter& scene = context.Scene;
  const std::string def = scene.TakeName(name + "NAVINFO");
  SceneNode mode = scene.Open("", "NavigationInfo", def);
  mode.Strings(" type", "FLY");
  mode.Flag(" headlight", context.Settings.CheckHeadlight);
  WriteAvatarSize(mode, " avatarSize");
  WriteAvatarSpeed(mode, " speed");
  mode.Close();
  AddRoute(scene, viewpoint, "isBound", def, "set_bind");
  AddRoute(scene, name + "TIMER", "isActive", def, "set_bind");
}

/// Lets the flight begin when its camera is bound, or `TextFlyThruDelay` seconds later, and end when it is unbound: a
/// timer that still runs would not begin anew.
void WriteTakeOff(SceneContext& context, const std::string& name, const std::string& viewpoint) {
  SceneWriter& scene = context.Scene;
  const std::string timer = name + "TIMER";
  AddRoute(scene, viewpoint, "isBound", timer, "enabled");
  if (!context.Settings.CheckFlyThruDelay) return AddRoute(scene, viewpoint, "bindTime", timer, "startTime");
  const std::string def = scene.TakeName("SCRIPT" + name);
  SceneNode script = scene.Open("", "Script", def);
  WriteScriptField(script, " eventIn SFTime set_bindTime");
  WriteScriptField(script, " eventOut SFTime startTime_changed");
  const std::string delay = FormatGeneral(std::max<double>(context.Settings.TextFlyThruDelay, 0));
  script.Code({"  function set_bindTime(value,time) {", "    startTime_changed = value + " + delay + ";", "  }"}, " ",
              " ");
  script.Close();
  AddRoute(scene, viewpoint, "bindTime", def, "set_bindTime");
  AddRoute(scene, def, "startTime_changed", timer, "startTime");
}

std::string LineIndices(int count) {
  std::string indices;
  for (int i = 0; i < count; ++i)
    indices += std::to_string(i) + ", ";
  return indices + "-1";
}

void WritePathLine(SceneContext& context, const MoverAnimation& track) {
  SceneWriter& scene = context.Scene;
  if (track.PositionKeys.size() < 2) return;
  std::string points;
  for (const Vector3& key : track.PositionKeys)
    points += (points.empty() ? "" : ",") + context.Space.PositionText(key);
  const SceneNode shape = scene.Open("", "Shape");
  SceneNode appearance = scene.Open("  appearance ", "Appearance");
  SceneNode material = scene.Open("    material ", "Material");
  material.Field("      emissiveColor", "1 1 0");
  material.Close();
  appearance.Close();
  SceneNode line = scene.Open("  geometry ", "IndexedLineSet");
  SceneNode coordinates = scene.Open("    coord ", "Coordinate");
  coordinates.List("      point", points);
  coordinates.Close();
  line.List("    coordIndex", LineIndices(track.PositionKeyCount));
}

std::string WriteFlight(SceneContext& context, const Flight& flight, const std::string& name, double step) {
  const MoverAnimation track = TrackOfFlight(flight, step);
  const std::string viewpoint = WriteCamera(context, name, track);
  WriteInterpolators(context, name, track);
  WriteFlyingMode(context, name, viewpoint);
  WriteTakeOff(context, name, viewpoint);
  if (context.Settings.CheckShowFlyThru) WritePathLine(context, track);
  return viewpoint;
}

/// Binds the camera as soon as there is a viewer. The sensor is so large that nobody leaves it: who came back, after a
/// fall from the level's edge, would be sent on the flight again. What stands for the filter in the document by default
/// cannot pass anything on.
void BindWhenLoaded(SceneContext& context, const std::string& viewpoint) {
  SceneWriter& scene = context.Scene;
  const std::string sensor = "STARTFLYTHRU", filter = "STARTFLYTHRUBF";
  WriteSensorAround(scene, sensor, {{-reach, -reach, -reach}, {reach, reach, reach}});
  WriteBooleanFilter(context, filter);
  const SceneScope scope = scene.Conforming() ? SceneScope::Both : SceneScope::Text;
  AddRoute(scene, sensor, "isActive", filter, "set_boolean", scope);
  AddRoute(scene, filter, "inputTrue", viewpoint, "set_bind", scope);
}

/// The second generation's scene managers know their paths; without one the points themselves are the path.
std::vector<Flight> PlanFlights(SceneRun& run, const std::vector<InterpolationPointRecord>& points) {
  Report& findings = run.Context.Findings;
  std::vector<Flight> flights;
  const PointsByName byName = IndexPoints(points);
  if (!run.Level.LegacyFormat)
    for (const SceneManagerRecord& scene : ReadAllShown(run, ActorFamily::SceneManager, ReadSceneManager)) {
      Flight flight = FlightOfScene(scene, byName, findings);
      if (!flight.Segments.empty()) flights.push_back(std::move(flight));
    }
  return flights.empty() ? FlightsOfPoints(points, findings) : flights;
}

/// What else an event of the first generation does than to send visitors along a path, which is a flight anyway.
void ReportSpecialEvents(SceneRun& run) {
  if (!run.Level.LegacyFormat) return;
  for (const SpecialEventRecord& event : ReadAllShown(run, ActorFamily::SpecialEvent, ReadSpecialEvent))
    run.Context.Findings.Add(FindingCode::SpecialEvent, event.Header.Name);
}

} // namespace

void WriteFlyThrough(SceneContext& context, const std::vector<Flight>& flights) {
  if (flights.empty()) return;
  const double step = UsableStep(context);
  std::string first;
  int number = 0;
  for (const Flight& flight : flights) {
    const std::string name = ++number == 1 ? "FlyThru" : "FlyThru" + std::to_string(number);
    const std::string viewpoint = WriteFlight(context, flight, context.Scene.TakeName(name), step);
    if (first.empty()) first = viewpoint;
  }
  BindWhenLoaded(context, first);
}

void DeclareFlightPrototypes(SceneRun& run) {
  const ConversionSettings& settings = run.Context.Settings;
  if (!settings.CheckEnclose || !settings.CheckOutputFlyThru || run.Part.Kept == ScenePart::Kind::Sky) return;
  if (ReadAllShown(run, ActorFamily::InterpolationPoint, ReadInterpolationPoint).empty()) return;
  DeclareBooleanFilter(run.Context);
  FlushBlock(run);
}

void WriteFlights(SceneRun& run) {
  const auto points = ReadAllShown(run, ActorFamily::InterpolationPoint, ReadInterpolationPoint);
  const std::vector<Flight> flights = PlanFlights(run, points);
  ReportSpecialEvents(run);
  run.Context.User.ShowPass("Writing Interpolation Points");
  WriteFlyThrough(run.Context, flights);
  FlushBlock(run);
  if (!run.Context.Settings.CheckOutputFlyThruViewpoints) return;
  for (const InterpolationPointRecord& point : points) {
    WriteViewpoint(run.Context, {point.Header, point.Location, point.Rotation});
    FlushBlock(run);
  }
}

} // namespace quarvel
