#pragma once

#include "t3d/text_reader.h"

#include <cstdint>
#include <string>

namespace quarvel {

/// The sound properties that any actor may have. The defaults are the engine's; AmbientSound actors have others.
struct SoundBlock {
  std::string AmbientSound;       ///< a reference such as Sound'Package.Group.Name'; empty for none
  double SoundRadius = 32;        ///< in steps of 25 Unreal units, less one
  std::int16_t SoundVolume = 128; ///< 0 to 255
  std::int16_t SoundPitch = 64;   ///< 64 is the normal pitch
  double TransientSoundVolume = 0;
  double TransientSoundRadius = 0;
};

/// Reads the keys that are there over what `sound` holds.
void ReadSoundBlock(const TextBlock& block, SoundBlock& sound);

} // namespace quarvel
