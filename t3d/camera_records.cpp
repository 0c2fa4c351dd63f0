#include "t3d/camera_records.h"

#include "base/ascii_text.h"
#include "base/reference.h"
#include "t3d/record_reading.h"

#include <cctype>
#include <charconv>
#include <map>
#include <utility>

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

/// Where the sub-objects of an actor stand, by their names in lower case; the first of a name counts.
using SubObjects = std::map<std::string, std::pair<TextCursor, TextCursor>>;

SubObjects FindSubObjects(const TextBlock& actor) {
  constexpr std::string_view beginObject = "Begin Object";
  SubObjects objects;
  const std::string_view text = actor.Text();
  TextCursor begin = FindText(text, beginObject, actor.From(), actor.To());
  while (begin != 0) {
    const TextCursor start = begin + static_cast<TextCursor>(beginObject.size());
    const TextCursor end = FindText(text, "End Object", start, actor.To());
    if (end == 0) break;
    objects.try_emplace(LowerCase(GetStringValue(TextBlock(text, start, end), "Name=")), start, end);
    begin = FindText(text, beginObject, end, actor.To());
  }
  return objects;
}

/// False when the actor holds no such sub-object, or one that is neither of the two kinds.
bool ReadAction(const TextBlock& actor, const SubObjects& objects, std::string_view name, SceneActionRecord& action) {
  const auto at = objects.find(LowerCase(name));
  if (at == objects.end()) return false;
  const TextBlock object(actor.Text(), at->second.first, at->second.second);
  const std::string className = GetStringValue(object, "Class=");
  action.Kind = className.ends_with("ActionPause") ? SceneActionKind::Pause : SceneActionKind::MoveCamera;
  ReadActionKeys(object, action);
  return className.ends_with("ActionPause") || className.ends_with("ActionMoveCamera");
}

/// The entries "Actions(n)=..." by their index.
std::map<int, std::string_view> ActionReferences(const TextBlock& block) {
  constexpr std::string_view key = "Actions(";
  std::map<int, std::string_view> references;
  TextCursor at = FindText(block.Text(), key, block.From(), block.To());
  while (at != 0) {
    const TextCursor start = at;
    const bool beginsLine = start > 1 && std::isspace(static_cast<unsigned char>(block.Text()[start - 2u]));
    const std::string_view line = ReadLineAt(block.Text(), at);
    int index = -1;
    const auto [end, error] = std::from_chars(line.data() + key.size(), line.data() + line.size(), index);
    const std::string_view rest(end, static_cast<std::size_t>(line.data() + line.size() - end));
    if (beginsLine && error == std::errc{} && index >= 0 && rest.starts_with(")="))
      references.emplace(index, rest.substr(2));
    at = FindText(block.Text(), key, start + static_cast<TextCursor>(key.size()), block.To());
  }
  return references;
}

void ReadActions(const TextBlock& block, SceneManagerRecord& manager) {
  constexpr std::size_t gapsTold = 10;
  const SubObjects objects = FindSubObjects(block);
  int next = 0;
  for (const auto& [index, reference] : ActionReferences(block)) {
    for (; next < index && manager.ActionGaps.size() < gapsTold; ++next)
      manager.ActionGaps.push_back(next);
    next = index + 1;
    SceneActionRecord action;
    if (ReadAction(block, objects, ReferenceName(Trimmed(reference)), action))
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
