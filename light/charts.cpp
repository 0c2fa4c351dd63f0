#include "light/charts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <tuple>

namespace quarvel {

namespace {

constexpr double weld = 0.1;          // Unreal units within which two corners are one
constexpr double touching = 0.5;      // Unreal units
constexpr double inward = 1;          // Unreal units from an outline, clear of the wall that may stand on it
constexpr double reachOfMixing = 2.5; // texels
constexpr double leastFilled = 0.25;  // of the rectangle that many neighbours share at once
constexpr double mostWaste = 1.5;     // of the rectangle that grows by one neighbour

using PlaneKey = std::tuple<int, double, bool, std::array<double, 3>, std::array<long long, 4>>;
using PointKey = std::array<long long, 3>;
using EdgeKey = std::array<PointKey, 2>;

double DistanceOfPlane(const LitSurface& surface) {
  double sum = 0;
  for (const Vector3& point : surface.Points)
    sum += DotProduct(point, surface.Normal);
  return sum / static_cast<double>(surface.Points.size());
}

PlaneKey KeyOf(const LitSurface& surface) {
  const auto rounded = [](double value, double step) { return std::llround(value / step); };
  const Vector3& n = surface.Normal;
  return {surface.Texture,
          surface.TexelScale,
          surface.SpecialLit,
          {surface.Ambient.X, surface.Ambient.Y, surface.Ambient.Z},
          {rounded(n.X, 1e-3), rounded(n.Y, 1e-3), rounded(n.Z, 1e-3), rounded(DistanceOfPlane(surface), 0.2)}};
}

PointKey KeyOf(const Vector3& point) {
  return {std::llround(point.X / weld), std::llround(point.Y / weld), std::llround(point.Z / weld)};
}

/// A surface on its way into a chart.
struct Candidate {
  ChartPiece Piece;
  PlaneBox Box;
  std::vector<std::size_t> Neighbours;
  bool Taken = false;
};

/// The surfaces of one plane that may share charts.
class PlaneGroup {
 public:
  PlaneGroup(const TexelLattice& lattice, const ShadowScene& shadows) : lattice_(lattice), shadows_(shadows) {}

  void Add(int number, const LitSurface& surface) {
    Candidate& added = candidates_.emplace_back();
    added.Piece.Surface = number;
    added.Piece.Points = surface.Points;
    for (const Vector3& point : surface.Points)
      added.Piece.Outline.push_back(lattice_.ToPlane(point));
    added.Box = BoxOf(added.Piece.Outline);
  }

  std::vector<Chart> Split() {
    FindNeighbours();
    std::vector<Chart> charts;
    for (std::size_t first = 0; first < candidates_.size(); ++first) {
      if (candidates_[first].Taken) continue;
      const std::vector<std::size_t> all = Connected(first);
      Keep(IsGoodWhole(all) ? all : Grown(first), charts);
    }
    return charts;
  }

 private:
  void FindNeighbours() {
    std::map<EdgeKey, std::size_t> edges;
    for (std::size_t i = 0; i < candidates_.size(); ++i) {
      const std::vector<Vector3>& points = candidates_[i].Piece.Points;
      for (std::size_t k = 0; k < points.size(); ++k) {
        EdgeKey edge{KeyOf(points[k]), KeyOf(points[(k + 1) % points.size()])};
        if (edge[0] == edge[1]) continue;
        std::sort(edge.begin(), edge.end());
        const auto [at, isNew] = edges.try_emplace(edge, i);
        if (isNew || at->second == i) continue;
        candidates_[i].Neighbours.push_back(at->second);
        candidates_[at->second].Neighbours.push_back(i);
      }
    }
  }

  /// All that hang together with one and are not taken yet, from near to far.
  std::vector<std::size_t> Connected(std::size_t first) const {
    std::vector<std::size_t> found{first};
    std::vector<bool> seen(candidates_.size());
    seen[first] = true;
    for (std::size_t i = 0; i < found.size(); ++i)
      for (const std::size_t next : candidates_[found[i]].Neighbours) {
        if (seen[next] || candidates_[next].Taken) continue;
        seen[next] = true;
        found.push_back(next);
      }
    return found;
  }

