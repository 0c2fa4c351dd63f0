#include "csg/polygon_mesh.h"

#include "csg/box_tree.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <iterator>
#include <numeric>
#include <tuple>

namespace quarvel {

namespace {

/// The points that were kept, by the cell of space that they lie in.
class PointGrid {
 public:
  PointGrid(double distance, std::size_t points)
      : distance_(distance), cellSize_(std::max(distance * 32, 1e-6)), first_(std::bit_ceil(points / 2 + 1), none) {
    Kept.reserve(points / 2);
    next_.reserve(points / 2);
  }

  /// The number of a kept point that is near enough, else of the new one.
  std::uint32_t Keep(const Vector3& point) {
    const std::size_t own = PlaceOf(point);
    std::uint32_t found = FindIn(own, point);
    const Vector3 reach{distance_, distance_, distance_};
    const Vector3 low = SubtractVector(point, reach), high = AddVector(point, reach);
    for (int corner = 0; corner < 8 && found == none; ++corner) {
      const std::size_t place =
          PlaceOf({corner & 1 ? low.X : high.X, corner & 2 ? low.Y : high.Y, corner & 4 ? low.Z : high.Z});
      if (place != own) found = FindIn(place, point);
    }
    if (found != none) return found;
    const auto number = static_cast<std::uint32_t>(Kept.size());
    Kept.push_back(point);
    next_.push_back(first_[own]);
    first_[own] = number;
    return number;
  }

  std::vector<Vector3> Kept;

 private:
  static constexpr std::uint32_t none = 0xffffffff;

  /// Cells may share a place.
  std::size_t PlaceOf(const Vector3& p) const {
    const auto cell = [&](double value) {
      return static_cast<std::uint64_t>(static_cast<std::int64_t>(std::floor(value / cellSize_)));
    };
    const std::uint64_t hash =
        (cell(p.X) * 0x9e3779b97f4a7c15ULL) ^ (cell(p.Y) * 0xc2b2ae3d27d4eb4fULL) ^ (cell(p.Z) * 0x165667b19e3779f9ULL);
    return static_cast<std::size_t>((hash ^ (hash >> 32)) & (first_.size() - 1));
  }

  std::uint32_t FindIn(std::size_t place, const Vector3& point) const {
    for (std::uint32_t number = first_[place]; number != none; number = next_[number])
      if (const Vector3 apart = SubtractVector(Kept[number], point); DotProduct(apart, apart) <= distance_ * distance_)
        return number;
    return none;
  }

