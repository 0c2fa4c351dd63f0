#pragma once

#include "t3d/actor_index.h"
#include "t3d/class_defaults.h"

#include <array>
#include <string>

namespace quarvel {

/// An actor of which only the place counts. Lengths in Unreal units, here and below.
struct PlacementRecord {
  ActorHeader Header;
  Vector3 Location;
  Rotator3 Rotation;
};

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
  bool IsVisible = false; ///< it was found as a VisibleTeleporter
};

struct StaticMeshRecord {
  ActorHeader Header;
  std::string StaticMesh; ///< Package.Group.Name; empty when the actor names none
  Vector3 Location;
  Rotator3 Rotation;
  Vector3 DrawScale3D{1, 1, 1};
  double DrawScale = ClassDefaults::DrawScale;
};

inline constexpr const char* PlayerStartSearchText = "Class=PlayerStart ";
inline constexpr const char* StaticMeshSearchText = "Class=StaticMeshActor ";
/// In the order in which they are converted.
inline constexpr std::array TeleporterSearchTexts = {"Class=Teleporter ", "Class=FavoritesTeleporter ",
                                                     "Class=VisibleTeleporter "};

/// Each reads the next actor that fits the search text. False when there is none.
bool ReadPlacement(const LevelText& level, TextCursor& cursor, std::string_view searchText, PlacementRecord& placement);
bool ReadTeleporter(const LevelText& level, TextCursor& cursor, std::string_view searchText,
                    TeleporterRecord& teleporter);
/// With the search text "Class=" the actor may be of any class; it is one with a mesh when `StaticMesh` is not empty.
bool ReadStaticMesh(const LevelText& level, TextCursor& cursor, std::string_view searchText, StaticMeshRecord& mesh);

/// The name in a mesh reference: StaticMesh'Package.Group.Name' gives Package.Group.Name.
std::string StaticMeshName(const std::string& reference);

} // namespace quarvel