  bool IsGoodWhole(const std::vector<std::size_t>& members) const {
    PlaneBox box;
    double area = 0;
    for (const std::size_t i : members) {
      box.Grow(candidates_[i].Box);
      area += AreaOf(candidates_[i].Piece.Outline);
    }
    if (members.size() > 1 && area < leastFilled * box.Area()) return false;
    for (std::size_t i = 1; i < members.size(); ++i)
      if (MixesWithAny(members[i], {members.data(), i})) return false;
    return true;
  }

  /// As many of those that hang together with the first as can share a rectangle.
  std::vector<std::size_t> Grown(std::size_t first) const {
    std::vector<std::size_t> members{first};
    std::vector<bool> seen(candidates_.size());
    seen[first] = true;
    PlaneBox box = candidates_[first].Box;
    double used = box.Area();
    for (std::size_t i = 0; i < members.size(); ++i)
      for (const std::size_t next : candidates_[members[i]].Neighbours) {
        if (seen[next] || candidates_[next].Taken) continue;
        PlaneBox grown = box;
        grown.Grow(candidates_[next].Box);
        const double needed = used + candidates_[next].Box.Area();
        if (grown.Area() > mostWaste * needed || MixesWithAny(next, members)) continue;
        seen[next] = true;
        members.push_back(next);
        box = grown;
        used = needed;
      }
    return members;
  }

  bool MixesWithAny(std::size_t one, std::span<const std::size_t> others) const {
    return std::any_of(others.begin(), others.end(), [&](std::size_t other) { return Mixes(one, other); });
  }

  /// True when two surfaces are so near that they would share texels, and something stands between them.
  bool Mixes(std::size_t one, std::size_t other) const {
    const PlaneBox &a = candidates_[one].Box, &b = candidates_[other].Box;
    if (a.MinU > b.MaxU + reachOfMixing || b.MinU > a.MaxU + reachOfMixing || a.MinV > b.MaxV + reachOfMixing ||
        b.MinV > a.MaxV + reachOfMixing)
      return false;
    const PlanePolygon &p = candidates_[one].Piece.Outline, &q = candidates_[other].Piece.Outline;
    PlanePoint onP, onQ;
    double nearest = INFINITY;
    const auto look = [&](const PlanePoint& fromP, const PlanePoint& fromQ) {
      const double distance = DistanceOf(fromP, fromQ);
      if (distance >= nearest) return;
      nearest = distance;
      onP = fromP;
      onQ = fromQ;
    };
    for (const PlanePoint& point : p)
      look(point, NearestPointOf(q, point));
    for (const PlanePoint& point : q)
      look(NearestPointOf(p, point), point);
    if (nearest * lattice_.Texel < touching || nearest > reachOfMixing) return false;
    const PlanePoint from = MovedInside(onP, CenterOf(p), inward / lattice_.Texel);
    const PlanePoint to = MovedInside(onQ, CenterOf(q), inward / lattice_.Texel);
    return !shadows_.Connected(lattice_.ToSpace(from), lattice_.ToSpace(to), lattice_.Normal);
  }

  void Keep(const std::vector<std::size_t>& members, std::vector<Chart>& charts) {
    Chart& chart = charts.emplace_back();
    chart.Lattice = lattice_;
    for (const std::size_t i : members) {
      chart.Pieces.push_back(candidates_[i].Piece);
      candidates_[i].Taken = true;
    }
  }

