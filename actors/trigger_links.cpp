#include "actors/trigger_links.h"

#include "actors/script_writer.h"
#include "base/ascii_text.h"
#include "math/number_text.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace quarvel {

namespace {

constexpr std::size_t directRoutes = 64; // of one event; above that a relay grows with its ends, not their product
constexpr double pulse = 0.1;            // seconds that a timer runs, which only has to start

/// What a sensor or a script sends on.
struct LinkEnd {
  std::string Node, Field;
};

/// A field of a dispatcher's script: the sensor's field that it passes on, and the entry of the dispatcher.
using ScriptOutput = std::pair<std::string, std::size_t>;

/// A script that passes on what it gets: the fields of sensors, under the names that they have there.
struct Relay {
  std::string Name;
  std::set<std::string> Fields;
};

const char* TypeOf(const std::string& field) { return field == "isActive" ? "SFBool" : "SFTime"; }
std::string InputName(const std::string& field) { return "set_" + field; }
std::string OutputName(const std::string& field) { return field + "_changed"; }
std::string OutputName(const std::string& field, std::size_t entry) {
  return OutputName(field + std::to_string(entry));
}

/// Turns the noted links into routes, with the scripts that stand on the way.
class LinkWriter {
 public:
  LinkWriter(SceneContext& context, const TriggerList& triggers) : context_(context), triggers_(triggers) {}

  void Write() {
    FindSources();
    NoteScripts();
    PlanRelays();
    for (const TriggerLink& link : triggers_.Links)
      Resolve(link);
    for (const auto& [number, field] : inputs_)
      Connect(Tuned(triggers_.SourcesOfDispatcher(number), field), field, {ScriptName(number), InputName(field)});
    for (const auto& [tag, relay] : targetRelays_)
      for (const std::string& field : relay.Fields)
        Connect(Tuned(sources_[tag], field), field, {relay.Name, InputName(field)});
    for (const auto& [event, relay] : eventRelays_)
      for (const std::string& field : relay.Fields)
        for (const std::size_t entry : triggers_.SensorsOf(event))
          routes_.push_back({triggers_.Entries[entry].Name, field, relay.Name, InputName(field)});
    WriteNodes();
    for (const Route& route : routes_)
      AddRoute(context_.Scene, route.FromNode, route.FromField, route.ToNode, route.ToField);
  }

 private:
  bool IsDelayed(const DispatcherOutput& output) const {
    return triggers_.Dispatchers[output.Dispatcher].Delays[output.Entry] > 0;
  }

  /// The sources that can send this field: whether somebody is there cannot wait.
  TriggerSources Tuned(TriggerSources sources, const std::string& field) const {
    if (field == "isActive") std::erase_if(sources.Outputs, [&](const auto& output) { return IsDelayed(output); });
    return sources;
  }

  void FindSources() {
    for (const TriggerLink& link : triggers_.Links) {
      const std::string tag = LowerCase(link.Tag);
      if (linkCounts_[tag]++ == 0) sources_[tag] = triggers_.SourcesOf(tag);
      const std::set<DispatcherOutput>& outputs = sources_[tag].Outputs;
      if (link.FromField == "isActive" &&
          std::any_of(outputs.begin(), outputs.end(), [&](const auto& output) { return IsDelayed(output); }))
        context_.Findings.Add(FindingCode::DelayedSwitch, link.ToNode);
    }
  }

  /// The dispatchers whose scripts send something to a link, and those that come before them.
  void NoteScripts() {
    std::set<std::pair<std::string, std::string>> seen;
    std::vector<std::pair<std::size_t, std::string>> open;
    const auto note = [&](const TriggerSources& sources, const std::string& field) {
      for (const DispatcherOutput& output : Tuned(sources, field).Outputs) {
        outputs_[output.Dispatcher].emplace(field, output.Entry);
        open.emplace_back(output.Dispatcher, field);
      }
    };
    for (const TriggerLink& link : triggers_.Links)
      if (seen.emplace(LowerCase(link.Tag), link.FromField).second) note(sources_[LowerCase(link.Tag)], link.FromField);
    while (!open.empty()) {
      const auto [number, field] = open.back();
      open.pop_back();
      if (inputs_.emplace(number, field).second) note(triggers_.SourcesOfDispatcher(number), field);
    }
  }

  std::size_t CountOf(const TriggerSources& sources) const {
    std::size_t count = sources.Outputs.size();
    for (const std::string& event : sources.Events)
      count += triggers_.SensorsOf(event).size();
    return count;
  }

  void PlanRelays() {
    std::map<std::string, std::size_t> uses; // of each event's sensors
    for (const auto& [tag, links] : linkCounts_) {
      const TriggerSources& sources = sources_[tag];
      // Where one event alone comes here its own relay will do.
      const bool relayed =
          sources.Events.size() + sources.Outputs.size() > 1 && CountOf(sources) * links > directRoutes;
      if (relayed) NameRelay(targetRelays_[tag], tag);
      for (const std::string& event : sources.Events)
        uses[event] += relayed ? 1 : links;
    }
    for (const auto& [number, field] : inputs_)
      for (const std::string& event : triggers_.SourcesOfDispatcher(number).Events)
        ++uses[event];
    for (const auto& [event, count] : uses)
      if (count * triggers_.SensorsOf(event).size() > directRoutes) NameRelay(eventRelays_[event], event);
  }

  void NameRelay(Relay& relay, const std::string& event) {
    relay.Name = context_.Scene.TakeName(MakeDefName("RELAY" + event));
    context_.Findings.Add(FindingCode::EventRelayed, event);
  }

