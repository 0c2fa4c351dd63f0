#pragma once

#include "t3d/class_defaults.h"
#include "t3d/level.h"

#include <optional>
#include <string>

namespace quarvel {

/// What a zone does to all that stands in it. Distances in Unreal units. No converter uses DistanceFogStart: fog in a
/// scene begins at the eye.
struct ZoneBlock {
  ColorRGB DistanceFogColor = ClassDefaults::DistanceFogColor;
  bool ColorInRange = true; ///< false when a component lay outside 0 to 255 and was clamped
  double TexUPanSpeed = ClassDefaults::TexturePanSpeed, TexVPanSpeed = ClassDefaults::TexturePanSpeed;
  double AmbientBrightness = 0, AmbientHue = 0;                ///< 0 to 255
  double AmbientSaturation = ClassDefaults::AmbientSaturation; ///< 0 to 255; 255 is white
  double DistanceFogStart = 0, DistanceFogEnd = ClassDefaults::DistanceFogEnd;
  bool bDistanceFog = false;
};

/// A part of the level with a surrounding of its own.
struct ZoneRecord {
  ActorHeader Header;
  ZoneBlock Zone;
};

/// The zone whose geometry is the level's sky. No converter uses anything of it but the name and the place.
struct SkyZoneRecord {
  ActorHeader Header;
  Vector3 Location;
  bool bStatic = false;
  std::string Physics;
  double DrawScale = ClassDefaults::DrawScale;
  bool bFixedRotationDir = false;
  Rotator3 RotationRate; ///< a second
  Rotator3 DesiredRotation;
  ZoneBlock Zone;
};

/// The level itself, which is the zone of all that stands in no other. No converter uses LightBrightness, LightHue and
/// LightSaturation.
struct LevelRecord {
  ActorHeader Header;
  std::string Title, Author;
  double Brightness = 1; ///< factor of all static lights
  double LightBrightness = 0, LightHue = 0, LightSaturation = 0;
  ZoneBlock Zone;
};

/// Where an actor stands.
struct RegionRecord {
  ActorHeader Header;
  std::optional<Vector3> Location; ///< Unreal units; none when the text has none, which the editor leaves out at 0
  std::string Zone;                ///< name of the actor that is its zone; empty when it has none or is in solid matter
};

/// Each reads the record of one of the level's actors.
ZoneRecord ReadZone(const T3DLevel& level, const ActorBlock& actor);
SkyZoneRecord ReadSkyZone(const T3DLevel& level, const ActorBlock& actor);
LevelRecord ReadLevel(const T3DLevel& level, const ActorBlock& actor);
RegionRecord ReadRegion(const T3DLevel& level, const ActorBlock& actor);

} // namespace quarvel
