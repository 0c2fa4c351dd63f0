#include "light/atlas.h"

#include <climits>
#include <cstdint>

#define STB_RECT_PACK_IMPLEMENTATION
#define STBRP_STATIC
#include <stb/stb_rect_pack.h>

namespace quarvel {

namespace {

constexpr int smallestSide = 32;

/// Packs what fits, and returns the rest.
std::vector<stbrp_rect> PackPage(std::vector<stbrp_rect> rects, PageSize size, std::vector<stbrp_rect>& packed) {
  stbrp_context context;
  std::vector<stbrp_node> nodes(static_cast<std::size_t>(size.Width));
  stbrp_init_target(&context, size.Width, size.Height, nodes.data(), size.Width);
  stbrp_pack_rects(&context, rects.data(), static_cast<int>(rects.size()));
  std::vector<stbrp_rect> rest;
  packed.clear();
  for (const stbrp_rect& rect : rects)
    (rect.was_packed ? packed : rest).push_back(rect);
  return rest;
}

/// The smallest page that takes them all; its sides are powers of two when `largest` is one.
PageSize Shrink(std::vector<stbrp_rect>& rects, int largest) {
  std::int64_t area = 0;
  for (const stbrp_rect& rect : rects)
    area += std::int64_t(rect.w) * rect.h;
  int smallest = largest;
  while (smallest % 2 == 0 && smallest / 2 >= smallestSide)
    smallest /= 2;
  std::vector<stbrp_rect> packed;
  for (PageSize size{smallest, smallest}; size.Height < largest;
       (size.Width > size.Height ? size.Height : size.Width) *= 2) {
    if (std::int64_t(size.Width) * size.Height < area || !PackPage(rects, size, packed).empty()) continue;
    rects = packed;
    return size;
  }
  return {largest, largest};
}

void Place(const std::vector<stbrp_rect>& rects, int page, std::vector<Chart>& charts) {
  for (const stbrp_rect& rect : rects) {
    Chart& chart = charts[static_cast<std::size_t>(rect.id)];
    chart.Page = page;
    chart.PageX = rect.x;
    chart.PageY = rect.y;
  }
}

} // namespace

std::vector<PageSize> PackCharts(std::vector<Chart>& charts, int side, int maxPages) {
  std::vector<stbrp_rect> rest;
  rest.reserve(charts.size());
  for (std::size_t i = 0; i < charts.size(); ++i)
    rest.push_back({static_cast<int>(i), charts[i].Width, charts[i].Height, 0, 0, 0});
  std::vector<PageSize> pages;
  while (!rest.empty()) {
    if (static_cast<int>(pages.size()) == maxPages) return {};
    std::vector<stbrp_rect> packed;
    rest = PackPage(std::move(rest), {side, side}, packed);
    pages.push_back(rest.empty() ? Shrink(packed, side) : PageSize{side, side});
    Place(packed, static_cast<int>(pages.size()) - 1, charts);
  }
  return pages;
}

} // namespace quarvel
