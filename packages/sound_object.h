#pragma once

#include "packages/package.h"

#include <string>

namespace quarvel {

/// True for the class whose objects are sounds.
bool IsSoundClass(std::string_view className);

/// A sound: a whole file of its kind.
struct SoundObject {
  std::string Kind; ///< lower case: "wav"
  Bytes File;       ///< stays valid as long as the package
};

/// Nothing when the sound is damaged.
std::optional<SoundObject> ReadSound(const Package& package, const PackageExport& object);

/// True when a file is a RIFF WAVE file.
bool IsWave(Bytes file);

/// How long a WAVE file plays, in seconds; 0 when it does not tell.
double WaveSeconds(Bytes file);

} // namespace quarvel
