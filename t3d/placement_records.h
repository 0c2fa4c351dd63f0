#pragma once

#include "t3d/class_defaults.h"
#include "t3d/level.h"

#include <string>

namespace quarvel {

/// An actor of which only the place counts. Lengths in Unreal units, here and below.
struct PlacementRecord {
  ActorHeader Header;
  Vector3 Location;
  Rotator3 Rotation;
};

/// A teleporter. No converter uses FavoriteNumber, and what it does to the velocity of who goes through it
/// (TargetVelocity, bReversesX to bChangesVelocity).
struct TeleporterRecord {
  ActorHeader Header;
  int FavoriteNumber = 0;
  std::string URL; ///< the Tag of the destination, at times behind a map's name and "#"
  Vector3 TargetVelocity;
  Vector3 Location;
  Rotator3 Rotation;
  bool bReversesX = false, bReversesY = false, bReversesZ = false, bChangesVelocity = false;
  double CollisionRadius = ClassDefaults::TeleporterRadius;
  double CollisionHeight = ClassDefaults::TeleporterHeight;
  bool IsVisible = false; ///< its class is VisibleTeleporter
};

/// An actor that is drawn by a mesh.
struct StaticMeshRecord {
  ActorHeader Header;
  std::string StaticMesh; ///< Package.Group.Name; empty when the actor names none
  Vector3 Location;
  Rotator3 Rotation;
  Vector3 DrawScale3D{1, 1, 1};
  double DrawScale = ClassDefaults::DrawScale;
  std::string DrawType; ///< "DT_StaticMesh" ...; empty for the class's own
  bool bHidden = false;
};

/// Each reads the record of one of the level's actors.
PlacementRecord ReadPlacement(const T3DLevel& level, const ActorBlock& actor);
TeleporterRecord ReadTeleporter(const T3DLevel& level, const ActorBlock& actor);
/// Of an actor of any class; it is one with a mesh when `StaticMesh` is not empty.
StaticMeshRecord ReadStaticMesh(const T3DLevel& level, const ActorBlock& actor);

} // namespace quarvel
