#pragma once

#include "actors/scene_run.h"
#include "actors/trigger_list.h"
#include "scene/scene_context.h"
#include "t3d/sound_records.h"

#include <string>

namespace quarvel {

/// A Sound node that is to be written.
struct SoundSource {
  SoundBlock Block;     ///< `AmbientSound` names the sound
  std::string BaseName; ///< of a clip that is the actor's own; empty for one that sounds of the same file share
  std::string Name;     ///< what the Sound node is called without a base name
  bool Loop = true;
  bool StartedElsewhere = false; ///< a script or a trigger starts it
  bool InitiallyOn = false;
  bool WaitsForTrigger = false; ///< it has to be stopped at first, or its loop would start it at once
};

/// The sound file of a reference: Sound'Package.Group.Name' gives "Name.wav"; empty when it refers to none.
std::string SoundFileName(const std::string& reference);

/// Writes one Sound with its AudioClip, and brings the sound file beside the scene. Returns the clip's DEF name; empty,
/// and nothing written, when the block names no sound.
std::string WriteSound(SceneContext& context, const SoundSource& sound);

/// Writes a sound that plays on and on, at its place.
void WriteAmbientSound(SceneContext& context, const AmbientSoundRecord& sound);

/// Writes a timer, a script that picks one of the actor's sounds at random, and the sounds.
void WriteRandomSounds(SceneContext& context, const DynamicAmbientSoundRecord& record);

/// Writes a sound that the triggers of its Tag start when they are entered and stop when they are left.
void WriteTriggeredSound(SceneContext& context, TriggerList& triggers, const TriggeredAmbientSoundRecord& sound);

/// Opens the Transform that gives sounds their place.
SceneNode OpenSoundPlace(SceneContext& context, const Vector3& location);

/// Writes the sounds that play on and on, and those that play at random. Throws RunStopped.
void WriteAmbientSounds(SceneRun& run);

/// Writes the sounds that triggers start. Their links are noted, not yet written. Throws RunStopped.
void WriteTriggeredSounds(SceneRun& run);

} // namespace quarvel
