#include "t3d/camera_records.h"

#include "base/reference.h"
#include "t3d/record_reading.h"

namespace quarvel {

namespace {

void ReadPointKeys(const TextBlock& block, InterpolationPointRecord& point) {
  point.Location = GetVectorOr0(block, " Location=");
  point.Rotation = GetRotator(block, " Rotation=");
  GetKeyValue(block, "bEndOfPath=", point.bEndOfPath);
  GetKeyValue(block, "bSkipNextPath=", point.bSkipNextPath);
  GetKeyValue(block, "FovModifier=", point.FovModifier);
  GetKeyValue(block, "GameSpeedModifier=", point.GameSpeedModifier);
  GetKeyValue(block, "Position=", point.Position);
  GetKeyValue(block, "RateModifier=", point.RateModifier);
  GetKeyValue(block, "ScreenFlashScale=", point.ScreenFlashScale);
  point.ScreenFlashFog = GetVectorOr0(block, "ScreenFlashFog=");
}

void ReadEventKeys(const TextBlock& block, SpecialEventRecord& event) {
  event.Location = GetVectorOr0(block, " Location=");
  GetKeyValue(block, "Damage=", event.Damage);
  GetKeyValue(block, "DamageType=", event.DamageType);
  GetKeyValue(block, "DamageString=", event.DamageString);
  GetKeyValue(block, "Sound=", event.Sound);
  GetKeyValue(block, "Message=", event.Message);
  GetKeyValue(block, "bPlayerViewRot=", event.bPlayerViewRot);
  GetKeyValue(block, "bDynamicLight=", event.bDynamicLight);
}

void ReadActionKeys(const TextBlock& block, SceneActionRecord& action) {
  action.StartControlPoint = GetVectorOr0(block, " StartControlPoint=");
  action.EndControlPoint = GetVectorOr0(block, " EndControlPoint=");
  GetKeyValue(block, "Name=", action.Name);
  GetKeyValue(block, "PathStyle=", action.PathStyle);
  GetKeyValue(block, "IntPoint=", action.IntPoint);
  GetKeyValue(block, "Duration=", action.Duration);
  GetKeyValue(block, "PathLength=", action.PathLength);
  GetKeyValue(block, "Comment=", action.Comment);
  GetKeyValue(block, "bSmoothCorner=", action.bSmoothCorner);
  GetKeyValue(block, "bConstantPathVelocity=", action.bConstantPathVelocity);
  GetKeyValue(block, "PathVelocity=", action.PathVelocity);
}

/// Reads the sub-object of that name, which may stand before or after the entry that refers to it. False when the actor
/// holds none, or one that is neither of the two kinds.
bool ReadAction(const TextBlock& actor, std::string_view name, SceneActionRecord& action) {
  constexpr std::string_view beginObject = "Begin Object";
  const std::string_view text = actor.Text();
  TextCursor begin = FindText(text, beginObject, actor.From(), actor.To());
  while (begin != 0) {
    const TextCursor start = begin + static_cast<TextCursor>(beginObject.size());
    const TextCursor end = FindText(text, "End Object", start, actor.To());
    if (end == 0) return false;
    const TextBlock object(text, start, end);
    if (SameText(GetStringValue(object, "Name="), name)) {
      const std::string className = GetStringValue(object, "Class=");
      action.Kind = className.ends_with("ActionPause") ? SceneActionKind::Pause : SceneActionKind::MoveCamera;
      ReadActionKeys(object, action);
      return className.ends_with("ActionPause") || className.ends_with("ActionMoveCamera");
    }
    begin = FindText(text, beginObject, end, actor.To());
  }
  return false;
}

void ReadActions(const TextBlock& block, SceneManagerRecord& manager) {
  std::string reference;
  for (int index = 0; GetKeyValue(block, IndexedKey(" Actions", index), reference); ++index) {
    SceneActionRecord action;
    if (ReadAction(block, ReferenceName(reference), action))
      manager.Actions.push_back(action);
    else
      ++manager.MissingActions;
  }
}

void ReadManagerKeys(const TextBlock& block, SceneManagerRecord& manager) {
  manager.Location = GetVectorOr0(block, " Location=");
  GetKeyValue(block, "bLooping=", manager.bLooping);
  GetKeyValue(block, "Affect=", manager.Affect);
  GetKeyValue(block, "bCinematicView=", manager.bCinematicView);
  GetKeyValue(block, "PlayerScriptTag=", manager.PlayerScriptTag);
  GetKeyValue(block, "NextSceneTag=", manager.NextSceneTag);
  GetKeyValue(block, "EventStart=", manager.EventStart);
  GetKeyValue(block, "EventEnd=", manager.EventEnd);
  GetKeyValue(block, "bHideHUD=", manager.bHideHUD);
  GetKeyValue(block, "bLightChanged=", manager.bLightChanged);
  GetKeyValue(block, "AmbientSound=", manager.AmbientSound);
  GetKeyValue(block, "bFullVolume=", manager.bFullVolume);
  GetKeyValue(block, "SoundVolume=", manager.SoundVolume);
  GetKeyValue(block, "SoundPitch=", manager.SoundPitch);
  GetKeyValue(block, "SoundOcclusion=", manager.SoundOcclusion);
  GetKeyValue(block, "SoundRadius=", manager.SoundRadius);
  GetKeyValue(block, "TransientSoundVolume=", manager.TransientSoundVolume);
  GetKeyValue(block, "TransientSoundRadius=", manager.TransientSoundRadius);
  ReadActions(block, manager);
}

} // namespace

InterpolationPointRecord ReadInterpolationPoint(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<InterpolationPointRecord>(level, actor, ReadPointKeys);
}

SpecialEventRecord ReadSpecialEvent(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<SpecialEventRecord>(level, actor, ReadEventKeys);
}

SceneManagerRecord ReadSceneManager(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<SceneManagerRecord>(level, actor, ReadManagerKeys);
}

} // namespace quarvel
