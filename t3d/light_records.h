#pragma once

#include "t3d/class_defaults.h"
#include "t3d/level.h"
#include "t3d/sound_block.h"

#include <string>

namespace quarvel {

/// How an actor is drawn. No converter uses AmbientGlow and ScaleGlow.
struct DisplayBlock {
  std::string Texture; ///< a reference such as Texture'Package.Group.Name'; empty for the class's own
  std::string Style;   ///< "STY_Translucent" ...
  double DrawScale = ClassDefaults::DrawScale;
  double AmbientGlow = 0;
  double ScaleGlow = 0;
};

enum class LightKind { Point = 1, Spot = 2, Directional = 3 };

/// A light actor. Position in Unreal units. No converter uses LightPeriod, LightPhase, the three of the volume,
/// bActorShadows, bCorona and bLensFlare.
struct LightRecord {
  ActorHeader Header;
  LightKind Kind = LightKind::Point; ///< by the class
  Vector3 Location;
  Rotator3 Rotation;
  bool bDynamicLight = false;
  std::string LightType = "0";
  std::string LightEffect = "0";
  double LightBrightness = ClassDefaults::LightBrightness; ///< this and the next two 0 to 255
  double LightHue = ClassDefaults::LightHue;
  double LightSaturation = ClassDefaults::LightSaturation; ///< 255 is white
  double LightRadius = ClassDefaults::LightRadius;
  double LightPeriod = 0, LightPhase = 0;
  double LightCone = ClassDefaults::LightCone;
  double VolumeBrightness = 0, VolumeRadius = 0, VolumeFog = 0;
  bool bSpecialLit = false; ///< lights the surfaces with that flag, and no others
  bool bActorShadows = false, bCorona = false, bLensFlare = false;
  DisplayBlock Display;
  SoundBlock Sound;
};

/// A light that a trigger switches. Times in seconds; no converter uses them, nor bDelayFullOn: the light is on while
/// its trigger is entered.
struct TriggerLightRecord : LightRecord {
  bool bDelayFullOn = false;
  bool bInitiallyOn = false;
  double ChangeTime = 0;
  double RemainOnTime = 0;
};

/// An actor of which only the sprite is drawn.
struct DisplayRecord {
  ActorHeader Header;
  Vector3 Location;
  DisplayBlock Display;
};

/// Each reads the record of one of the level's actors.
LightRecord ReadLight(const T3DLevel& level, const ActorBlock& actor);
TriggerLightRecord ReadTriggerLight(const T3DLevel& level, const ActorBlock& actor);
DisplayRecord ReadDisplay(const T3DLevel& level, const ActorBlock& actor);

} // namespace quarvel
