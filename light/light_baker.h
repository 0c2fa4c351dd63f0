#pragma once

#include "light/lamp.h"
#include "light/lit_surface.h"
#include "light/shadow_scene.h"
#include "light/zone_light.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace quarvel {

struct BakeOptions {
  double Texel = 16;    ///< Unreal units
  int PageSide = 1024;  ///< texels
  int MaxPages = 16;    ///< beyond them the texels become larger
  unsigned Threads = 0; ///< 0: as many as the machine has; the result is the same for any
};

/// A point of a page: 0 to 1 from the left and from the bottom.
struct MapPoint {
  double U = 0, V = 0;
};

/// A surface, or a piece of one that is larger than a page, with its place in the light maps.
struct LitPiece {
  int Surface = 0;
  int Page = 0;
  std::vector<Vector3> Points;
  std::vector<MapPoint> Coordinates; ///< as many
};

struct BakedLight {
  std::vector<std::vector<std::uint8_t>> Pages; ///< PNG files
  std::vector<LitPiece> Pieces;                 ///< by surface
  double Texel = 0;                             ///< as used
  std::uint64_t Texels = 0;                     ///< that were computed
  double Mean = 0;                              ///< light of these, 0 to 1
  bool Stopped = false;                         ///< by the caller: there are no pages then
};

/// Told now and then how much is done, 0 to 1, by the thread that called; returns false to stop.
using BakeProgress = std::function<bool(double)>;

/// True when the surface can be lit and cast shadows: it has an area and no coordinates beyond all levels.
bool IsSoundSurface(const LitSurface& surface);

/// Computes the light maps of all surfaces that take light. All surfaces must be sound. `zones` is asked for the
/// ambient light of those that lie in several.
BakedLight BakeLight(std::span<const LitSurface> surfaces, std::span<const Lamp> lamps, const ShadowScene& shadows,
                     const BakeOptions& options, const BakeProgress& progress = {}, const ZoneLight* zones = nullptr);

/// All that lamps and ambience give to one point of a surface with that normal, shadows included, as a texel has it.
Vector3 LightAtPoint(std::span<const Lamp> lamps, const ShadowScene& shadows, const Vector3& point,
                     const Vector3& normal, bool specialLit, const Vector3& ambient);

} // namespace quarvel
