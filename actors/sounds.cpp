#include "actors/sounds.h"

#include "actors/triggers.h"
#include "base/ascii_text.h"
#include "base/reference.h"
#include "math/number_text.h"

#include <algorithm>

namespace quarvel {

namespace {

/// What the fields of the two nodes are made from, held within what they may be (VRML97, clauses 6.2 and 6.42).
struct SoundValues {
  std::string Intensity, Pitch;
  double Radius = 0;
};

SoundValues ValuesOf(SceneContext& context, const SoundBlock& block, const std::string& actor) {
  if (block.SoundVolume < 0 || block.SoundVolume > 255 || block.SoundPitch < 1 || block.SoundRadius < -1)
    context.Findings.Add(FindingCode::SoundOutOfRange, actor);
  SoundValues values;
  values.Intensity = FormatFlt(std::clamp<int>(block.SoundVolume, 0, 255) / 255.0);
  values.Pitch = FormatFlt(std::max<int>(block.SoundPitch, 1) / 64.0);
  values.Radius =
      (std::max(block.SoundRadius, -1.0) + 1) * 25 * context.Space.Scale() * context.Settings.TextSoundRadiusScale;
  return values;
}

/// The distances behind the sound are negative unless the scene is to conform.
void WriteDistances(SceneNode& sound, double radius) {
  SceneWriter& scene = sound.Writer();
  const double back = scene.Conforming() ? radius : -radius;
  if (!scene.Conforming()) scene.NoteQuirk("the negative distances of sounds");
  sound.Field("  minBack", FormatFlt(back / 4));
  sound.Field("  minFront", FormatFlt(radius / 4));
  sound.Field("  maxBack", FormatFlt(back));
  sound.Field("  maxFront", FormatFlt(radius));
}

void WriteStartTime(SceneNode& clip, const SoundSource& sound) {
  const bool startedTwice = sound.StartedElsewhere && sound.InitiallyOn;
  if (startedTwice || sound.Loop) clip.Field("   startTime", "1");
  if (sound.WaitsForTrigger) clip.Field("   stopTime", "2");
}

void WriteClip(SceneWriter& scene, const SoundSource& sound, const std::string& name, const std::string& pitch,
               const std::string& url) {
  SceneNode clip = scene.Open("  source ", "AudioClip", name, {.BeforeBrace = 2});
  clip.Flag("   loop", sound.Loop);
  clip.Field("   pitch", pitch);
  WriteStartTime(clip, sound);
  clip.Strings("   url", url, Brackets::Tight);
}

/// Writes the clip, or the use of the one of the same file. Returns its name.
std::string WriteSource(SceneContext& context, const SoundSource& sound, const std::string& fileName,
                        const std::string& pitch) {
  const std::string& url = context.Resources.FindSound(fileName, sound.Block.AmbientSound).Url;
  if (!sound.BaseName.empty()) {
    const std::string name = context.Scene.TakeName(MakeDefName(sound.BaseName));
    WriteClip(context.Scene, sound, name, pitch, url);
    return name;
  }
  WrittenClip& clip = context.Clips[LowerCase(fileName)];
  if (!clip.Name.empty()) {
    context.Scene.Use("  source ", "AudioClip", clip.Name);
    if (clip.Pitch != pitch) context.Findings.Add(FindingCode::SharedPitch, sound.Name);
    return clip.Name;
  }
  clip = {context.Scene.TakeName(MakeDefName("AC_" + fileName)), pitch};
  WriteClip(context.Scene, sound, clip.Name, pitch, url);
  return clip.Name;
}

} // namespace

std::string SoundFileName(const std::string& reference) {
  const std::string name = ParseReference(reference).Name;
  return name.empty() || SameText(name, "None") ? std::string() : name + ".wav";
}

std::string WriteSound(SceneContext& context, const SoundSource& sound) {
  const std::string file = SoundFileName(sound.Block.AmbientSound);
  if (file.empty()) return {};
  SceneWriter& scene = context.Scene;
  const std::string& name = sound.BaseName.empty() ? sound.Name : sound.BaseName;
  const SoundValues values = ValuesOf(context, sound.Block, sound.Name);
  SceneNode node = scene.Open("", "Sound", scene.TakeName(MakeDefName("S_" + name)), {.Closing = 1});
  node.AttributeOrder({"intensity", "maxFront", "maxBack", "minFront", "minBack"});
  node.Field("  intensity", values.Intensity);
  WriteDistances(node, values.Radius);
  return WriteSource(context, sound, file, values.Pitch);
}

SceneNode OpenSoundPlace(SceneContext& context, const Vector3& location) {
  SceneNode transform = context.Scene.Open("", "Transform");
  transform.Field(" translation", context.Space.PositionText(location));
  transform.Children(" ");
  return transform;
}

void WriteAmbientSound(SceneContext& context, const AmbientSoundRecord& sound) {
  if (SoundFileName(sound.Sound.AmbientSound).empty())
    return context.Findings.Count(FindingCode::AmbientSoundsWithoutSound);
  const SceneNode place = OpenSoundPlace(context, sound.Location);
  SoundSource source;
  source.Block = sound.Sound;
  source.Name = sound.Header.Name;
  WriteSound(context, source);
}

void WriteTriggeredSound(SceneContext& context, TriggerList& triggers, const TriggeredAmbientSoundRecord& sound) {
  SoundSource source;
  source.Block = sound.Sound;
  if (!SoundFileName(sound.AmbSound).empty()) source.Block.AmbientSound = sound.AmbSound;
  source.Name = source.BaseName = sound.Header.Name;
  source.Loop = !sound.bPlayOnceOnly;
  source.StartedElsewhere = true;
  source.InitiallyOn = sound.bInitiallyOn;
  source.WaitsForTrigger = source.Loop && !sound.bInitiallyOn;
  if (SoundFileName(source.Block.AmbientSound).empty())
    return context.Findings.Count(FindingCode::TriggeredSoundsWithoutSound);
  SceneNode place = OpenSoundPlace(context, sound.Location);
  const std::string clip = WriteSound(context, source);
  place.Close();
  if (!NoteLink(triggers, sound.Header.Tag, "enterTime", clip, "startTime"))
    context.Findings.Add(FindingCode::NeverStarted, sound.Header.Name);
  NoteLink(triggers, sound.Header.Tag, "exitTime", clip, "stopTime");
}

void WriteAmbientSounds(SceneRun& run) {
  ForEachActor(run, ActorFamily::AmbientSound, ReadAmbientSound,
               [&](const AmbientSoundRecord& sound) { WriteAmbientSound(run.Context, sound); });
  ForEachActor(run, ActorFamily::DynamicAmbientSound, ReadDynamicAmbientSound,
               [&](const DynamicAmbientSoundRecord& sound) { WriteRandomSounds(run.Context, sound); });
}

void WriteTriggeredSounds(SceneRun& run) {
  ForEachActor(
      run, ActorFamily::TriggeredAmbientSound, ReadTriggeredAmbientSound,
      [&](const TriggeredAmbientSoundRecord& sound) { WriteTriggeredSound(run.Context, run.Triggers, sound); });
}

} // namespace quarvel