  void Resolve(const TriggerLink& link) {
    const std::string tag = LowerCase(link.Tag);
    const auto relay = targetRelays_.find(tag);
    if (relay == targetRelays_.end())
      return Connect(Tuned(sources_[tag], link.FromField), link.FromField, {link.ToNode, link.ToField});
    relay->second.Fields.insert(link.FromField);
    routes_.push_back({relay->second.Name, OutputName(link.FromField), link.ToNode, link.ToField});
  }

  /// A time that a delayed output sends would replace one that still waits there: each has to come when it is due.
  void Connect(const TriggerSources& sources, const std::string& field, const LinkEnd& to) {
    const bool alone = CountOf(sources) < 2;
    const auto route = [&](const LinkEnd& from) { routes_.push_back({from.Node, from.Field, to.Node, to.Field}); };
    for (const DispatcherOutput& output : sources.Outputs) {
      const ScriptOutput scriptOutput{field, output.Entry};
      if (!alone && IsDelayed(output))
        route({TimerName(output.Dispatcher, scriptOutput), "cycleTime"});
      else
        route({ScriptName(output.Dispatcher), OutputName(field, output.Entry)});
    }
    std::set<std::size_t> sensors;
    for (const std::string& event : sources.Events) {
      const auto relay = eventRelays_.find(event);
      if (relay == eventRelays_.end()) {
        sensors.insert(triggers_.SensorsOf(event).begin(), triggers_.SensorsOf(event).end());
        continue;
      }
      relay->second.Fields.insert(field);
      route({relay->second.Name, OutputName(field)});
    }
    for (const std::size_t entry : sensors)
      route({triggers_.Entries[entry].Name, field});
  }

  const std::string& ScriptName(std::size_t number) {
    std::string& name = scriptNames_[number];
    if (name.empty()) name = context_.Scene.TakeName(MakeDefName("SCRIPT" + triggers_.Dispatchers[number].Name));
    return name;
  }

  const std::string& TimerName(std::size_t number, const ScriptOutput& output) {
    std::string& name = timers_[{number, output}];
    if (!name.empty()) return name;
    const std::string& script = ScriptName(number);
    name = context_.Scene.TakeName(script + "TIMER" + std::to_string(output.second));
    routes_.push_back({script, OutputName(output.first, output.second), name, "startTime"});
    return name;
  }

  void WriteNodes() {
    for (const auto& [number, outputs] : outputs_)
      WriteScript(number, outputs);
    for (const auto& [output, name] : timers_)
      WriteTimeSensor(context_.Scene, name, pulse, Cycles::One);
    for (const auto* relays : {&eventRelays_, &targetRelays_})
      for (const auto& [event, relay] : *relays)
        WriteRelay(relay);
  }

  void WriteScript(std::size_t number, const std::set<ScriptOutput>& outputs) {
    SceneNode script = context_.Scene.Open("", "Script", ScriptName(number));
    std::map<std::string, std::vector<std::string>> functions; // the lines of each input's function
    for (const auto& [field, entry] : outputs)
      functions[field].push_back("     " + OutputName(field, entry) + " = value" + DelayText(number, entry) + ";");
    for (const auto& function : functions)
      DeclareInput(script, function.first);
    for (const auto& [field, entry] : outputs)
      WriteScriptField(script, "eventOut " + std::string(TypeOf(field)) + "  " + OutputName(field, entry));
    WriteFunctions(script, functions);
  }

  /// A millionth of a second is no delay, but keeps the noise of sums out of the text.
  std::string DelayText(std::size_t number, std::size_t entry) const {
    const double delay = triggers_.Dispatchers[number].Delays[entry];
    return delay > 0 ? " + " + FormatGeneral(std::round(delay * 1e6) / 1e6) : std::string();
  }

  void WriteRelay(const Relay& relay) {
    SceneNode script = context_.Scene.Open("", "Script", relay.Name);
    std::map<std::string, std::vector<std::string>> functions;
    for (const std::string& field : relay.Fields)
      functions[field].push_back("     " + OutputName(field) + " = value;");
    for (const std::string& field : relay.Fields)
      DeclareInput(script, field);
    for (const std::string& field : relay.Fields)
      WriteScriptField(script, "eventOut " + std::string(TypeOf(field)) + "  " + OutputName(field));
    WriteFunctions(script, functions);
  }

  static void DeclareInput(const SceneNode& script, const std::string& field) {
    WriteScriptField(script, "eventIn  " + std::string(TypeOf(field)) + "  " + InputName(field));
  }

  static void WriteFunctions(SceneNode& script, const std::map<std::string, std::vector<std::string>>& functions) {
    std::vector<std::string> code;
    for (const auto& [field, lines] : functions) {
      code.push_back("  function " + InputName(field) + "(value,time) {");
      code.insert(code.end(), lines.begin(), lines.end());
      code.emplace_back("  }");
    }
    script.Code(code, "", "");
  }

  SceneContext& context_;
  const TriggerList& triggers_;
  std::map<std::string, TriggerSources> sources_; ///< by the links' Tag in lower case
  std::map<std::string, std::size_t> linkCounts_;
  std::map<std::size_t, std::set<ScriptOutput>> outputs_; ///< by the dispatcher's number
  std::set<std::pair<std::size_t, std::string>> inputs_;  ///< dispatcher, field
  std::map<std::size_t, std::string> scriptNames_;
  std::map<std::pair<std::size_t, ScriptOutput>, std::string> timers_;
  std::map<std::string, Relay> eventRelays_, targetRelays_; ///< by event or Tag in lower case
  std::vector<Route> routes_;
};

} // namespace

void WriteLinks(SceneContext& context, const TriggerList& triggers) { LinkWriter(context, triggers).Write(); }

} // namespace quarvel
