#pragma once

#include "light/lit_surface.h"
#include "light/shadow_scene.h"
#include "light/texel_lattice.h"

#include <span>
#include <vector>

namespace quarvel {

/// A surface, or the piece of one that a light map holds.
struct ChartPiece {
  int Surface = 0;
  std::vector<Vector3> Points;
  PlanePolygon Outline; ///< the same points
};

/// A rectangle of texels, with the pieces of one plane that it lights.
struct Chart {
  TexelLattice Lattice;
  std::vector<ChartPiece> Pieces;
  int FirstU = 0, FirstV = 0; ///< on the lattice; texel n reaches from n to n + 1
  int Width = 0, Height = 0;  ///< border included

  // Its place, set by PackCharts.
  int Page = 0, PageX = 0, PageY = 0;
};

/// How many texels a chart has around its pieces.
inline constexpr int ChartBorder = 2;

/// The area of all surfaces that take light, in texels.
double TexelsOf(std::span<const LitSurface> surfaces, double texel);

/// Puts all surfaces that take light into charts of at most `pageSize` texels a side. Neighbours in one plane share a
/// chart, unless something stands between them so closely that their light would mix.
std::vector<Chart> MakeCharts(std::span<const LitSurface> surfaces, const ShadowScene& shadows, double texel,
                              int pageSize);

} // namespace quarvel
