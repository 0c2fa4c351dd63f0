#pragma once

#include "t3d/class_defaults.h"
#include "t3d/level.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quarvel {

/// One point of a camera path. Positions in Unreal units, here and below. No converter uses bEndOfPath, bSkipNextPath,
/// FovModifier, GameSpeedModifier and the screen flash.
struct InterpolationPointRecord {
  ActorHeader Header;
  Vector3 Location;
  Rotator3 Rotation;
  bool bEndOfPath = false, bSkipNextPath = false;
  double FovModifier = ClassDefaults::FovModifier;
  double GameSpeedModifier = ClassDefaults::GameSpeedModifier;
  std::int16_t Position = 0; ///< the point's number on the path
  double RateModifier = ClassDefaults::RateModifier;
  double ScreenFlashScale = 0;
  Vector3 ScreenFlashFog;
};

/// Something special that an event makes happen: a message, a sound, damage, a camera flight. Only that there is one is
/// reported; no converter uses what it does.
struct SpecialEventRecord {
  ActorHeader Header;
  Vector3 Location;
  std::int16_t Damage = 0;
  std::string DamageType, DamageString, Sound, Message;
  bool bPlayerViewRot = false, bDynamicLight = false;
};

enum class SceneActionKind { MoveCamera, Pause };

/// One action of a scene manager. Times in seconds. No converter uses Name, PathLength, Comment, bSmoothCorner,
/// bConstantPathVelocity and PathVelocity.
struct SceneActionRecord {
  SceneActionKind Kind = SceneActionKind::MoveCamera;
  Vector3 StartControlPoint, EndControlPoint;
  std::string Name;
  std::string PathStyle = "PATHSTYLE_Linear"; ///< or "PATHSTYLE_Bezier"
  std::string IntPoint;                       ///< a reference to the interpolation point that the camera moves to
  double Duration = 0;
  double PathLength = 0;
  std::string Comment;
  bool bSmoothCorner = false, bConstantPathVelocity = false;
  double PathVelocity = 0;
};

/// A camera flight of the second editor generation. No converter uses its effect on players, its scripts and events
/// (Affect to bLightChanged, but for bLooping) and its sound.
struct SceneManagerRecord {
  ActorHeader Header;
  Vector3 Location;
  bool bLooping = false;
  std::string Affect = "AFFECT_ViewportActor";
  bool bCinematicView = false;
  std::string PlayerScriptTag, NextSceneTag, EventStart, EventEnd;
  bool bHideHUD = false, bLightChanged = false;
  std::string AmbientSound;
  bool bFullVolume = false;
  double SoundVolume = 0, SoundPitch = 0;
  std::string SoundOcclusion = "OCCLUSION_Default";
  double SoundRadius = 0, TransientSoundVolume = 0, TransientSoundRadius = 0;
  std::vector<SceneActionRecord> Actions; ///< those whose sub-object stands in the manager's block, in their order
  int MissingActions = 0;                 ///< entries without such a sub-object
  std::vector<int> ActionGaps;            ///< the indices that entries are missing at, before the last entry
};

/// Each reads the record of one of the level's actors.
InterpolationPointRecord ReadInterpolationPoint(const T3DLevel& level, const ActorBlock& actor);
SpecialEventRecord ReadSpecialEvent(const T3DLevel& level, const ActorBlock& actor);
SceneManagerRecord ReadSceneManager(const T3DLevel& level, const ActorBlock& actor);

} // namespace quarvel
