#pragma once

#include "math/vector.h"
#include "scene/scene_context.h"

#include <string>
#include <vector>

namespace quarvel {

/// Which of a track's key lists.
enum class KeyMode { Position = 0, Rotation = 1, Third = 2 };

/// A keyframe track that moves one Transform. Positions in Unreal units, rotations as the editor turns brushes, times
/// in seconds.
struct MoverAnimation {
  int PositionKeyCount = 0;
  int RotationKeyCount = 0;
  int ThirdKeyCount = 0; ///< of a flight that is timed by its actions: their ends, and the start; else 0
  int StartKey = 0;      ///< where the cycle begins; the keys follow in a circle from here
  double MoveTime = 1;   ///< of one step from key to key, where no durations are given
  bool HasPositionKeyTimes = false;
  bool HasRotationKeyTimes = false;
  bool AnimatePosition = false;
  bool AnimateRotation = false;
  Vector3 BasePos;
  Rotator3 BaseRot;
  /// The intervals between the values as they are written, so with pauses and the way back.
  std::vector<double> PositionKeyDurations, RotationKeyDurations;
  std::vector<double> ThirdKeyDurations;
  std::vector<Vector3> PositionKeys;
  std::vector<Rotator3> RotationKeys;
  double ReturnTime = 0; ///< above zero: one more key, back at the start key
  bool Loop = false;     ///< the cycle ends at its first key and begins again; no pauses and no way back then
  bool PauseAtKeys = false;
  double CycleInterval = 0; ///< of the whole cycle; 0: as the keys have it
};

/// The number of values that are written.
int KeyCount(const MoverAnimation& track, KeyMode mode);

/// The duration of the whole cycle; `count` is that of KeyCount. Durations count when they are given and not all zero.
double TotalKeyTime(const MoverAnimation& track, int count, KeyMode mode);

/// When each of the `count` values is reached, as fractions from 0 to 1, each followed by a blank.
std::string KeyList(const MoverAnimation& track, int count, KeyMode mode);

/// The values themselves, separated by commas: positions in scene units, rotations as axis and angle.
std::string PositionValues(const MoverAnimation& track, const SceneSpace& space);
std::string RotationValues(const MoverAnimation& track, const SceneSpace& space);

/// Writes the track's interpolators and the timer that drives them, named after the Transform `name`, and the routes
/// between them. The timer is `name` + "TIMER".
void WriteInterpolators(SceneContext& context, const std::string& name, const MoverAnimation& track);

} // namespace quarvel
