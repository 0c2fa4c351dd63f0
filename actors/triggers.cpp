#include "actors/triggers.h"

#include "actors/script_writer.h"
#include "math/number_text.h"

#include <algorithm>
#include <map>
#include <set>

namespace quarvel {

namespace {

void AddEvent(TriggerEntry& entry, const std::string& event) {
  if (!event.empty()) entry.Events.push_back(event);
}

/// With its place in the file.
using PlacedEntry = std::pair<TextCursor, TriggerEntry>;

template <typename Record>
TriggerEntry MakeEntry(SceneContext& context, const Record& trigger) {
  TriggerEntry entry{trigger.Header.Class,
                     TakeActorName(context, trigger.Header),
                     {},
                     {trigger.Location, trigger.CollisionRadius, trigger.CollisionHeight, trigger.bInitiallyActive}};
  AddEvent(entry, trigger.Header.Event);
  return entry;
}

void ReadPlainTriggers(SceneContext& context, const ScenePart& part, const T3DLevel& level,
                       std::vector<PlacedEntry>& entries) {
  for (const ActorBlock* actor : level.ActorsOf(ActorFamily::Trigger))
    if (const auto trigger = ReadShown(part, level, *actor, ReadTrigger))
      entries.emplace_back(actor->From, MakeEntry(context, *trigger));
}

void ReadStochasticTriggers(SceneContext& context, const ScenePart& part, const T3DLevel& level,
                            std::vector<PlacedEntry>& entries) {
  for (const ActorBlock* actor : level.ActorsOf(ActorFamily::StochasticTrigger)) {
    const auto trigger = ReadShown(part, level, *actor, ReadStochasticTrigger);
    if (!trigger) continue;
    TriggerEntry entry = MakeEntry(context, *trigger);
    for (const std::string& event : trigger->Events)
      AddEvent(entry, event);
    entries.emplace_back(actor->From, std::move(entry));
  }
}

/// What a sensor or a dispatcher's script sends on.
struct LinkEnd {
  std::string Node, Field;
};

/// Turns the noted links into routes, with the scripts that dispatchers with delays need on the way.
class LinkWriter {
 public:
  LinkWriter(SceneContext& context, const TriggerList& triggers) : context_(context), triggers_(triggers) {}

  void WriteLinks() {
    for (const TriggerLink& link : triggers_.Links)
      for (const TriggerSource& source : triggers_.SourcesOf(link.Tag))
        ResolveLink(link, source);
    NoteScriptsBehindScripts();
    for (const auto& [number, outputs] : outputs_)
      WriteScript(number, outputs);
    RouteIntoScripts();
    for (const Route& route : routes_)
      AddRoute(context_.Scene, route.FromNode, route.FromField, route.ToNode, route.ToField);
  }

 private:
  /// A script's outputs: the sensor's field whose time each passes on, and the entry of the dispatcher.
  using Outputs = std::set<std::pair<std::string, std::size_t>>;

  void ResolveLink(const TriggerLink& link, const TriggerSource& source) {
    if (!source.IsSensor && link.FromField == "isActive") {
      context_.Findings.Add(FindingCode::DelayedSwitch, link.ToNode);
      return;
    }
    const LinkEnd from = EndOf(source, link.FromField);
    routes_.push_back({from.Node, from.Field, link.ToNode, link.ToField});
  }

  LinkEnd EndOf(const TriggerSource& source, const std::string& fromField) {
    if (source.IsSensor) return {triggers_.Entries[source.Entry].Name, fromField};
    const std::size_t number = source.Output.Dispatcher;
    outputs_[number].emplace(fromField, source.Output.Entry);
    return {ScriptName(number), OutputName(fromField, source.Output.Entry)};
  }

  static std::string OutputName(const std::string& fromField, std::size_t entry) {
    return fromField + std::to_string(entry) + "_changed";
  }

  const std::string& ScriptName(std::size_t number) {
    std::string& name = scriptNames_[number];
    if (name.empty()) name = context_.Scene.TakeName(MakeDefName("SCRIPT" + triggers_.Dispatchers[number].Name));
    return name;
  }

  /// A delayed dispatcher may be started by another one.
  void NoteScriptsBehindScripts() {
    std::vector<std::pair<std::size_t, std::string>> open;
    std::set<std::pair<std::size_t, std::string>> seen;
    for (const auto& [number, outputs] : outputs_)
      for (const auto& output : outputs)
        open.emplace_back(number, output.first);
    while (!open.empty()) {
      const auto [number, field] = open.back();
      open.pop_back();
      if (!seen.emplace(number, field).second) continue;
      for (const TriggerSource& source : triggers_.SourcesOfDispatcher(number)) {
        EndOf(source, field);
        if (!source.IsSensor) open.emplace_back(source.Output.Dispatcher, field);
      }
    }
    inputs_ = std::move(seen);
  }