  double distance_, cellSize_;
  std::vector<std::uint32_t> first_, next_; ///< a point of each place, and the next of the same place
};

/// A corner that starts an edge.
struct EdgeUse {
  std::uint64_t Ends;   ///< the numbers of both, the lower one first
  std::uint32_t Corner; ///< where it stands in the corners of the mesh
  std::uint32_t Low() const { return static_cast<std::uint32_t>(Ends >> 32); }
  std::uint32_t High() const { return static_cast<std::uint32_t>(Ends); }
  bool operator<(const EdgeUse& other) const { return Ends != other.Ends ? Ends < other.Ends : Corner < other.Corner; }
};

/// The edges of the polygons for which `counts` is true, in order. Sorted by their lower ends first, since those are as
/// many as the points.
template <typename Counts>
std::vector<EdgeUse> ListEdges(const PolygonMesh& mesh, Counts counts) {
  const auto forEach = [&](auto take) {
    for (std::size_t polygon = 0; polygon < mesh.Count(); ++polygon) {
      if (!counts(polygon)) continue;
      const std::span<const std::uint32_t> corners = mesh.CornersOf(polygon);
      for (std::size_t i = 0; i < corners.size(); ++i) {
        const std::uint32_t from = corners[i], to = corners[i + 1 == corners.size() ? 0 : i + 1];
        take(EdgeUse{(std::uint64_t{std::min(from, to)} << 32) | std::max(from, to),
                     mesh.Starts[polygon] + static_cast<std::uint32_t>(i)});
      }
    }
  };
  std::vector<std::uint32_t> firstOf(mesh.Points.size() + 1);
  forEach([&](const EdgeUse& use) { ++firstOf[use.Low() + 1]; });
  std::partial_sum(firstOf.begin(), firstOf.end(), firstOf.begin());
  std::vector<EdgeUse> edges(firstOf.back());
  std::vector<std::uint32_t> next(firstOf.begin(), firstOf.end() - 1);
  forEach([&](const EdgeUse& use) { edges[next[use.Low()]++] = use; });
  for (std::size_t point = 0; point + 1 < firstOf.size(); ++point)
    std::sort(edges.begin() + firstOf[point], edges.begin() + firstOf[point + 1]);
  return edges;
}

/// Calls `take` with each edge and its uses: the first, and behind the last.
template <typename Take>
void ForEachEdge(const std::vector<EdgeUse>& uses, Take take) {
  for (std::size_t first = 0; first < uses.size();) {
    std::size_t end = first;
    while (end < uses.size() && uses[end].Ends == uses[first].Ends)
      ++end;
    if (uses[first].Low() != uses[first].High()) take(first, end);
    first = end;
  }
}

/// How much more often an edge is run through upward than downward.
int BalanceOf(const PolygonMesh& mesh, const std::vector<EdgeUse>& uses, std::size_t first, std::size_t end) {
  int balance = 0;
  for (std::size_t i = first; i < end; ++i)
    balance += mesh.Corners[uses[i].Corner] == uses[i].Low() ? 1 : -1;
  return balance;
}

/// Finds the points that lie on an edge.
class EdgeSplitter {
 public:
  /// Only the points of `numbers` are looked at.
  EdgeSplitter(const std::vector<Vector3>& points, std::vector<std::uint32_t> numbers, double distance)
      : points_(points), numbers_(std::move(numbers)), tree_(BoxesOf(points, numbers_)), distance_(distance) {}

  /// Appends the points between the two, from the first to the second.
  void Split(std::uint32_t from, std::uint32_t to, std::vector<std::uint32_t>& between, int depth = 0) const {
    std::vector<OnEdge> found;
    const double farthest = Find(from, to, found);
    std::sort(found.begin(), found.end(), [](const OnEdge& a, const OnEdge& b) { return a.Along < b.Along; });
    // The parts run off the line a little, so that other points can be near to them.
    const bool again = farthest > distance_ / 100 && depth < 8;
    std::uint32_t start = from;
    for (const OnEdge& point : found) {
      if (again) Split(start, point.Number, between, depth + 1);
      between.push_back(point.Number);
      start = point.Number;
    }
    if (again) Split(start, to, between, depth + 1);
  }

 private:
  struct OnEdge {
    double Along;
    std::uint32_t Number;
  };

  static std::vector<Bounds3> BoxesOf(const std::vector<Vector3>& points, const std::vector<std::uint32_t>& numbers) {
    std::vector<Bounds3> boxes;
    boxes.reserve(numbers.size());
    for (const std::uint32_t number : numbers)
      boxes.push_back({points[number], points[number]});
    return boxes;
  }

  /// Returns how far the farthest of them is off the edge.
  double Find(std::uint32_t from, std::uint32_t to, std::vector<OnEdge>& found) const {
    const Vector3 start = points_[from], edge = SubtractVector(points_[to], start);
    const double length = VectorLength(edge);
    if (length == 0) return 0;
    const Vector3 direction = ScaleVector(edge, 1 / length);
    const auto invert = [](double part) { return std::fabs(part) < 1e-12 ? 1e12 : 1 / part; };
    const Vector3 slowness{invert(direction.X), invert(direction.Y), invert(direction.Z)};
    double farthest = 0;
    tree_.Search([&](const Bounds3& box) { return MeetsLine(box, start, slowness, length); },
                 [&](std::uint32_t place) {
                   const std::uint32_t number = numbers_[place];
                   if (number == from || number == to) return;
                   const Vector3 offset = SubtractVector(points_[number], start);
                   const double along = DotProduct(offset, direction);
                   if (along <= 0 || along >= length) return;
                   const double off = VectorLength(SubtractVector(offset, ScaleVector(direction, along)));
                   if (off > distance_) return;
                   farthest = std::max(farthest, off);
                   found.push_back({along, number});
                 });
    return farthest;
  }

