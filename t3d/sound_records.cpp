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

bool ReadAmbientSound(const LevelText& level, TextCursor& cursor, std::string_view searchText,
                      AmbientSoundRecord& sound) {
  return ReadRecord(level, cursor, searchText, sound, ReadAmbientKeys);
}

bool ReadDynamicAmbientSound(const LevelText& level, TextCursor& cursor, std::string_view searchText,
                             DynamicAmbientSoundRecord& sound) {
  return ReadRecord(level, cursor, searchText, sound, ReadDynamicKeys);
}

bool ReadTriggeredAmbientSound(const LevelText& level, TextCursor& cursor, std::string_view searchText,
                               TriggeredAmbientSoundRecord& sound) {
  return ReadRecord(level, cursor, searchText, sound, ReadTriggeredKeys);
}

} // namespace quarvel
