#pragma once

#include "t3d/class_defaults.h"
#include "t3d/text_reader.h"

#include <cstdint>
#include <string>

namespace quarvel {

/// The sound properties that any actor may have. AmbientSound actors have defaults of their own. No converter uses the
/// two of transient sounds.
struct SoundBlock {
  std::string AmbientSound;                        ///< a reference such as Sound'Package.Group.Name'; empty for none
  double SoundRadius = ClassDefaults::SoundRadius; ///< in steps of 25 Unreal units, less one
  std::int16_t SoundVolume = ClassDefaults::SoundVolume; ///< 0 to 255
  std::int16_t SoundPitch = ClassDefaults::SoundPitch;   ///< 64 is the normal pitch
  double TransientSoundVolume = 0;
  double TransientSoundRadius = 0;
};

/// Reads the keys that are there over what `sound` holds.
void ReadSoundBlock(const TextBlock& block, SoundBlock& sound);

} // namespace quarvel