  void WriteScript(std::size_t number, const Outputs& outputs) {
    SceneWriter& scene = context_.Scene;
    SceneNode script = scene.Open("", "Script", ScriptName(number));
    std::map<std::string, std::vector<std::string>> functions; // the lines of each input's function
    for (const auto& [field, entry] : outputs) {
      const std::string delay = FormatGeneral(triggers_.Dispatchers[number].Delays[entry]);
      functions[field].push_back("     " + OutputName(field, entry) + " = value + " + delay + ";");
    }
    for (const auto& function : functions)
      WriteScriptField(script, "eventIn  SFTime  set_" + function.first);
    for (const auto& [field, entry] : outputs)
      WriteScriptField(script, "eventOut SFTime  " + OutputName(field, entry));
    std::vector<std::string> code;
    for (const auto& [field, lines] : functions) {
      code.push_back("  function set_" + field + "(value,time) {");
      code.insert(code.end(), lines.begin(), lines.end());
      code.emplace_back("  }");
    }
    script.Code(code, "", "");
  }

  void RouteIntoScripts() {
    for (const auto& [number, field] : inputs_)
      for (const TriggerSource& source : triggers_.SourcesOfDispatcher(number)) {
        const LinkEnd from = EndOf(source, field);
        routes_.push_back({from.Node, from.Field, ScriptName(number), "set_" + field});
      }
  }

  SceneContext& context_;
  const TriggerList& triggers_;
  std::vector<Route> routes_;
  std::map<std::size_t, Outputs> outputs_; ///< by the dispatcher's number
  std::set<std::pair<std::size_t, std::string>> inputs_;
  std::map<std::size_t, std::string> scriptNames_;
};

/// The size of the sensor's box. Its first number is the radius, not the width.
std::string SensorSize(SceneContext& context, const TriggerBox& trigger, const std::string& name) {
  const double scale = context.Space.Scale();
  if (trigger.CollisionRadius < 0 || trigger.CollisionHeight < 0)
    context.Findings.Add(FindingCode::TriggerSizeBelowZero, name);
  const double radius = std::max(trigger.CollisionRadius, 0.0), height = std::max(trigger.CollisionHeight, 0.0);
  if (radius == 0 || height == 0) context.Findings.Add(FindingCode::TriggerWithoutSize, name);
  return FormatVec({radius * scale, height * scale, (radius + radius) * scale});
}

void WriteSensor(SceneWriter& scene, const std::string& name, const std::string& center, const std::string& size,
                 bool enabled) {
  SceneNode sensor = scene.Open("", "ProximitySensor", name);
  sensor.Field(" center", center);
  sensor.Field(" size", size);
  sensor.Flag(" enabled", enabled);
}

void WriteSensorBox(SceneWriter& scene, const std::string& size) {
  const SceneNode shape = scene.Open("    ", "Shape");
  SceneNode box = scene.Open("     geometry ", "Box");
  box.Field("      size", size);
  box.Close();
  const SceneNode appearance = scene.Open("     appearance ", "Appearance");
  SceneNode material = scene.Open("      material ", "Material");
  material.Field("        transparency", "0.5");
}

} // namespace

TriggerList ReadTriggers(SceneContext& context, const ScenePart& part, const T3DLevel& level) {
  TriggerList triggers;
  std::vector<PlacedEntry> entries;
  ReadPlainTriggers(context, part, level, entries);
  ReadStochasticTriggers(context, part, level, entries);
  std::sort(entries.begin(), entries.end(),
            [](const PlacedEntry& a, const PlacedEntry& b) { return a.first < b.first; });
  for (PlacedEntry& entry : entries)
    triggers.Entries.push_back(std::move(entry.second));
  for (const ActorBlock* dispatcher : level.ActorsOf(ActorFamily::Dispatcher))
    triggers.AddDispatcher(ReadDispatcher(level, *dispatcher), context.Findings);
  triggers.Connect(context.Findings);
  return triggers;
}

bool NoteLink(TriggerList& triggers, const std::string& tag, const std::string& fromField, const std::string& toNode,
              const std::string& toField) {
  if (!triggers.IsReached(tag)) return false;
  triggers.Links.push_back({tag, fromField, toNode, toField});
  return true;
}

void WriteTrigger(SceneContext& context, const TriggerBox& trigger, const std::string& name) {
  SceneWriter& scene = context.Scene;
  const std::string position = context.Space.PositionText(trigger.Location);
  const std::string size = SensorSize(context, trigger, name);
  if (!context.Settings.CheckShowTriggers) return WriteSensor(scene, name, position, size, trigger.Enabled);

  SceneNode collision = scene.Open("", "Collision");
  WritePassable(collision, " collide");
  collision.Children(" ");
  SceneNode transform = scene.Open("  ", "Transform");
  transform.Field("   translation", position);
  transform.Children("   ");
  WriteSensor(scene, name, "0 0 0", size, trigger.Enabled);
  WriteSensorBox(scene, size);
}

void WriteTriggersAndLinks(SceneContext& context, const TriggerList& triggers) {
  for (const TriggerEntry& entry : triggers.Entries)
    WriteTrigger(context, entry.Box, entry.Name);
  LinkWriter(context, triggers).WriteLinks();
}

} // namespace quarvel
