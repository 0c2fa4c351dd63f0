#pragma once

#include "images/image.h"
#include "light/charts.h"
#include "light/zone_light.h"

#include <cstdint>
#include <span>

namespace quarvel {

/// The texels of a chart that got light or shadow of their own.
struct LitTexels {
  std::uint64_t Count = 0;
  std::uint64_t Sum = 0; ///< of their red, green and blue, 0 to 255 each
};

/// Computes the light of the chart's texels and puts it onto its page. Texels without light of their own are left as
/// they are, or take their nearest neighbour's.
LitTexels LightChart(const Chart& chart, std::span<const LitSurface> surfaces, std::span<const Lamp> lamps,
                     const ShadowScene& shadows, const ZoneLight* zones, Image& page);

} // namespace quarvel