  /// Whether the line passes through the box or near to it. `slowness` is one over its direction.
  bool MeetsLine(const Bounds3& box, const Vector3& start, const Vector3& slowness, double length) const {
    double enter = 0, leave = length;
    for (double Vector3::*const axis : {&Vector3::X, &Vector3::Y, &Vector3::Z}) {
      const double a = (box.Min.*axis - distance_ - start.*axis) * slowness.*axis;
      const double b = (box.Max.*axis + distance_ - start.*axis) * slowness.*axis;
      enter = std::max(enter, std::min(a, b));
      leave = std::min(leave, std::max(a, b));
    }
    return enter <= leave;
  }

  const std::vector<Vector3>& points_;
  std::vector<std::uint32_t> numbers_;
  BoxTree tree_;
  double distance_;
};

/// Takes out corners that repeat, and edges that run there and straight back.
void RemoveSpikes(std::vector<std::uint32_t>& corners) {
  for (std::size_t i = 0; corners.size() > 2 && i < corners.size();) {
    const std::size_t count = corners.size(), next = (i + 1) % count, after = (i + 2) % count;
    if (corners[i] == corners[next])
      corners.erase(corners.begin() + static_cast<std::ptrdiff_t>(next));
    else if (corners[i] == corners[after]) {
      corners.erase(corners.begin() + static_cast<std::ptrdiff_t>(std::max(next, after)));
      corners.erase(corners.begin() + static_cast<std::ptrdiff_t>(std::min(next, after)));
    } else {
      ++i;
      continue;
    }
    i = i < 2 ? 0 : i - 2;
  }
  if (corners.size() < 3) corners.clear();
}

/// Whether two polygons share an edge, so that neither has a need of a corner on it. `first` and `end` are its uses, in
/// the order of the corners; the polygons that enclose the empty space share edges only among themselves.
bool IsShared(const PolygonMesh& mesh, const std::vector<EdgeUse>& uses, std::size_t first, std::size_t end,
              std::size_t enclosing) {
  const std::uint32_t enclosingEnd = mesh.Starts[enclosing];
  std::size_t counted = first;
  while (counted < end && uses[counted].Corner < enclosingEnd)
    ++counted;
  if (counted == first) counted = end;
  return counted - first == 2 && BalanceOf(mesh, uses, first, counted) == 0;
}

/// The corners that other edges may need: those that end an edge that is not shared.
template <typename Shared>
std::vector<std::uint32_t> EndsOfOtherEdges(std::size_t points, const std::vector<EdgeUse>& uses, Shared isShared) {
  std::vector<bool> endsEdge(points);
  ForEachEdge(uses, [&](std::size_t first, std::size_t end) {
    if (!isShared(first, end)) endsEdge[uses[first].Low()] = endsEdge[uses[first].High()] = true;
  });
  std::vector<std::uint32_t> ends;
  for (std::uint32_t point = 0; point < endsEdge.size(); ++point)
    if (endsEdge[point]) ends.push_back(point);
  return ends;
}

/// The points that the edges of a mesh get between their ends, from the end of the lower number on.
struct AddedPoints {
  std::vector<std::uint32_t> Points;
  std::vector<std::uint32_t> First, End; ///< by the corner that the edge begins at
};

template <typename Shared>
AddedPoints PointsOnEdges(const PolygonMesh& mesh, const std::vector<EdgeUse>& uses, const EdgeSplitter& splitter,
                          Shared isShared) {
  AddedPoints added;
  added.First.resize(mesh.Corners.size());
  added.End.resize(mesh.Corners.size());
  ForEachEdge(uses, [&](std::size_t first, std::size_t end) {
    if (isShared(first, end)) return;
    const auto start = static_cast<std::uint32_t>(added.Points.size());
    splitter.Split(uses[first].Low(), uses[first].High(), added.Points);
    for (std::size_t i = first; i < end; ++i) {
      added.First[uses[i].Corner] = start;
      added.End[uses[i].Corner] = static_cast<std::uint32_t>(added.Points.size());
    }
  });
  return added;
}

void AddPoints(PolygonMesh& mesh, const AddedPoints& added) {
  PolygonMesh split;
  split.Corners.reserve(mesh.Corners.size() + added.Points.size());
  split.Starts.reserve(mesh.Starts.size());
  std::vector<std::uint32_t> corners;
  for (std::size_t polygon = 0; polygon < mesh.Count(); ++polygon) {
    corners.clear();
    for (std::uint32_t at = mesh.Starts[polygon]; at < mesh.Starts[polygon + 1]; ++at) {
      const std::uint32_t next = at + 1 == mesh.Starts[polygon + 1] ? mesh.Starts[polygon] : at + 1;
      corners.push_back(mesh.Corners[at]);
      const auto begin = added.Points.begin() + added.First[at], end = added.Points.begin() + added.End[at];
      if (mesh.Corners[at] < mesh.Corners[next])
        corners.insert(corners.end(), begin, end);
      else
        corners.insert(corners.end(), std::make_reverse_iterator(end), std::make_reverse_iterator(begin));
    }
    RemoveSpikes(corners);
    split.Corners.insert(split.Corners.end(), corners.begin(), corners.end());
    split.Starts.push_back(static_cast<std::uint32_t>(split.Corners.size()));
  }
  mesh.Corners = std::move(split.Corners);
  mesh.Starts = std::move(split.Starts);
}

void SplitEdges(PolygonMesh& mesh, double distance, std::size_t enclosing) {
  const std::vector<EdgeUse> uses = ListEdges(mesh, [](std::size_t) { return true; });
  const auto isShared = [&](std::size_t first, std::size_t end) { return IsShared(mesh, uses, first, end, enclosing); };
  const EdgeSplitter splitter(mesh.Points, EndsOfOtherEdges(mesh.Points.size(), uses, isShared), distance);
  AddPoints(mesh, PointsOnEdges(mesh, uses, splitter, isShared));
}

} // namespace

void UnitePoints(PolygonMesh& mesh, double distance) {
  PointGrid grid(distance, mesh.Points.size());
  std::vector<std::uint32_t> newNumber;
  newNumber.reserve(mesh.Points.size());
  for (const Vector3& point : mesh.Points)
    newNumber.push_back(grid.Keep(point));
  for (std::uint32_t& corner : mesh.Corners)
    corner = newNumber[corner];
  mesh.Points = std::move(grid.Kept);
}

void WeldMesh(PolygonMesh& mesh, double distance, std::size_t enclosing) {
  UnitePoints(mesh, distance);
  SplitEdges(mesh, distance, enclosing);
}

std::vector<Vector3> PointsOf(const PolygonMesh& mesh, std::size_t polygon) {
  std::vector<Vector3> points;
  points.reserve(mesh.CornersOf(polygon).size());
  for (const std::uint32_t corner : mesh.CornersOf(polygon))
    points.push_back(mesh.Points[corner]);
  return points;
}

std::vector<OpenEdge> FindOpenEdges(const PolygonMesh& mesh, const std::function<bool(std::size_t)>& counts) {
  const std::vector<EdgeUse> uses = ListEdges(mesh, counts);
  std::vector<OpenEdge> open;
  ForEachEdge(uses, [&](std::size_t first, std::size_t end) {
    const int balance = BalanceOf(mesh, uses, first, end);
    if (balance == 0) return;
    const std::uint32_t from = balance > 0 ? uses[first].Low() : uses[first].High();
    const std::uint32_t to = balance > 0 ? uses[first].High() : uses[first].Low();
    while (mesh.Corners[uses[first].Corner] != from)
      ++first;
    const auto polygon =
        std::upper_bound(mesh.Starts.begin(), mesh.Starts.end(), uses[first].Corner) - mesh.Starts.begin();
    open.push_back({static_cast<std::uint32_t>(polygon - 1), from, to});
  });
  return open;
}

} // namespace quarvel
