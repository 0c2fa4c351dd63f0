#include "actors/mover_animation.h"

#include "math/number_text.h"
#include "math/rotation.h"

#include <algorithm>
#include <numeric>
#include <span>

namespace quarvel {

namespace {

// Viewers hold times as floats and refuse a cycle of no duration.
constexpr double shortestCycle = 0.001, longestCycle = 1e9;

int OwnKeyCount(const MoverAnimation& track, KeyMode mode) {
  switch (mode) {
  case KeyMode::Position:
    return track.PositionKeyCount;
  case KeyMode::Rotation:
    return track.RotationKeyCount;
  default:
    return track.ThirdKeyCount;
  }
}

/// The durations between `count` values; none when they are spaced evenly. A loop's last value is its first one again,
/// which takes no time of its own.
std::span<const double> GivenDurations(const MoverAnimation& track, int count, KeyMode mode) {
  const std::vector<double>& all = mode == KeyMode::Position   ? track.PositionKeyDurations
                                   : mode == KeyMode::Rotation ? track.RotationKeyDurations
                                                               : track.ThirdKeyDurations;
  const bool given = mode == KeyMode::Position   ? track.HasPositionKeyTimes
                     : mode == KeyMode::Rotation ? track.HasRotationKeyTimes
                                                 : !all.empty();
  const auto wanted = static_cast<std::size_t>(std::max(0, track.Loop ? count - 2 : count - 1));
  if (!given) return {};
  const std::span<const double> durations = std::span(all).first(std::min(wanted, all.size()));
  const bool any = std::any_of(durations.begin(), durations.end(), [](double duration) { return duration > 0; });
  return any ? durations : std::span<const double>();
}

/// The keys in the order in which they are written.
template <typename Key>
std::vector<Key> KeysInOrder(const MoverAnimation& track, const std::vector<Key>& keys, int count) {
  std::vector<Key> values;
  if (count <= 0) return values;
  const auto keyAt = [&](int i) {
    return keys.at(static_cast<std::size_t>((std::max(track.StartKey, 0) + i) % count));
  };
  const bool pauses = track.PauseAtKeys && !track.Loop;
  for (int i = 0; i < count; ++i)
    values.insert(values.end(), pauses ? 2 : 1, keyAt(i));
  if (track.Loop || track.ReturnTime > 0) values.push_back(keyAt(0));
  return values;
}

template <typename Value, typename Append>
std::string JoinValues(const std::vector<Value>& values, Append append) {
  std::string list;
  for (const Value& value : values) {
    if (!list.empty()) list += ',';
    append(list, value);
  }
  return list;
}

void WriteInterpolator(SceneWriter& scene, const char* type, const std::string& name, const std::string& keys,
                       const std::string& values) {
  SceneNode node = scene.Open("", type, name);
  node.List(" key", keys, ListLayout::OneLine);
  node.List(" keyValue", values, ListLayout::OneLinePadded);
}

void RouteThrough(SceneWriter& scene, const std::string& timer, const std::string& interpolator,
                  const std::string& name, const char* field) {
  AddRoute(scene, timer, "fraction_changed", interpolator, "set_fraction");
  AddRoute(scene, interpolator, "value_changed", name, field);
}

} // namespace

int KeyCount(const MoverAnimation& track, KeyMode mode) {
  const int count = OwnKeyCount(track, mode);
  if (track.Loop) return count + 1;
  return (track.PauseAtKeys ? 2 * count : count) + (track.ReturnTime > 0 ? 1 : 0);
}

double TotalKeyTime(const MoverAnimation& track, int count, KeyMode mode) {
  const std::span<const double> durations = GivenDurations(track, count, mode);
  if (durations.empty()) return (count + 1) * track.MoveTime;
  return std::accumulate(durations.begin(), durations.end(), 0.0);
}

std::string KeyList(const MoverAnimation& track, int count, KeyMode mode) {
  if (count <= 1) return "0 ";
  const std::span<const double> durations = GivenDurations(track, count, mode);
  const double total = std::accumulate(durations.begin(), durations.end(), 0.0);
  std::string list = "0 ";
  double time = 0;
  for (int i = 1; i < count; ++i) {
    const auto interval = static_cast<std::size_t>(i - 1);
    if (interval < durations.size()) time += durations[interval];
    const double fraction = durations.empty() ? static_cast<double>(i) / (count - 1) : time / total;
    AppendFlt(list, i == count - 1 ? 1 : std::min(fraction, 1.0));
    list += ' ';
  }
  return list;
}

std::string PositionValues(const MoverAnimation& track, const SceneSpace& space) {
  return JoinValues(
      KeysInOrder(track, track.PositionKeys, track.PositionKeyCount),
      [&](std::string& list, const Vector3& key) { AppendVec(list, space.Position(AddVector(key, track.BasePos))); });
}

std::string RotationValues(const MoverAnimation& track, const SceneSpace& space) {
  const Rotator3& base = track.BaseRot;
  return JoinValues(KeysInOrder(track, track.RotationKeys, track.RotationKeyCount),
                    [&](std::string& list, const Rotator3& key) {
                      const Rotator3 sum{key.Pitch + base.Pitch, key.Yaw + base.Yaw, key.Roll + base.Roll};
                      list += space.RotationText(BrushRotator(sum));
                    });
}

void WriteInterpolators(SceneContext& context, const std::string& name, const MoverAnimation& track) {
  SceneWriter& scene = context.Scene;
  const int positions = KeyCount(track, KeyMode::Position), rotations = KeyCount(track, KeyMode::Rotation);
  const std::string timer = name + "TIMER", position = name + "POSINT", rotation = name + "ROTINT";
  if (track.AnimatePosition)
    WriteInterpolator(scene, "PositionInterpolator", position, KeyList(track, positions, KeyMode::Position),
                      PositionValues(track, context.Space));
  if (track.AnimateRotation)
    WriteInterpolator(scene, "OrientationInterpolator", rotation, KeyList(track, rotations, KeyMode::Rotation),
                      RotationValues(track, context.Space));

  const KeyMode clock = track.ThirdKeyCount > 0 ? KeyMode::Third
                        : track.AnimatePosition ? KeyMode::Position
                                                : KeyMode::Rotation;
  const double interval =
      track.CycleInterval > 0 ? track.CycleInterval : TotalKeyTime(track, KeyCount(track, clock), clock);
  WriteTimeSensor(scene, timer, std::clamp(interval, shortestCycle, longestCycle),
                  track.Loop ? Cycles::Endless : Cycles::One);
  if (track.AnimatePosition) RouteThrough(scene, timer, position, name, "set_translation");
  if (track.AnimateRotation) RouteThrough(scene, timer, rotation, name, "set_rotation");
}

} // namespace quarvel
