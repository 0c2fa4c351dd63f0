#pragma once

#include "t3d/level.h"
#include "t3d/sound_block.h"
#include "t3d/text_reader.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// How many keyframes a mover can have.
inline constexpr int MaxKeys = 150;

/// Surface flags of a polygon, as the editor numbers them.
enum SurfaceFlag : std::uint32_t {
  SurfaceInvisible = 0x01,
  SurfaceMasked = 0x02,
  SurfaceTranslucent = 0x04,
  SurfaceNonSolid = 0x08,
  SurfaceSemisolid = 0x20,
  SurfaceFakeBackdrop = 0x80,
  SurfaceTwoSided = 0x100,
  SurfacePansU = 0x200,
  SurfacePansV = 0x400,
  SurfaceSmallWavy = 0x2000,
  SurfaceLowShadowDetail = 0x8000,
  SurfaceSpecialLit = 0x100000,
  SurfaceUnlit = 0x400000,
  SurfaceHighShadowDetail = 0x800000,
  SurfacePortal = 0x04000000,
  SurfaceShiny = 0x08000000,
};

/// The axes of a sheer: the second is displaced in proportion to the first.
enum class SheerAxis { None, XY, XZ, YX, YZ, ZX, ZY };

/// What a scale does after it has scaled.
struct SheerRecord {
  SheerAxis Axis = SheerAxis::None;
  double Rate = 0; ///< as the level has it; the editor snaps it
};

/// One face of a brush, in the brush's own unscaled coordinates. No converter uses Normal: the vertices tell it better.
struct PolygonRecord {
  std::string_view Texture; ///< a part of the T3D text; Name, Package.Name or Package.Group.Name; may be empty
  std::uint32_t Flags = 0;  ///< SurfaceFlag bits, and bits of the editor's own
  Vector3 Origin, Normal;
  double PanU = 0, PanV = 0; ///< texels
  Vector3 TextureU, TextureV;
  std::vector<Vector3> Vertices; ///< a single (0, 0, 0) when the polygon has none
};

/// A brush or mover with its polygons. Positions in Unreal units, times in seconds. No converter uses Group,
/// bDynamicLight, Mass, bBounce, bRotateToDesired, DesiredRotation, NumKeysCopy, MoverGlideType, bUseTriggered,
/// BumpEvent, IsMover and Sound.
struct BrushRecord {
  ActorHeader Header;
  Vector3 MainScale{1, 1, 1}, PostScale{1, 1, 1};
  SheerRecord MainSheer, PostSheer; ///< each follows on the scale of its name
  std::string Group;
  std::string CsgOper; ///< "CSG_Add", "CSG_Subtract" ...; "CsgOper=CSG_Add" for movers and bare polygon lists
  bool bDynamicLight = false;
  Vector3 Location, PrePivot;
  Rotator3 Rotation;
  std::string InitialState = "BumpOpenTimed";
  double Mass = 0;
  std::string Physics = "PHYS_MovingBrush";
  bool bBounce = false, bRotateToDesired = false;
  Rotator3 RotationRate; ///< Unreal units a second
  Rotator3 DesiredRotation;
  std::int16_t NumKeys = 2, NumKeysCopy = 2, KeyNum = 0;
  double MoveTime = 1;
  Vector3 BasePos;
  Rotator3 BaseRot;
  std::array<Vector3, MaxKeys> KeyPos{};
  std::array<Rotator3, MaxKeys> KeyRot{};
  bool HasKeyPos = false, HasKeyRot = false;
  bool TooManyKeys = false; ///< NumKeys is above MaxKeys: no key was read
  std::string NumKeysText;  ///< as it stands in the level, which may be any number
  int UnusedKeys = 0;       ///< keys in the text that NumKeys does not count
  double StayOpenTime = 4, DelayTime = 0;
  std::string MoverGlideType = "MV_GlideByTime";
  bool bUseTriggered = false;
  std::string BumpEvent, AttachTag, Url;
  std::string StaticMesh; ///< of the second generation's movers, which have no polygons
  Vector3 DrawScale3D{1, 1, 1};
  double DrawScale = 1; ///< this and DrawScale3D scale the mesh, not the polygons
  bool IsLoopMover = false, IsMover = false;
  SoundBlock Sound;
  std::uint32_t PolyFlags = 0; ///< already in the polygons' flags
  std::vector<PolygonRecord> Polygons;
  int DamagedPolygons = 0; ///< polygons left out because their end is missing
};

/// Reads a brush, or a mover with its motion.
BrushRecord ReadBrush(const T3DLevel& level, const ActorBlock& actor, NumberCheck& check);

/// Reads a bare "Begin PolyList" block (a file without actors) as one additive brush. False when there is none.
bool ReadPolyList(std::string_view text, TextCursor& cursor, BrushRecord& brush, NumberCheck& check);

/// True when the brush adds to the world.
bool IsAdditive(const BrushRecord& brush);

} // namespace quarvel
