#include "t3d/trigger_records.h"

#include "t3d/record_reading.h"

namespace quarvel {

namespace {

template <typename Record>
void ReadSensorKeys(const TextBlock& block, Record& trigger) {
  trigger.Location = GetVectorOr0(block, " Location=");
  GetKeyValue(block, "bInitiallyActive=", trigger.bInitiallyActive);
  GetKeyValue(block, "CollisionRadius=", trigger.CollisionRadius);
  GetKeyValue(block, "CollisionHeight=", trigger.CollisionHeight);
}

void ReadTriggerKeys(const TextBlock& block, TriggerRecord& trigger) {
  GetKeyValue(block, "Message=", trigger.Message);
  GetKeyValue(block, "InitialState=", trigger.InitialState);
  GetKeyValue(block, "bTriggerOnceOnly=", trigger.bTriggerOnceOnly);
  trigger.RepeatTriggerTime = GetKeyOrZero(block, "RepeatTriggerTime=");
  trigger.ReTriggerDelay = GetKeyOrZero(block, "ReTriggerDelay=");
  ReadSensorKeys(block, trigger);
  // The editor writes a blank behind this one key.
  if (trigger.Header.Class == "ElevatorTrigger") GetKeyValue(block, "GotoKeyframe= ", trigger.GotoKeyframe);
  ReadSoundBlock(block, trigger.Sound);
}

void ReadStochasticKeys(const TextBlock& block, StochasticTriggerRecord& trigger) {
  GetKeyValue(block, "triggerProbability=", trigger.triggerProbability);
  GetKeyValue(block, "minReCheckTime=", trigger.minReCheckTime);
  GetKeyValue(block, "maxReCheckTime=", trigger.maxReCheckTime);
  for (std::size_t i = 0; i < trigger.Events.size(); ++i)
    GetKeyValue(block, IndexedKey("Events", static_cast<int>(i)), trigger.Events[i]);
  ReadSensorKeys(block, trigger);
}

void ReadDispatcherKeys(const TextBlock& block, DispatcherRecord& dispatcher) {
  for (std::size_t i = 0; i < dispatcher.OutEvents.size(); ++i) {
    GetKeyValue(block, IndexedKey("OutEvents", static_cast<int>(i)), dispatcher.OutEvents[i]);
    GetKeyValue(block, IndexedKey("OutDelays", static_cast<int>(i)), dispatcher.OutDelays[i]);
  }
}

} // namespace

TriggerRecord ReadTrigger(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<TriggerRecord>(level, actor, ReadTriggerKeys);
}

StochasticTriggerRecord ReadStochasticTrigger(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<StochasticTriggerRecord>(level, actor, ReadStochasticKeys);
}

DispatcherRecord ReadDispatcher(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<DispatcherRecord>(level, actor, ReadDispatcherKeys);
}

} // namespace quarvel
