#include "t3d/world_records.h"

#include "base/reference.h"
#include "t3d/record_reading.h"

namespace quarvel {

namespace {

void ReadZoneBlock(const TextBlock& block, ZoneBlock& zone) {
  zone.ColorInRange = GetColor(block, "DistanceFogColor=", zone.DistanceFogColor);
  GetKeyValue(block, "TexUPanSpeed=", zone.TexUPanSpeed);
  GetKeyValue(block, "TexVPanSpeed=", zone.TexVPanSpeed);
  GetKeyValue(block, "AmbientBrightness=", zone.AmbientBrightness);
  GetKeyValue(block, "AmbientHue=", zone.AmbientHue);
  GetKeyValue(block, "AmbientSaturation=", zone.AmbientSaturation);
  GetKeyValue(block, "DistanceFogStart=", zone.DistanceFogStart);
  GetKeyValue(block, "DistanceFogEnd=", zone.DistanceFogEnd);
  GetKeyValue(block, "bDistanceFog=", zone.bDistanceFog);
}

void ReadZoneKeys(const TextBlock& block, ZoneRecord& zone) { ReadZoneBlock(block, zone.Zone); }

void ReadSkyZoneKeys(const TextBlock& block, SkyZoneRecord& zone) {
  zone.Location = GetVectorOr0(block, " Location=");
  GetKeyValue(block, "bStatic=", zone.bStatic);
  GetKeyValue(block, "Physics=", zone.Physics);
  GetKeyValue(block, "DrawScale=", zone.DrawScale);
  GetKeyValue(block, "bFixedRotationDir=", zone.bFixedRotationDir);
  zone.RotationRate = GetRotator(block, "RotationRate=");
  if (block.Find("RotateRate=") != 0) zone.RotationRate = GetRotator(block, "RotateRate=");
  zone.DesiredRotation = GetRotator(block, "DesiredRotation=");
  ReadZoneBlock(block, zone.Zone);
}

void ReadLevelKeys(const TextBlock& block, LevelRecord& info) {
  info.Title = GetQuotedValue(block, "Title=");
  info.Author = GetQuotedValue(block, "Author=");
  GetKeyValue(block, " Brightness=", info.Brightness);
  GetKeyValue(block, "LightBrightness=", info.LightBrightness);
  GetKeyValue(block, "LightHue=", info.LightHue);
  GetKeyValue(block, "LightSaturation=", info.LightSaturation);
  ReadZoneBlock(block, info.Zone);
}

/// "(Zone=ZoneInfo'MyLevel.ZoneInfo3',iLeaf=24,ZoneNumber=3)". Solid matter has no number.
void ReadRegionKeys(const TextBlock& block, RegionRecord& region) {
  if (block.Find(" Location=") != 0) region.Location = GetVectorOr0(block, " Location=");
  constexpr std::string_view key = "(Zone=";
  const std::string_view text = region.Header.Region;
  if (!text.starts_with(key) || text.find("ZoneNumber=") == text.npos) return;
  const std::string_view zone = ReferenceName(text.substr(key.size(), text.find(',') - key.size()));
  if (zone != "None") region.Zone = zone;
}

} // namespace

ZoneRecord ReadZone(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<ZoneRecord>(level, actor, ReadZoneKeys);
}

SkyZoneRecord ReadSkyZone(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<SkyZoneRecord>(level, actor, ReadSkyZoneKeys);
}

RegionRecord ReadRegion(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<RegionRecord>(level, actor, ReadRegionKeys);
}

LevelRecord ReadLevel(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<LevelRecord>(level, actor, ReadLevelKeys);
}

} // namespace quarvel
