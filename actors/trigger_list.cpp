#include "actors/trigger_list.h"

#include "base/ascii_text.h"

#include <algorithm>

namespace quarvel {

namespace {

/// Far beyond any real level; keeps a hostile one, where each leads to all, from taking minutes.
constexpr std::size_t maxDispatchers = 256;

/// What stands under the key, nothing for an empty one.
template <typename Value>
const std::vector<Value>& LookUp(const std::map<std::string, std::vector<Value>>& map, std::string_view key) {
  static const std::vector<Value> nothing;
  const auto at = map.find(LowerCase(key));
  return key.empty() || at == map.end() ? nothing : at->second;
}

} // namespace

void TriggerList::AddDispatcher(const DispatcherRecord& record, Report& findings) {
  if (Dispatchers.size() == maxDispatchers) {
    findings.Count(FindingCode::TooManyDispatchers, maxDispatchers);
    return;
  }
  DispatcherEntry entry{record.Header.Name, record.Header.Tag, record.OutEvents, {}, false, {}};
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
  for (std::size_t number = 0; number < Dispatchers.size(); ++number) {
    dispatchersByTag_[LowerCase(Dispatchers[number].Tag)].push_back(number);
    for (std::size_t i = 0; i < Dispatchers[number].OutEvents.size(); ++i)
      outputsByEvent_[LowerCase(Dispatchers[number].OutEvents[i])].push_back({number, i});
  }
  std::vector<int> states(Dispatchers.size(), 0);
  for (std::size_t number = 0; number < Dispatchers.size(); ++number)
    if (!LookUp(triggersByEvent_, Dispatchers[number].Tag).empty()) FollowFrom(number, states, findings);
}

/// Walks depth first along the events that the dispatcher sends on. One that comes back to a dispatcher on the way
/// there closes a circle and is not followed.
void TriggerList::FollowFrom(std::size_t dispatcher, std::vector<int>& states, Report& findings) {
  enum State { Unseen, OnTheWay, Done };
  if (states[dispatcher] != Unseen) return;
  states[dispatcher] = OnTheWay;
  Dispatchers[dispatcher].IsReached = true;
  for (std::size_t i = 0; i < Dispatchers[dispatcher].OutEvents.size(); ++i)
    for (const std::size_t next : LookUp(dispatchersByTag_, Dispatchers[dispatcher].OutEvents[i])) {
      if (states[next] == OnTheWay) {
        findings.Add(FindingCode::DispatcherCircle, Dispatchers[dispatcher].Name);
        continue;
      }
      Dispatchers[next].Feeders.push_back({dispatcher, i});
      FollowFrom(next, states, findings);
    }
  states[dispatcher] = Done;
}

std::vector<DispatcherOutput> TriggerList::OutputsFor(std::string_view tag) const {
  std::vector<DispatcherOutput> outputs;
  for (const DispatcherOutput& output : LookUp(outputsByEvent_, tag))
    if (Dispatchers[output.Dispatcher].IsReached) outputs.push_back(output);
  return outputs;
}

bool TriggerList::IsReached(std::string_view tag) const {
  return !LookUp(triggersByEvent_, tag).empty() || !OutputsFor(tag).empty();
}

std::vector<TriggerSource> TriggerList::SourcesOf(std::string_view tag) const {
  return Collect(OutputsFor(tag), {std::string(tag)});
}

std::vector<TriggerSource> TriggerList::SourcesOfDispatcher(std::size_t number) const {
  return Collect(Dispatchers[number].Feeders, {Dispatchers[number].Tag});
}

/// The sensors whose events are the Tags, and what is behind the outputs: one without a delay leads on to whatever
/// comes to its dispatcher.
std::vector<TriggerSource> TriggerList::Collect(std::vector<DispatcherOutput> outputs,
                                                std::vector<std::string> tags) const {
  std::set<TriggerSource> sources;
  std::set<std::size_t> passed;
  while (!outputs.empty()) {
    const DispatcherOutput output = outputs.back();
    outputs.pop_back();
    const DispatcherEntry& dispatcher = Dispatchers[output.Dispatcher];
    if (dispatcher.Delays[output.Entry] > 0) {
      sources.insert({false, 0, output});
    } else if (passed.insert(output.Dispatcher).second) {
      outputs.insert(outputs.end(), dispatcher.Feeders.begin(), dispatcher.Feeders.end());
      tags.push_back(dispatcher.Tag);
    }
  }
  for (const std::string& tag : tags)
    for (const std::size_t entry : LookUp(triggersByEvent_, tag))
      sources.insert({true, entry, {}});
  return {sources.begin(), sources.end()};
}

} // namespace quarvel