  TexelLattice lattice_;
  const ShadowScene& shadows_;
  std::vector<Candidate> candidates_;
};

/// Sets the chart's rectangle from its pieces.
void FitRectangle(Chart& chart) {
  PlaneBox box;
  for (const ChartPiece& piece : chart.Pieces)
    box.Grow(BoxOf(piece.Outline));
  const auto low = [](double value) { return static_cast<int>(std::floor(value + 1e-6)) - ChartBorder; };
  const auto high = [](double value) { return static_cast<int>(std::ceil(value - 1e-6)) + ChartBorder; };
  chart.FirstU = low(box.MinU);
  chart.FirstV = low(box.MinV);
  chart.Width = std::max(high(box.MaxU) - chart.FirstU, 1 + 2 * ChartBorder);
  chart.Height = std::max(high(box.MaxV) - chart.FirstV, 1 + 2 * ChartBorder);
}

double CoordinateOf(const PlanePoint& point, bool alongU) { return alongU ? point.U : point.V; }

/// The part of a piece on one side of a line of texels: below it, or above.
ChartPiece PartBeside(const ChartPiece& piece, bool alongU, double line, bool below) {
  ChartPiece part;
  part.Surface = piece.Surface;
  const double side = below ? 1 : -1;
  for (std::size_t i = 0; i < piece.Points.size(); ++i) {
    const std::size_t next = (i + 1) % piece.Points.size();
    const double here = side * (line - CoordinateOf(piece.Outline[i], alongU));
    const double there = side * (line - CoordinateOf(piece.Outline[next], alongU));
    if (here >= 0) {
      part.Points.push_back(piece.Points[i]);
      part.Outline.push_back(piece.Outline[i]);
    }
    if ((here > 0 && there < 0) || (here < 0 && there > 0)) {
      const double t = here / (here - there);
      const Vector3 &a = piece.Points[i], &b = piece.Points[next];
      const PlanePoint &p = piece.Outline[i], &q = piece.Outline[next];
      part.Points.push_back(AddVector(a, ScaleVector(SubtractVector(b, a), t)));
      part.Outline.push_back({p.U + (q.U - p.U) * t, p.V + (q.V - p.V) * t});
    }
  }
  return part;
}

/// Adds the chart, cut at a line of texels as often as it takes to make its pieces fit a page.
void AddFitting(Chart chart, int pageSize, std::vector<Chart>& charts) {
  FitRectangle(chart);
  const bool alongU = chart.Width > pageSize;
  if (!alongU && chart.Height <= pageSize) return charts.push_back(std::move(chart));
  const int line = (alongU ? chart.FirstU : chart.FirstV) + pageSize - ChartBorder;
  Chart below{chart.Lattice, {}}, above{chart.Lattice, {}};
  for (const ChartPiece& piece : chart.Pieces) {
    for (const bool isBelow : {true, false}) {
      ChartPiece part = PartBeside(piece, alongU, line, isBelow);
      if (part.Points.size() >= 3 && AreaOf(part.Outline) > 0)
        (isBelow ? below : above).Pieces.push_back(std::move(part));
    }
  }
  if (!below.Pieces.empty()) {
    FitRectangle(below);
    AddFitting(std::move(below), pageSize, charts);
  }
  if (!above.Pieces.empty()) AddFitting(std::move(above), pageSize, charts);
}

} // namespace

double TexelsOf(std::span<const LitSurface> surfaces, double texel) {
  double sum = 0;
  for (const LitSurface& surface : surfaces) {
    if (!surface.TakesLight) continue;
    PlanePolygon outline;
    const TexelLattice lattice = MakeLattice(surface.Normal, 0, texel * surface.TexelScale);
    for (const Vector3& point : surface.Points)
      outline.push_back(lattice.ToPlane(point));
    sum += AreaOf(outline);
  }
  return sum;
}

std::vector<Chart> MakeCharts(std::span<const LitSurface> surfaces, const ShadowScene& shadows, double texel,
                              int pageSize) {
  std::map<PlaneKey, std::size_t> numbers;
  std::vector<PlaneGroup> groups; // in the order of their first surfaces
  for (std::size_t i = 0; i < surfaces.size(); ++i) {
    const LitSurface& surface = surfaces[i];
    if (!surface.TakesLight) continue;
    const auto [at, isNew] = numbers.try_emplace(KeyOf(surface), groups.size());
    if (isNew)
      groups.emplace_back(MakeLattice(surface.Normal, DistanceOfPlane(surface), texel * surface.TexelScale), shadows);
    groups[at->second].Add(static_cast<int>(i), surface);
  }
  std::vector<Chart> charts;
  for (PlaneGroup& group : groups)
    for (Chart& chart : group.Split())
      AddFitting(std::move(chart), pageSize, charts);
  return charts;
}

} // namespace quarvel
