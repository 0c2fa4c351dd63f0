#include "actors/movers.h"

#include "actors/brushes.h"
#include "actors/triggers.h"
#include "base/ascii_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace quarvel {

namespace {

/// A timer needs a duration above zero.
constexpr double shortestMoveTime = 0.01;
constexpr double longestTime = 1e6; ///< seconds; what a damaged number may come to
constexpr double standstillInterval = 0.33333;
constexpr double third = 21845, twoThirds = 43690; ///< of a turn

bool IsState(const BrushRecord& mover, std::string_view state) { return SameText(mover.InitialState, state); }

const std::string& NameOf(const BrushRecord& mover) {
  return mover.Header.Name.empty() ? mover.Header.Class : mover.Header.Name;
}

double RateOf(const Rotator3& rate, double Rotator3::*& component) {
  component = &Rotator3::Yaw;
  for (double Rotator3::*other : {&Rotator3::Pitch, &Rotator3::Roll})
    if (std::fabs(rate.*other) > std::fabs(rate.*component)) component = other;
  return rate.*component;
}

MoverAnimation SpinOf(const BrushRecord& mover, Report& findings) {
  double Rotator3::*axis = nullptr;
  const double rate = RateOf(mover.RotationRate, axis);
  MoverAnimation track;
  track.Loop = true;
  track.AnimateRotation = true;
  track.RotationKeyCount = 3;
  track.RotationKeys.resize(3);
  track.BaseRot = mover.Rotation;
  track.CycleInterval = rate == 0 ? standstillInterval : 1024 / std::fabs(rate) * 60 / 3;
  if (rate == 0) {
    findings.Add(FindingCode::NoRotationRate, NameOf(mover));
    return track;
  }
  track.RotationKeys[1].*axis = rate > 0 ? third : twoThirds;
  track.RotationKeys[2].*axis = rate > 0 ? twoThirds : third;
  return track;
}

/// Wait, open from key to key, stay open, and close along the straight way back.
std::vector<double> OpeningDurations(const BrushRecord& mover, int keys, double moveTime) {
  const bool closesAtOnce =
      IsState(mover, "TriggerToggle") || IsState(mover, "TriggerPound") || IsState(mover, "TriggerControl");
  std::vector<double> durations{std::clamp(mover.DelayTime, 0.0, longestTime)};
  for (int key = 1; key < keys; ++key) {
    durations.push_back(moveTime);
    durations.push_back(0);
  }
  durations.back() = closesAtOnce ? 0 : std::clamp(mover.StayOpenTime, 0.0, longestTime);
  durations.push_back(moveTime * (keys - 1));
  return durations;
}

void AddOpening(MoverAnimation& track, const BrushRecord& mover, int keys) {
  track.PauseAtKeys = true;
  track.PositionKeyDurations = OpeningDurations(mover, keys, track.MoveTime);
  track.RotationKeyDurations = track.PositionKeyDurations;
  track.HasPositionKeyTimes = track.HasRotationKeyTimes = true;
  track.ReturnTime = track.PositionKeyDurations.back();
}

double UsableMoveTime(const BrushRecord& mover, Report& findings) {
  if (mover.MoveTime > 0) return std::min(mover.MoveTime, longestTime);
  findings.Add(FindingCode::NoMoveTime, NameOf(mover));
  return shortestMoveTime;
}

MoverAnimation KeyedMotionOf(const BrushRecord& mover, Report& findings) {
  const int keys = std::clamp<int>(mover.NumKeys, 1, MaxKeys);
  MoverAnimation track;
  track.PositionKeyCount = track.RotationKeyCount = keys;
  track.StartKey = std::max<int>(mover.KeyNum, 0) % keys;
  track.MoveTime = UsableMoveTime(mover, findings);
  track.AnimatePosition = mover.HasKeyPos;
  track.AnimateRotation = mover.HasKeyRot;
  track.BasePos = mover.BasePos;
  track.BaseRot = mover.BaseRot;
  track.PositionKeys.assign(mover.KeyPos.begin(), mover.KeyPos.begin() + keys);
  track.RotationKeys.assign(mover.KeyRot.begin(), mover.KeyRot.begin() + keys);
  track.Loop = mover.IsLoopMover;
  if (!track.Loop && keys > 1) AddOpening(track, mover, keys);
  return track;
}

bool SameAngle(double a, double b) { return std::fabs(std::remainder(a - b, 65536)) < 1; }

bool StartsAtRest(const BrushRecord& mover, const MoverAnimation& track) {
  const auto start = static_cast<std::size_t>(track.StartKey);
  const Vector3 away = SubtractVector(AddVector(track.PositionKeys[start], mover.BasePos), mover.Location);
  const Rotator3& turn = track.RotationKeys[start];
  const bool turned = SameAngle(turn.Pitch + mover.BaseRot.Pitch, mover.Rotation.Pitch) &&
                      SameAngle(turn.Yaw + mover.BaseRot.Yaw, mover.Rotation.Yaw) &&
                      SameAngle(turn.Roll + mover.BaseRot.Roll, mover.Rotation.Roll);
  return (!track.AnimatePosition || VectorLength(away) < 0.1) && (!track.AnimateRotation || turned);
}

bool TurnsTooFar(const MoverAnimation& track) {
  for (std::size_t key = 1; track.AnimateRotation && key < track.RotationKeys.size(); ++key) {
    const Rotator3 &a = track.RotationKeys[key - 1], &b = track.RotationKeys[key];
    if (std::max({std::fabs(a.Pitch - b.Pitch), std::fabs(a.Yaw - b.Yaw), std::fabs(a.Roll - b.Roll)}) > 32768)
      return true;
  }
  return false;
}

void ReportKeys(const BrushRecord& mover, const MoverAnimation& track, Report& findings) {
  const std::string& name = NameOf(mover);
  if (mover.NumKeys < 1) findings.Add(FindingCode::NoKeys, name, mover.NumKeys);
  if (mover.UnusedKeys > 0) findings.Add(FindingCode::UnusedKeys, name, mover.UnusedKeys);
  if (mover.KeyNum < 0 || mover.KeyNum >= track.PositionKeyCount)
    findings.Add(FindingCode::RestsAtUnknownKey, name, mover.KeyNum, track.StartKey);
  if (track.StartKey != 0 && track.AnimatePosition) findings.Add(FindingCode::RestsAtOtherKey, name, track.StartKey);
  if (!StartsAtRest(mover, track)) findings.Add(FindingCode::JumpsAtStart, name);
  if (TurnsTooFar(track)) findings.Add(FindingCode::TurnsTooFar, name);
}

void WriteTouchSensor(SceneContext& context, const BrushRecord& mover, const WrittenBrush& written,
                      const std::string& timer) {
  const std::string& name = mover.Header.Name.empty() ? written.Name : mover.Header.Name;
  const std::string sensor = context.Scene.TakeName(MakeDefName("Trigger" + name));
  WriteTrigger(context, TouchBox(mover, written.Bounds, context.Settings.TextMoverTriggerMargin, context.Space),
               sensor);
  AddRoute(context.Scene, sensor, "enterTime", timer, "startTime");
}

/// Whether something starts the mover, in the end.
bool WriteStart(SceneContext& context, TriggerList& triggers, const BrushRecord& mover, const WrittenBrush& written) {
  const std::string timer = written.Name + "TIMER";
  const bool bumped = IsState(mover, "BumpOpenTimed");
  if (!bumped && NoteLink(triggers, mover.Header.Tag, "enterTime", timer, "startTime")) return true;
  if (!bumped && !IsState(mover, "StandOpenTimed") && !IsState(mover, "BumpButton")) return false;
  WriteTouchSensor(context, mover, written, timer);
  return true;
}

/// One class of movers, and the item texts that its sub-pass shows.
struct MoverClass {
  std::string_view Name;
  const char* Getting; ///< before the first
  const char* On;
  const char* Then;           ///< behind each, before the next
  bool NeedsPolygons = false; ///< nothing is known of such a class, but that one with polygons is a brush that moves
};

constexpr std::array<MoverClass, 4> knownClasses{{
    {"Mover", "getting mover", "on mover ", "getting mover"},
    {"LoopMover", "getting mover", "on loopingmover ", "getting looper"},
    {"RotatingMover", "getting looper", "on rotatingmover ", "getting rotator"},
    {"AttachMover", "getting rotator", "on attachmover ", "getting attacher"},
}};

bool IsKnown(std::string_view className) {
  return std::any_of(knownClasses.begin(), knownClasses.end(),
                     [&](const MoverClass& known) { return known.Name == className; });
}

void ConvertMover(SceneRun& run, const BrushRecord& mover, bool needsPolygons) {
  Report& findings = run.Context.Findings;
  if (mover.TooManyKeys) return findings.Add(FindingCode::TooManyKeys, mover.Header.Name, mover.NumKeysText, MaxKeys);
  if (needsPolygons && mover.Polygons.empty() && !HasMeshForPolygons(mover, run.Context.Settings))
    return findings.Count(FindingCode::MoversWithoutPolygons, mover.Header.Class);
  const WrittenBrush written = WriteNextBrush(run, mover);
  WriteMover(run.Context, run.Triggers, mover, written);
  FlushBlock(run);
}

void WriteMoversOf(SceneRun& run, const MoverClass& kind) {
  run.Context.User.ShowItem(kind.Getting);
  for (const ActorBlock* actor : run.Level.ActorsOf(kind.Name)) {
    const auto mover = ShownBrush(run, *actor);
    if (!mover) continue;
    WaitWhilePaused(run);
    run.Context.User.ShowItem(kind.On, run.GeometryCount);
    ConvertMover(run, *mover, kind.NeedsPolygons);
    StepOn(run);
    run.Context.User.ShowItem(kind.Then);
  }
}

} // namespace

