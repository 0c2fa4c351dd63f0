#include "t3d/placement_records.h"

#include "math/number_text.h"
#include "t3d/record_reading.h"

namespace quarvel {

namespace {

template <typename Record>
void ReadPlace(const TextBlock& block, Record& record) {
  record.Location = GetVectorOr0(block, " Location=");
  record.Rotation = GetRotator(block, " Rotation=");
}

void ReadTeleporterKeys(const TextBlock& block, TeleporterRecord& teleporter) {
  teleporter.FavoriteNumber = static_cast<int>(RoundToInteger(GetKeyOrZero(block, "FavoriteNumber="), -32768, 32767));
  teleporter.URL = GetQuotedValue(block, "URL=");
  teleporter.TargetVelocity = GetVectorOr0(block, "TargetVelocity=");
  ReadPlace(block, teleporter);
  GetKeyValue(block, "bReversesX=", teleporter.bReversesX);
  GetKeyValue(block, "bReversesY=", teleporter.bReversesY);
  GetKeyValue(block, "bReversesZ=", teleporter.bReversesZ);
  GetKeyValue(block, "bChangesVelocity=", teleporter.bChangesVelocity);
  GetKeyValue(block, "CollisionRadius=", teleporter.CollisionRadius);
  GetKeyValue(block, "CollisionHeight=", teleporter.CollisionHeight);
}

void ReadStaticMeshKeys(const TextBlock& block, StaticMeshRecord& mesh) {
  GetKeyValue(block, "StaticMesh=", mesh.StaticMesh);
  mesh.StaticMesh = StaticMeshName(mesh.StaticMesh);
  ReadPlace(block, mesh);
  mesh.DrawScale3D = GetVectorOr1(block, "DrawScale3D=");
  GetKeyValue(block, "DrawScale=", mesh.DrawScale);
}

} // namespace

bool ReadPlacement(const LevelText& level, TextCursor& cursor, std::string_view searchText,
                   PlacementRecord& placement) {
  return ReadRecord(level, cursor, searchText, placement, ReadPlace<PlacementRecord>);
}

bool ReadTeleporter(const LevelText& level, TextCursor& cursor, std::string_view searchText,
                    TeleporterRecord& teleporter) {
  if (!ReadRecord(level, cursor, searchText, teleporter, ReadTeleporterKeys)) return false;
  teleporter.IsVisible = searchText.starts_with("Class=VisibleTeleporter");
  return true;
}

bool ReadStaticMesh(const LevelText& level, TextCursor& cursor, std::string_view searchText, StaticMeshRecord& mesh) {
  return ReadRecord(level, cursor, searchText, mesh, ReadStaticMeshKeys);
}

std::string StaticMeshName(const std::string& reference) {
  constexpr std::size_t quotedPrefix = 11; // the word StaticMesh and a quote
  const bool isReference = reference.find("StaticMesh") != reference.npos && reference.find('.') != reference.npos;
  return isReference && reference.size() > quotedPrefix
             ? reference.substr(quotedPrefix, reference.size() - quotedPrefix - 1)
             : reference;
}

} // namespace quarvel
