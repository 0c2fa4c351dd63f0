#include "actors/triggers.h"

#include "actors/trigger_links.h"
#include "math/number_text.h"

#include <algorithm>

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
  WriteLinks(context, triggers);
}

void CollectTriggers(SceneRun& run) { run.Triggers = ReadTriggers(run.Context, run.Part, run.Level); }

void WriteTriggers(SceneRun& run) { WriteTriggersAndLinks(run.Context, run.Triggers); }

} // namespace quarvel
