#include "t3d/placement_records.h"

#include "base/reference.h"
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
  teleporter.IsVisible = teleporter.Header.Class == "VisibleTeleporter";
}

void ReadStaticMeshKeys(const TextBlock& block, StaticMeshRecord& mesh) {
  GetKeyValue(block, "StaticMesh=", mesh.StaticMesh);
  mesh.StaticMesh = ReferencePath(mesh.StaticMesh);
  ReadPlace(block, mesh);
  mesh.DrawScale3D = GetVectorOr1(block, "DrawScale3D=");
  GetKeyValue(block, "DrawScale=", mesh.DrawScale);
  GetKeyValue(block, "DrawType=", mesh.DrawType);
  GetKeyValue(block, "bHidden=", mesh.bHidden);
}

} // namespace

PlacementRecord ReadPlacement(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<PlacementRecord>(level, actor, ReadPlace<PlacementRecord>);
}

TeleporterRecord ReadTeleporter(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<TeleporterRecord>(level, actor, ReadTeleporterKeys);
}

StaticMeshRecord ReadStaticMesh(const T3DLevel& level, const ActorBlock& actor) {
  return ReadRecord<StaticMeshRecord>(level, actor, ReadStaticMeshKeys);
}

} // namespace quarvel
