#pragma once

#include "math/vector.h"

#include <cstdint>

/// The engine's class defaults. An export leaves out every property that has its class's default, so the records start
/// from these; a value that is written wins, zero too.
namespace quarvel::ClassDefaults {

// Any actor
inline constexpr double DrawScale = 1;
inline constexpr double SoundRadius = 32; ///< in steps of 25 Unreal units, less one
inline constexpr std::int16_t SoundVolume = 128;
inline constexpr std::int16_t SoundPitch = 64;

// AmbientSound
inline constexpr double AmbientSoundRadius = 64;
inline constexpr std::int16_t AmbientSoundVolume = 190;
inline constexpr std::int16_t AmbientSoundPitch = 64;

// DynamicAmbientSound
inline constexpr bool RandomSoundOn = true;
inline constexpr double PlayProbability = 0.6;
inline constexpr double MinReCheckTime = 5, MaxReCheckTime = 10; ///< seconds

// Lights
inline constexpr double LightBrightness = 64, LightHue = 0,
                        LightSaturation = 255; ///< 0 to 255; saturation 255 is white
inline constexpr double LightRadius = 64;      ///< in steps of 25 Unreal units, less one
inline constexpr double LightCone = 128;

// Triggers and teleporters, in Unreal units
inline constexpr double TriggerRadius = 40, TriggerHeight = 40;
inline constexpr bool TriggerActive = true;
inline constexpr double TeleporterRadius = 18, TeleporterHeight = 40;

// InterpolationPoint
inline constexpr double RateModifier = 1, FovModifier = 1, GameSpeedModifier = 1;

// ZoneInfo and LevelInfo
inline constexpr double DistanceFogEnd = 8000; ///< Unreal units
inline constexpr ColorRGB DistanceFogColor{128, 128, 128};
inline constexpr double TexturePanSpeed = 1;
inline constexpr double AmbientSaturation = 255; ///< white

} // namespace quarvel::ClassDefaults
