#include "packages/enumerations.h"

#include "base/ascii_text.h"

#include <cstddef>
#include <span>

namespace quarvel {
namespace {

constexpr std::string_view csgOper[] = {"CSG_Active", "CSG_Add", "CSG_Subtract", "CSG_Intersect", "CSG_Deintersect"};
constexpr std::string_view sheerAxis[] = {"SHEER_None", "SHEER_XY", "SHEER_XZ", "SHEER_YX",
                                          "SHEER_YZ",   "SHEER_ZX", "SHEER_ZY"};
constexpr std::string_view lightType[] = {"LT_None",
                                          "LT_Steady",
                                          "LT_Pulse",
                                          "LT_Blink",
                                          "LT_Flicker",
                                          "LT_Strobe",
                                          "LT_BackdropLight",
                                          "LT_SubtlePulse",
                                          "LT_TexturePaletteOnce",
                                          "LT_TexturePaletteLoop"};
constexpr std::string_view lightEffect[] = {"LE_None",         "LE_TorchWaver",   "LE_FireWaver", "LE_WateryShimmer",
                                            "LE_Searchlight",  "LE_SlowWave",     "LE_FastWave",  "LE_CloudCast",
                                            "LE_StaticSpot",   "LE_Shock",        "LE_Disco",     "LE_Warp",
                                            "LE_Spotlight",    "LE_NonIncidence", "LE_Shell",     "LE_OmniBumpMap",
                                            "LE_Interference", "LE_Cylinder",     "LE_Rotor",     "LE_Unused"};
constexpr std::string_view physics[] = {"PHYS_None",          "PHYS_Walking",     "PHYS_Falling",    "PHYS_Swimming",
                                        "PHYS_Flying",        "PHYS_Rotating",    "PHYS_Projectile", "PHYS_Rolling",
                                        "PHYS_Interpolating", "PHYS_MovingBrush", "PHYS_Spider",     "PHYS_Trailer"};
constexpr std::string_view moverEncroachType[] = {"ME_StopWhenEncroach", "ME_ReturnWhenEncroach",
                                                  "ME_CrushWhenEncroach", "ME_IgnoreWhenEncroach"};
constexpr std::string_view moverGlideType[] = {"MV_MoveByTime", "MV_GlideByTime"};
constexpr std::string_view bumpType[] = {"BT_PlayerBump", "BT_PawnBump", "BT_AnyBump"};
constexpr std::string_view triggerType[] = {"TT_PlayerProximity", "TT_PawnProximity", "TT_ClassProximity",
                                            "TT_AnyProximity", "TT_Shoot"};
constexpr std::string_view style[] = {"STY_None", "STY_Normal", "STY_Masked", "STY_Translucent", "STY_Modulated"};
constexpr std::string_view drawType[] = {"DT_None",       "DT_Sprite",         "DT_Mesh",      "DT_Brush",
                                         "DT_RopeSprite", "DT_VerticalSprite", "DT_Terraform", "DT_SpriteAnimOnce"};

struct Enumeration {
  std::string_view Property;
  std::span<const std::string_view> Members;
};

constexpr Enumeration enumerations[] = {{"CsgOper", csgOper},
                                        {"SheerAxis", sheerAxis},
                                        {"LightType", lightType},
                                        {"LightEffect", lightEffect},
                                        {"Physics", physics},
                                        {"MoverEncroachType", moverEncroachType},
                                        {"MoverGlideType", moverGlideType},
                                        {"BumpType", bumpType},
                                        {"TriggerType", triggerType},
                                        {"Style", style},
                                        {"DrawType", drawType}};

} // namespace

std::string_view EnumeratorName(std::string_view property, int number) {
  for (const Enumeration& enumeration : enumerations)
    if (SameText(enumeration.Property, property)) {
      const auto index = static_cast<std::size_t>(number);
      return number >= 0 && index < enumeration.Members.size() ? enumeration.Members[index] : std::string_view();
    }
  return {};
}

} // namespace quarvel
