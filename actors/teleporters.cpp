#include "actors/teleporters.h"

#include "actors/script_writer.h"
#include "actors/triggers.h"
#include "actors/viewpoints.h"
#include "base/ascii_text.h"
#include "math/rotation.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace quarvel {

namespace {

constexpr double arrivalDistance = 2.3; ///< in collision radii
constexpr double sensorHeight = 4;      ///< in collision heights
constexpr const char* spinTimer = "VISTELEPORTTIMER";
constexpr const char* spinInterpolator = "VISTELEPORTROTINT";

/// What was written for one teleporter.
struct WrittenTeleporter {
  std::string Viewpoint, Sensor, Script;
};

Vector3 RaisedLocation(const SceneContext& context, const TeleporterRecord& teleporter) {
  return AddVector(teleporter.Location, {0, 0, context.Settings.TextTeleHtOff});
}

void WriteModel(SceneContext& context, const TeleporterRecord& teleporter, const std::string& name) {
  SceneWriter& scene = context.Scene;
  SceneNode collision = scene.Open("", "Collision");
  WritePassable(collision, " collide");
  collision.Children(" ");
  SceneNode transform = scene.Open("  ", "Transform", name);
  transform.Field("   translation", context.Space.PositionText(RaisedLocation(context, teleporter)));
  transform.Field("   scale", ".5 .5 .5");
  transform.Children("   ");
  SceneNode model = scene.Open("    ", "Inline");
  model.Strings("     url", PerScene{"TheVisTeleporter.wrl", "TheVisTeleporter.x3d"}, Brackets::Tight);
}

void WriteSpin(SceneWriter& scene) {
  WriteTimeSensor(scene, spinTimer, 1, Cycles::Endless);
  SceneNode node = scene.Open("", "OrientationInterpolator", spinInterpolator);
  node.List(" key", "0 0.333333 0.666666 1", ListLayout::OneLine);
  node.List(" keyValue", "0 1 0 0, 0 1 0 2.0944, 0 1 0 4.18879, 0 1 0 0", ListLayout::OneLine);
  node.Close();
  AddRoute(scene, spinTimer, "fraction_changed", spinInterpolator, "set_fraction");
}

/// The model of a visible teleporter, which all of them share, as they share its slow turn.
class ModelWriter {
 public:
  explicit ModelWriter(SceneContext& context) : context_(context) {}

  void Write(const TeleporterRecord& teleporter) {
    if (!teleporter.IsVisible || !context_.Settings.CheckDoMeshes) return;
    if (count_ == 0) {
      context_.Resources.FindAndCopyFile("VisTeleport.png", ResourceKind::Texture);
      context_.Resources.FindAndCopyFile("TheVisTeleporter.wrl", ResourceKind::Mesh);
      context_.Resources.FindAndCopyFile("TheVisTeleporter.x3d", ResourceKind::Mesh);
    }
    const std::string name = "VISTELEPORT" + std::to_string(count_);
    WriteModel(context_, teleporter, name);
    if (count_++ == 0) WriteSpin(context_.Scene);
    AddRoute(context_.Scene, spinInterpolator, "value_changed", name, "set_rotation");
  }

