#pragma once

#include "t3d/class_defaults.h"
#include "t3d/level.h"
#include "t3d/sound_block.h"

#include <array>
#include <string>

namespace quarvel {

/// A sound that plays on and on. Positions in Unreal units, here and below.
struct AmbientSoundRecord {
  ActorHeader Header;
  Vector3 Location;
  SoundBlock Sound{.AmbientSound = {},
                   .SoundRadius = ClassDefaults::AmbientSoundRadius,
                   .SoundVolume = ClassDefaults::AmbientSoundVolume,
                   .SoundPitch = ClassDefaults::AmbientSoundPitch,
                   .TransientSoundVolume = 0,
                   .TransientSoundRadius = 0};
};

/// Sounds of which one is picked at random every now and then. Times in seconds.
struct DynamicAmbientSoundRecord {
  ActorHeader Header;
  Vector3 Location;
  SoundBlock Sound;
  bool bInitiallyOn = ClassDefaults::RandomSoundOn;
  double playProbability = ClassDefaults::PlayProbability; ///< 0 to 1, at each check
  double minReCheckTime = ClassDefaults::MinReCheckTime;
  double maxReCheckTime = ClassDefaults::MaxReCheckTime;
  bool bDontRepeat = false;
  std::array<std::string, 17> Sounds; ///< references; empty where there is none
};

/// A sound that a trigger starts. Times in seconds. No converter uses rePlayTime and rePlayVariance.
struct TriggeredAmbientSoundRecord {
  ActorHeader Header;
  Vector3 Location;
  SoundBlock Sound;
  std::string AmbSound; ///< the sound's reference
  bool bInitiallyOn = false;
  bool bPlayOnceOnly = false;
  double rePlayTime = 0, rePlayVariance = 0;
};

/// Each reads the record of one of the level's actors.
AmbientSoundRecord ReadAmbientSound(const T3DLevel& level, const ActorBlock& actor);
DynamicAmbientSoundRecord ReadDynamicAmbientSound(const T3DLevel& level, const ActorBlock& actor);
TriggeredAmbientSoundRecord ReadTriggeredAmbientSound(const T3DLevel& level, const ActorBlock& actor);

} // namespace quarvel
