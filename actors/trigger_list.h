#pragma once

#include "base/report.h"
#include "math/vector.h"
#include "t3d/trigger_records.h"

#include <array>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quarvel {

/// The room in which a viewer sets something off. Unreal units.
struct TriggerBox {
  Vector3 Location; ///< its centre, relative to the scene's origin
  double CollisionRadius = 0, CollisionHeight = 0;
  bool Enabled = true;
};

/// One trigger actor.
struct TriggerEntry {
  std::string Class;
  std::string Name;                ///< DEF of its sensor
  std::vector<std::string> Events; ///< the Tags that it sets off
  TriggerBox Box;
};

/// One entry of one dispatcher.
struct DispatcherOutput {
  std::size_t Dispatcher = 0, Entry = 0;
  auto operator<=>(const DispatcherOutput&) const = default;
};

/// One Dispatcher actor, or where dispatchers form a circle, what it is for one of the triggers that enter it.
struct DispatcherEntry {
  std::string Name; ///< of the actor
  std::string Tag;  ///< the event that it passes on
  std::array<std::string, 8> OutEvents;
  std::array<double, 8> Delays{};        ///< seconds from the event to each of them
  bool HearsTriggers = true;             ///< triggers of the Tag come here, not only other dispatchers
  bool IsReached = false;                ///< some trigger's event comes here
  bool IsStation = false;                ///< so much comes here that its script stands for all of it
  std::vector<DispatcherOutput> Feeders; ///< the outputs of other dispatchers that come here; never in a circle
};

/// Something that triggers are to start: kept until their sensors are written.
struct TriggerLink {
  std::string Tag;
  std::string FromField; ///< of the sensors: "enterTime", "exitTime" or "isActive"
  std::string ToNode, ToField;
};

/// What sets a Tag off: the sensors of events, and outputs of dispatchers, which come with a delay or from a station.
struct TriggerSources {
  std::set<std::string> Events; ///< in lower case
  std::set<DispatcherOutput> Outputs;
};

/// Every trigger of a scene, and what is to be linked to them.
class TriggerList {
 public:
  std::vector<TriggerEntry> Entries; ///< in file order
  std::vector<DispatcherEntry> Dispatchers;
  std::vector<TriggerLink> Links;

  void AddDispatcher(const DispatcherRecord& record, Report& findings);
  /// Connects the entries; to be called once, when all are there. Circles of dispatchers are cut and reported.
  void Connect(Report& findings);

  /// True when some trigger's event is this Tag, or reaches it through dispatchers. Case does not count; an empty Tag
  /// is reached by nothing.
  bool IsReached(std::string_view tag) const;
  /// Everything that sets off the Tag, or that comes to the dispatcher.
  TriggerSources SourcesOf(std::string_view tag) const;
  TriggerSources SourcesOfDispatcher(std::size_t number) const;
  /// The entries whose event this is, in file order.
  const std::vector<std::size_t>& SensorsOf(std::string_view event) const;

 private:
  std::vector<DispatcherOutput> OutputsFor(std::string_view tag) const;
  void IndexDispatchers();
  bool FollowFrom(std::size_t dispatcher, std::vector<int>& states, Report& findings);
  void SplitByTrigger(Report& findings);
  void FindStations();
  void Collect(std::vector<DispatcherOutput> outputs, TriggerSources& sources) const;

  // By event or Tag in lower case.
  std::map<std::string, std::vector<std::size_t>> triggersByEvent_;
  std::map<std::string, std::vector<DispatcherOutput>> outputsByEvent_;
  std::map<std::string, std::vector<std::size_t>> dispatchersByTag_;
};

} // namespace quarvel
