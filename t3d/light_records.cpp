#include "t3d/light_records.h"

#include "t3d/record_reading.h"

namespace quarvel {

namespace {

void ReadDisplayBlock(const TextBlock& block, DisplayBlock& display) {
  GetKeyValue(block, "Texture=", display.Texture);
  GetKeyValue(block, "Style=", display.Style);
  GetKeyValue(block, "DrawScale=", display.DrawScale);
  GetKeyValue(block, "AmbientGlow=", display.AmbientGlow);
  GetKeyValue(block, "ScaleGlow=", display.ScaleGlow);
}

LightKind KindOfClass(std::string_view className) {
  if (StartsWithText(className, "Spotlight")) return LightKind::Spot;
  if (StartsWithText(className, "Sunlight")) return LightKind::Directional;
  return LightKind::Point;
}

void ReadLightKeys(const TextBlock& block, LightRecord& light) {
  light.Kind = KindOfClass(light.Header.Class);
  light.Location = GetVectorOr0(block, " Location=");
  light.Rotation = GetRotator(block, " Rotation=");
  GetKeyValue(block, "bDynamicLight=", light.bDynamicLight);
  GetKeyValue(block, "LightType=", light.LightType);
  GetKeyValue(block, "LightEffect=", light.LightEffect);
  GetKeyValue(block, "LightBrightness=", light.LightBrightness);
  GetKeyValue(block, "LightHue=", light.LightHue);
  GetKeyValue(block, "LightSaturation=", light.LightSaturation);
  GetKeyValue(block, "LightRadius=", light.LightRadius);
  GetKeyValue(block, "LightPeriod=", light.LightPeriod);
  GetKeyValue(block, "LightPhase=", light.LightPhase);
  GetKeyValue(block, "LightCone=", light.LightCone);
  GetKeyValue(block, "VolumeBrightness=", light.VolumeBrightness);
  GetKeyValue(block, "VolumeRadius=", light.VolumeRadius);
  GetKeyValue(block, "VolumeFog=", light.VolumeFog);
  GetKeyValue(block, "bSpecialLit=", light.bSpecialLit);
  GetKeyValue(block, "bActorShadows=", light.bActorShadows);
  GetKeyValue(block, "bCorona=", light.bCorona);
  GetKeyValue(block, "bLensFlare=", light.bLensFlare);
  ReadDisplayBlock(block, light.Display);
  ReadSoundBlock(block, light.Sound);
}

void ReadTriggerLightKeys(const TextBlock& block, TriggerLightRecord& light) {
  ReadLightKeys(block, light);
  GetKeyValue(block, "bDelayFullOn=", light.bDelayFullOn);
  GetKeyValue(block, "bInitiallyOn=", light.bInitiallyOn);
  GetKeyValue(block, "ChangeTime=", light.ChangeTime);
  GetKeyValue(block, "RemainOnTime=", light.RemainOnTime);
}

void ReadDisplayKeys(const TextBlock& block, DisplayRecord& display) {
  display.Location = GetVectorOr0(block, " Location=");
  ReadDisplayBlock(block, display.Display);
}

} // namespace

LightRecord ReadLight(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<LightRecord>(level, actor, ReadLightKeys);
}

TriggerLightRecord ReadTriggerLight(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<TriggerLightRecord>(level, actor, ReadTriggerLightKeys);
}

DisplayRecord ReadDisplay(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<DisplayRecord>(level, actor, ReadDisplayKeys);
}

} // namespace quarvel