MoverAnimation AnimationOf(const BrushRecord& mover, Report& findings) {
  if (SameText(mover.Physics, "PHYS_Rotating")) return SpinOf(mover, findings);
  MoverAnimation track = KeyedMotionOf(mover, findings);
  ReportKeys(mover, track, findings);
  return track;
}

TriggerBox TouchBox(const BrushRecord& mover, const Bounds3& bounds, double margin, const SceneSpace& space) {
  const double added = 2 * margin;
  TriggerBox box{mover.Location, added, added};
  if (IsEmpty(bounds)) return box;
  box.Location = space.Location(BoundsCenter(bounds));
  const Vector3 extent = space.Location(SubtractVector(bounds.Max, bounds.Min));
  box.CollisionRadius = std::max(extent.X + added, (extent.Y + added) / 2);
  box.CollisionHeight = extent.Z + added;
  return box;
}

void WriteMover(SceneContext& context, TriggerList& triggers, const BrushRecord& mover, const WrittenBrush& written) {
  const MoverAnimation track = AnimationOf(mover, context.Findings);
  if (!mover.AttachTag.empty()) context.Findings.Add(FindingCode::AttachedActorsStay, NameOf(mover), mover.AttachTag);
  WriteInterpolators(context, written.Name, track);
  const bool starts = WriteStart(context, triggers, mover, written) || track.Loop;
  if (!track.AnimatePosition && !track.AnimateRotation)
    context.Findings.Add(FindingCode::NeverMoves, NameOf(mover));
  else if (!starts)
    context.Findings.Add(FindingCode::NeverTriggered, NameOf(mover));
}

void WriteMovers(SceneRun& run) {
  for (const MoverClass& known : knownClasses)
    WriteMoversOf(run, known);
  for (const std::string_view className : run.Level.ClassesOf(ActorFamily::Mover))
    if (!IsKnown(className)) WriteMoversOf(run, {className, "getting mover", "on mover ", "getting mover", true});
}

} // namespace quarvel
