#include "actors/trigger_list.h"

#include "base/ascii_text.h"

#include <algorithm>

namespace quarvel {

namespace {

/// Far beyond any real level; keeps a hostile one, where each leads to all, from taking minutes.
constexpr std::size_t maxDispatchers = 256, maxSplitDispatchers = 1024;
constexpr std::size_t stationSources = 64;

/// What stands under the key; nothing for an empty one, or the editor's word for none.
template <typename Value>
const std::vector<Value>& LookUp(const std::map<std::string, std::vector<Value>>& map, std::string_view key) {
  static const std::vector<Value> nothing;
  const std::string lower = LowerCase(key);
  const auto at = map.find(lower);
  return lower.empty() || lower == "none" || at == map.end() ? nothing : at->second;
}

} // namespace

void TriggerList::AddDispatcher(const DispatcherRecord& record, Report& findings) {
  if (Dispatchers.size() == maxDispatchers) {
    findings.Count(FindingCode::TooManyDispatchers, maxDispatchers);
    return;
  }
  DispatcherEntry entry;
  entry.Name = record.Header.Name;
  entry.Tag = record.Header.Tag;
  entry.OutEvents = record.OutEvents;
  double sum = 0; // each delay counts from the entry before it
  for (std::size_t i = 0; i < entry.Delays.size(); ++i) {
    if (record.OutDelays[i] < 0) findings.Add(FindingCode::DelayBelowZero, entry.Name);
    sum += std::max(record.OutDelays[i], 0.0);
    entry.Delays[i] = sum;
  }
  Dispatchers.push_back(std::move(entry));
}

void TriggerList::Connect(Report& findings) {
  for (std::size_t number = 0; number < Entries.size(); ++number)
    for (const std::string& event : Entries[number].Events)
      triggersByEvent_[LowerCase(event)].push_back(number);
  IndexDispatchers();
  std::vector<int> states(Dispatchers.size(), 0);
  bool circles = false;
  for (std::size_t number = 0; number < Dispatchers.size(); ++number)
    if (!SensorsOf(Dispatchers[number].Tag).empty()) circles = FollowFrom(number, states, findings) || circles;
  if (circles) SplitByTrigger(findings);
  FindStations();
}

void TriggerList::IndexDispatchers() {
  outputsByEvent_.clear();
  dispatchersByTag_.clear();
  for (std::size_t number = 0; number < Dispatchers.size(); ++number) {
    dispatchersByTag_[LowerCase(Dispatchers[number].Tag)].push_back(number);
    for (std::size_t i = 0; i < Dispatchers[number].OutEvents.size(); ++i)
      outputsByEvent_[LowerCase(Dispatchers[number].OutEvents[i])].push_back({number, i});
  }
}

/// Walks depth first along the events that the dispatcher sends on. One that comes back to a dispatcher on the way
/// there closes a circle and is not followed. Returns whether there is one.
bool TriggerList::FollowFrom(std::size_t dispatcher, std::vector<int>& states, Report& findings) {
  enum State { Unseen, OnTheWay, Done };
  if (states[dispatcher] != Unseen) return false;
  states[dispatcher] = OnTheWay;
  Dispatchers[dispatcher].IsReached = true;
  bool circles = false;
  for (std::size_t i = 0; i < Dispatchers[dispatcher].OutEvents.size(); ++i)
    for (const std::size_t next : LookUp(dispatchersByTag_, Dispatchers[dispatcher].OutEvents[i])) {
      if (states[next] == OnTheWay) {
        findings.Add(FindingCode::DispatcherCircle, Dispatchers[dispatcher].Name);
        circles = true;
        continue;
      }
      Dispatchers[next].Feeders.push_back({dispatcher, i});
      circles = FollowFrom(next, states, findings) || circles;
    }
  states[dispatcher] = Done;
  return circles;
}

/// Where a circle has to be cut depends on where a trigger enters it, so that each dispatcher that triggers reach
/// without another gets the ones behind it for itself.
void TriggerList::SplitByTrigger(Report& findings) {
  std::vector<DispatcherEntry> split;
  for (const DispatcherEntry& first : Dispatchers) {
    if (SensorsOf(first.Tag).empty()) continue;
    TriggerList own; // what one trigger reaches
    own.Dispatchers = Dispatchers;
    for (DispatcherEntry& dispatcher : own.Dispatchers) {
      dispatcher.IsReached = dispatcher.HearsTriggers = false;
      dispatcher.Feeders.clear();
    }
    own.IndexDispatchers();
    const auto start = static_cast<std::size_t>(&first - Dispatchers.data());
    std::vector<int> states(Dispatchers.size(), 0);
    own.FollowFrom(start, states, findings);
    own.Dispatchers[start].HearsTriggers = true;
    std::vector<std::size_t> numbers(Dispatchers.size(), 0); // of the reached ones, in `split`
    std::size_t next = split.size();
    for (std::size_t i = 0; i < numbers.size(); ++i)
      if (own.Dispatchers[i].IsReached) numbers[i] = next++;
    if (next > maxSplitDispatchers) {
      findings.Add(FindingCode::TooManyCircles, first.Name);
      continue;
    }
    for (DispatcherEntry& dispatcher : own.Dispatchers) {
      if (!dispatcher.IsReached) continue;
      for (DispatcherOutput& feeder : dispatcher.Feeders)
        feeder.Dispatcher = numbers[feeder.Dispatcher];
      split.push_back(std::move(dispatcher));
    }
  }
  Dispatchers = std::move(split);
  IndexDispatchers();
}

void TriggerList::FindStations() {
  std::vector<bool> done(Dispatchers.size(), false);
  const auto visit = [&](const auto& self, std::size_t number) -> void {
    if (done[number]) return;
    done[number] = true;
    for (const DispatcherOutput& feeder : Dispatchers[number].Feeders)
      self(self, feeder.Dispatcher);
    const TriggerSources sources = SourcesOfDispatcher(number);
    std::size_t count = sources.Outputs.size();
    for (const std::string& event : sources.Events)
      count += SensorsOf(event).size();
    Dispatchers[number].IsStation = count > stationSources;
  };
  for (std::size_t number = 0; number < Dispatchers.size(); ++number)
    visit(visit, number);
}

std::vector<DispatcherOutput> TriggerList::OutputsFor(std::string_view tag) const {
  std::vector<DispatcherOutput> outputs;
  for (const DispatcherOutput& output : LookUp(outputsByEvent_, tag))
    if (Dispatchers[output.Dispatcher].IsReached) outputs.push_back(output);
  return outputs;
}

const std::vector<std::size_t>& TriggerList::SensorsOf(std::string_view event) const {
  return LookUp(triggersByEvent_, event);
}

bool TriggerList::IsReached(std::string_view tag) const { return !SensorsOf(tag).empty() || !OutputsFor(tag).empty(); }

TriggerSources TriggerList::SourcesOf(std::string_view tag) const {
  TriggerSources sources;
  if (!SensorsOf(tag).empty()) sources.Events.insert(LowerCase(tag));
  Collect(OutputsFor(tag), sources);
  return sources;
}

TriggerSources TriggerList::SourcesOfDispatcher(std::size_t number) const {
  const DispatcherEntry& dispatcher = Dispatchers[number];
  TriggerSources sources;
  if (dispatcher.HearsTriggers && !SensorsOf(dispatcher.Tag).empty()) sources.Events.insert(LowerCase(dispatcher.Tag));
  Collect(dispatcher.Feeders, sources);
  return sources;
}

/// Adds the outputs, but for one without a delay whatever comes to its dispatcher.
void TriggerList::Collect(std::vector<DispatcherOutput> outputs, TriggerSources& sources) const {
  std::set<std::size_t> passed;
  while (!outputs.empty()) {
    const DispatcherOutput output = outputs.back();
    outputs.pop_back();
    const DispatcherEntry& dispatcher = Dispatchers[output.Dispatcher];
    if (dispatcher.IsStation || dispatcher.Delays[output.Entry] > 0) {
      sources.Outputs.insert(output);
    } else if (passed.insert(output.Dispatcher).second) {
      outputs.insert(outputs.end(), dispatcher.Feeders.begin(), dispatcher.Feeders.end());
      if (dispatcher.HearsTriggers && !SensorsOf(dispatcher.Tag).empty())
        sources.Events.insert(LowerCase(dispatcher.Tag));
    }
  }
}

} // namespace quarvel