 private:
  SceneContext& context_;
  int count_ = 0;
};

/// Sends whoever enters to the destination, and unbinds the teleporter's own arrival viewpoint.
void WriteScript(SceneWriter& scene, const std::string& name) {
  SceneNode script = scene.Open("", "Script", name);
  WriteScriptField(script, " eventIn SFBool set_view_changed");
  WriteScriptField(script, " eventOut SFBool go_inchanged");
  WriteScriptField(script, " eventOut SFBool go_outchanged");
  script.Code({"  function set_view_changed(value,time) {", "    if (value)", "    {", "     go_inchanged = true;",
               "     go_outchanged = false;", "    }", "  }"},
              " ", " ");
}

/// The same, but a destination that is still bound from the last time is unbound first, since binding what is bound has
/// no effect (X3D 7.2.2). Unbinding it as soon as the sensor is left would be too early: the jump itself leaves it.
void WriteRepeatingScript(SceneWriter& scene, const std::string& name) {
  SceneNode script = scene.Open("", "Script", name);
  WriteScriptField(script, " eventIn SFBool set_view_changed");
  WriteScriptField(script, " eventIn SFBool destination_bound");
  WriteScriptField(script, " eventOut SFBool go_inchanged");
  WriteScriptField(script, " eventOut SFBool go_outchanged");
  WriteScriptField(script, " eventOut SFBool go_againchanged");
  WriteScriptField(script, " field SFBool arrived FALSE");
  WriteScriptField(script, " field SFBool again FALSE");
  script.Code({"  function set_view_changed(value,time) {", "    if (value)", "    {", "     go_outchanged = false;",
               "     again = arrived;", "     if (again) go_againchanged = false;", "     else go_inchanged = true;",
               "    }", "  }", "  function destination_bound(value,time) {", "    arrived = value;", "    if (again)",
               "    {", "     again = false;", "     go_inchanged = true;", "    }", "  }"},
              " ", " ");
}

WrittenTeleporter WriteTeleporter(SceneContext& context, const TeleporterRecord& teleporter, bool repeats,
                                  ModelWriter& models) {
  SceneWriter& scene = context.Scene;
  models.Write(teleporter);
  WrittenTeleporter written;
  written.Viewpoint = WriteViewpoint(context, ArrivalPlace(teleporter));
  written.Sensor = TakeActorName(context, teleporter.Header, "Tele");
  const TriggerBox box{RaisedLocation(context, teleporter), teleporter.CollisionRadius,
                       sensorHeight * teleporter.CollisionHeight};
  WriteTrigger(context, box, written.Sensor);
  written.Script = TakeActorName(context, teleporter.Header, "SCRIPTTele");
  if (repeats)
    WriteRepeatingScript(scene, written.Script);
  else
    WriteScript(scene, written.Script);
  AddRoute(scene, written.Sensor, "isActive", written.Script, "set_view_changed");
  AddRoute(scene, written.Script, "go_outchanged", written.Viewpoint, "set_bind");
  return written;
}

void RouteToDestination(SceneWriter& scene, const std::string& script, const std::string& destination, bool repeats) {
  AddRoute(scene, script, "go_inchanged", destination, "set_bind");
  if (!repeats) return;
  AddRoute(scene, script, "go_againchanged", destination, "set_bind");
  AddRoute(scene, destination, "isBound", script, "destination_bound");
}

/// The numbers of the teleporters of each Tag, in lower case.
using TeleportersByTag = std::map<std::string, std::vector<std::size_t>>;

/// The number of the teleporter that the URL of `from` leads to; -1 when there is none, which is reported unless there
/// is no URL.
int FindDestination(SceneContext& context, const std::vector<TeleporterRecord>& teleporters,
                    const TeleportersByTag& byTag, std::size_t from, const std::string& levelName) {
  const TeleporterRecord& teleporter = teleporters[from];
  if (teleporter.URL.empty()) return -1;
  const TeleportTarget target = ParseTeleportURL(teleporter.URL);
  const auto report = [&](FindingCode code) { context.Findings.Add(code, teleporter.Header.Name, teleporter.URL); };
  if (!target.Map.empty() && !SameText(target.Map, levelName)) {
    report(FindingCode::LeadsToOtherLevel);
    return -1;
  }
  const auto at = byTag.find(LowerCase(target.Tag));
  if (target.Tag.empty() || at == byTag.end() || (at->second.size() == 1 && at->second.front() == from)) {
    report(FindingCode::NoDestination);
    return -1;
  }
  const std::vector<std::size_t>& numbers = at->second;
  const bool isAmong = SameText(teleporter.Header.Tag, target.Tag);
  if (numbers.size() > (isAmong ? 2U : 1U)) report(FindingCode::SeveralDestinations);
  return static_cast<int>(numbers[numbers.front() == from ? 1 : 0]);
}

} // namespace

TeleportTarget ParseTeleportURL(std::string_view url) {
  url = Trimmed(url.substr(0, url.find('?')));
  const std::size_t hash = url.find('#');
  if (hash == url.npos) return {{}, std::string(url)};
  const std::string_view map = url.substr(0, hash);
  return {std::string(map.substr(0, map.rfind('.'))), std::string(url.substr(hash + 1))};
}

PlacementRecord ArrivalPlace(const TeleporterRecord& teleporter) {
  PlacementRecord place{teleporter.Header, teleporter.Location, teleporter.Rotation};
  // Along the ground: straight above or below it one would still stand in the sensor.
  const double yaw = UnrealToRadians(teleporter.Rotation.Yaw);
  const double distance = arrivalDistance * std::max(teleporter.CollisionRadius, 0.0);
  place.Location = AddVector(place.Location, {distance * std::cos(yaw), distance * std::sin(yaw), 0});
  return place;
}

void WriteTeleporters(SceneContext& context, const std::vector<TeleporterRecord>& teleporters,
                      const std::string& levelName) {
  ModelWriter models(context);
  TeleportersByTag byTag;
  for (std::size_t i = 0; i < teleporters.size(); ++i)
    byTag[LowerCase(teleporters[i].Header.Tag)].push_back(i);
  std::vector<int> destinations;
  std::vector<WrittenTeleporter> written;
  const auto repeats = [&](std::size_t i) { return context.Scene.Conforming() && destinations[i] >= 0; };
  for (std::size_t i = 0; i < teleporters.size(); ++i) {
    destinations.push_back(FindDestination(context, teleporters, byTag, i, levelName));
    written.push_back(WriteTeleporter(context, teleporters[i], repeats(i), models));
  }
  for (std::size_t i = 0; i < teleporters.size(); ++i)
    if (destinations[i] >= 0)
      RouteToDestination(context.Scene, written[i].Script, written[static_cast<std::size_t>(destinations[i])].Viewpoint,
                         repeats(i));
}

void WriteTeleporters(SceneRun& run) {
  WriteTeleporters(run.Context, ReadAllShown(run, ActorFamily::Teleporter, ReadTeleporter), run.Level.Name);
}

} // namespace quarvel
