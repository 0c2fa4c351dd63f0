#pragma once

#include "images/image.h"
#include "light/charts.h"

#include <cstdint>
#include <span>

namespace quarvel {

/// Computes the light of the chart's texels and puts it onto its page. Returns how many texels got light or shadow of
/// their own; the others are left as they are, or take their nearest neighbour's.
std::uint64_t LightChart(const Chart& chart, std::span<const LitSurface> surfaces, std::span<const Lamp> lamps,
                         const ShadowScene& shadows, Image& page);

} // namespace quarvel
