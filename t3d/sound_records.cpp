#include "t3d/sound_records.h"

#include "t3d/record_reading.h"

namespace quarvel {

namespace {

void ReadAmbientKeys(const TextBlock& block, AmbientSoundRecord& sound) {
  sound.Location = GetVectorOr0(block, " Location=");
  ReadSoundBlock(block, sound.Sound);
}

void ReadDynamicKeys(const TextBlock& block, DynamicAmbientSoundRecord& sound) {
  sound.Location = GetVectorOr0(block, " Location=");
  ReadSoundBlock(block, sound.Sound);
  GetKeyValue(block, "bInitiallyOn=", sound.bInitiallyOn);
  GetKeyValue(block, "playProbability=", sound.playProbability);
  GetKeyValue(block, "minReCheckTime=", sound.minReCheckTime);
  GetKeyValue(block, "maxReCheckTime=", sound.maxReCheckTime);
  GetKeyValue(block, "bDontRepeat=", sound.bDontRepeat);
  for (std::size_t i = 0; i < sound.Sounds.size(); ++i)
    GetKeyValue(block, IndexedKey("Sounds", static_cast<int>(i)), sound.Sounds[i]);
}

void ReadTriggeredKeys(const TextBlock& block, TriggeredAmbientSoundRecord& sound) {
  sound.Location = GetVectorOr0(block, " Location=");
  ReadSoundBlock(block, sound.Sound);
  GetKeyValue(block, "AmbSound=", sound.AmbSound);
  GetKeyValue(block, "bInitiallyOn=", sound.bInitiallyOn);
  GetKeyValue(block, "bPlayOnceOnly=", sound.bPlayOnceOnly);
  GetKeyValue(block, "rePlayTime=", sound.rePlayTime);
  GetKeyValue(block, "rePlayVariance=", sound.rePlayVariance);
}

} // namespace

AmbientSoundRecord ReadAmbientSound(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<AmbientSoundRecord>(level, actor, ReadAmbientKeys);
}

DynamicAmbientSoundRecord ReadDynamicAmbientSound(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<DynamicAmbientSoundRecord>(level, actor, ReadDynamicKeys);
}

TriggeredAmbientSoundRecord ReadTriggeredAmbientSound(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<TriggeredAmbientSoundRecord>(level, actor, ReadTriggeredKeys);
}

} // namespace quarvel
