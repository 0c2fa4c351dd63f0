#include "t3d/sound_block.h"

namespace quarvel {

void ReadSoundBlock(const TextBlock& block, SoundBlock& sound) {
  GetKeyValue(block, "AmbientSound=", sound.AmbientSound);
  GetKeyValue(block, "SoundRadius=", sound.SoundRadius);
  GetKeyValue(block, "SoundVolume=", sound.SoundVolume);
  GetKeyValue(block, "SoundPitch=", sound.SoundPitch);
  GetKeyValue(block, "TransientSoundVolume=", sound.TransientSoundVolume);
  GetKeyValue(block, "TransientSoundRadius=", sound.TransientSoundRadius);
}

} // namespace quarvel
