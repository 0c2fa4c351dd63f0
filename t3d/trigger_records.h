#pragma once

#include "t3d/class_defaults.h"
#include "t3d/level.h"
#include "t3d/sound_block.h"

#include <array>
#include <cstdint>
#include <string>

namespace quarvel {

/// A place that sets something off. Lengths in Unreal units, times in seconds. No converter uses Message, InitialState,
/// bTriggerOnceOnly, RepeatTriggerTime, ReTriggerDelay, GotoKeyframe and Sound.
struct TriggerRecord {
  ActorHeader Header;
  std::string Message;
  std::string InitialState;
  bool bTriggerOnceOnly = false;
  double RepeatTriggerTime = 0;
  double ReTriggerDelay = 0;
  Vector3 Location;
  bool bInitiallyActive = ClassDefaults::TriggerActive;
  double CollisionRadius = ClassDefaults::TriggerRadius;
  double CollisionHeight = ClassDefaults::TriggerHeight;
  std::int16_t GotoKeyframe = 0; ///< of an ElevatorTrigger
  SoundBlock Sound;
};

/// A trigger that sets off one of several events at random. No converter uses triggerProbability, minReCheckTime and
/// maxReCheckTime: each of its events is set off.
struct StochasticTriggerRecord {
  ActorHeader Header;
  double triggerProbability = 0;
  double minReCheckTime = 0, maxReCheckTime = 0;
  std::array<std::string, 7> Events;
  Vector3 Location;
  bool bInitiallyActive = ClassDefaults::TriggerActive;
  double CollisionRadius = ClassDefaults::TriggerRadius;
  double CollisionHeight = ClassDefaults::TriggerHeight;
};

/// Passes an event on as several others, each `OutDelays` seconds after the one before it.
struct DispatcherRecord {
  ActorHeader Header;
  std::array<std::string, 8> OutEvents;
  std::array<double, 8> OutDelays{};
};

/// Each reads the record of one of the level's actors.
TriggerRecord ReadTrigger(const T3DLevel& level, const ActorBlock& actor);
StochasticTriggerRecord ReadStochasticTrigger(const T3DLevel& level, const ActorBlock& actor);
DispatcherRecord ReadDispatcher(const T3DLevel& level, const ActorBlock& actor);

} // namespace quarvel
