#pragma once

#include "light/charts.h"

#include <vector>

namespace quarvel {

/// The size of one page of light maps, in texels.
struct PageSize {
  int Width = 0, Height = 0;
};

/// Gives every chart its place, on as few pages as are needed, of which the last is as small as it can be. Empty when
/// `maxPages` pages of `side` texels are not enough.
std::vector<PageSize> PackCharts(std::vector<Chart>& charts, int side, int maxPages);

} // namespace quarvel
