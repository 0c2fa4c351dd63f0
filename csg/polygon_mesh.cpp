#include "csg/polygon_mesh.h"

#include "csg/box_tree.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <tuple>
#include <unordered_map>

namespace quarvel {

namespace {

/// A place for each of the points that were kept, by the cell of space that it lies in.
class PointGrid {
 public:
  explicit PointGrid(double distance) : distance_(distance), cellSize_(std::max(distance * 8, 1e-6)) {}

  /// The number of a kept point that is near enough, else of the new one.
  std::uint32_t Keep(const Vector3& point, std::vector<Vector3>& kept) {
    const std::uint64_t own = CellOf(point);
    std::uint32_t found = FindIn(own, point, kept);
    const Vector3 reach{distance_, distance_, distance_};
    const Vector3 low = SubtractVector(point, reach), high = AddVector(point, reach);
    for (int corner = 0; corner < 8 && found == none; ++corner) {
      const std::uint64_t cell =
          CellOf({corner & 1 ? low.X : high.X, corner & 2 ? low.Y : high.Y, corner & 4 ? low.Z : high.Z});
      if (cell != own) found = FindIn(cell, point, kept);
    }
    if (found != none) return found;
    const auto number = static_cast<std::uint32_t>(kept.size());
    kept.push_back(point);
    const auto [at, isNew] = first_.try_emplace(own, number);
    next_.push_back(isNew ? none : at->second);
    at->second = number;
    return number;
  }

 private:
  static constexpr std::uint32_t none = 0xffffffff;

  std::uint64_t CellOf(const Vector3& p) const {
    const auto cell = [&](double value) {
      return static_cast<std::uint64_t>(static_cast<std::int64_t>(std::floor(value / cellSize_)));
    };
    return (cell(p.X) * 0x9e3779b97f4a7c15ULL) ^ (cell(p.Y) * 0xc2b2ae3d27d4eb4fULL) ^
           (cell(p.Z) * 0x165667b19e3779f9ULL);
  }

  std::uint32_t FindIn(std::uint64_t cell, const Vector3& point, const std::vector<Vector3>& kept) const {
    const auto at = first_.find(cell);
    if (at == first_.end()) return none;
    for (std::uint32_t number = at->second; number != none; number = next_[number])
      if (const Vector3 apart = SubtractVector(kept[number], point); DotProduct(apart, apart) <= distance_ * distance_)
        return number;
    return none;
  }

  double distance_, cellSize_;
  std::unordered_map<std::uint64_t, std::uint32_t> first_; ///< a point of each cell
  std::vector<std::uint32_t> next_;                        ///< the next of the same cell
};

/// Both directions of an edge, and each corner that starts one.
struct EdgeUse {
  std::uint32_t Low, High; ///< its ends
  std::uint32_t Corner;    ///< where it starts in the corners of the mesh
  bool operator<(const EdgeUse& other) const {
    return std::tie(Low, High, Corner) < std::tie(other.Low, other.High, other.Corner);
  }
};

template <typename Counts>
std::vector<EdgeUse> ListEdges(const PolygonMesh& mesh, Counts counts) {
  std::vector<EdgeUse> edges;
  edges.reserve(mesh.Corners.size());
  for (std::size_t polygon = 0; polygon < mesh.Count(); ++polygon) {
    if (!counts(polygon)) continue;
    const std::span<const std::uint32_t> corners = mesh.CornersOf(polygon);
    for (std::size_t i = 0; i < corners.size(); ++i) {
      const std::uint32_t from = corners[i], to = corners[i + 1 == corners.size() ? 0 : i + 1];
      edges.push_back({std::min(from, to), std::max(from, to), mesh.Starts[polygon] + static_cast<std::uint32_t>(i)});
    }
  }
  std::sort(edges.begin(), edges.end());
  return edges;
}

/// Finds the points that lie on an edge.
class EdgeSplitter {
 public:
  EdgeSplitter(const std::vector<Vector3>& points, double distance)
      : points_(points), tree_(BoxesOf(points)), distance_(distance) {}

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

  static std::vector<Bounds3> BoxesOf(const std::vector<Vector3>& points) {
    std::vector<Bounds3> boxes;
    boxes.reserve(points.size());
    for (const Vector3& point : points)
      boxes.push_back({point, point});
    return boxes;
  }

  /// Returns how far the farthest of them is off the edge.
  double Find(std::uint32_t from, std::uint32_t to, std::vector<OnEdge>& found) const {
    const Vector3 start = points_[from], edge = SubtractVector(points_[to], start);
    const double length = VectorLength(edge);
    if (length == 0) return 0;
    const Vector3 direction = ScaleVector(edge, 1 / length);
    double farthest = 0;
    tree_.Search([&](const Bounds3& box) { return MeetsLine(box, start, direction, length); },
                 [&](std::uint32_t number) {
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

  bool MeetsLine(const Bounds3& box, const Vector3& start, const Vector3& direction, double length) const {
    double enter = 0, leave = length;
    for (double Vector3::*const axis : {&Vector3::X, &Vector3::Y, &Vector3::Z}) {
      const double low = box.Min.*axis - distance_ - start.*axis, high = box.Max.*axis + distance_ - start.*axis;
      const double slope = direction.*axis;
      if (std::fabs(slope) < 1e-12) {
        if (low > 0 || high < 0) return false;
        continue;
      }
      enter = std::max(enter, std::min(low / slope, high / slope));
      leave = std::min(leave, std::max(low / slope, high / slope));
    }
    return enter <= leave;
  }

  const std::vector<Vector3>& points_;
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

} // namespace

void UnitePoints(PolygonMesh& mesh, double distance) {
  PointGrid grid(distance);
  std::vector<Vector3> kept;
  std::vector<std::uint32_t> newNumber;
  newNumber.reserve(mesh.Points.size());
  for (const Vector3& point : mesh.Points)
    newNumber.push_back(grid.Keep(point, kept));
  for (std::uint32_t& corner : mesh.Corners)
    corner = newNumber[corner];
  mesh.Points = std::move(kept);
}

void SplitEdges(PolygonMesh& mesh, double distance) {
  const std::vector<EdgeUse> edges = ListEdges(mesh, [](std::size_t) { return true; });
  const EdgeSplitter splitter(mesh.Points, distance);
  std::vector<std::uint32_t> between, firstOf(mesh.Corners.size()), endOf(mesh.Corners.size());
  for (std::size_t i = 0; i < edges.size();) {
    const EdgeUse& edge = edges[i];
    const auto first = static_cast<std::uint32_t>(between.size());
    if (edge.Low != edge.High) splitter.Split(edge.Low, edge.High, between);
    for (; i < edges.size() && edges[i].Low == edge.Low && edges[i].High == edge.High; ++i) {
      firstOf[edges[i].Corner] = first;
      endOf[edges[i].Corner] = static_cast<std::uint32_t>(between.size());
    }
  }

  PolygonMesh split;
  split.Corners.reserve(mesh.Corners.size() + between.size());
  split.Starts.reserve(mesh.Starts.size());
  std::vector<std::uint32_t> corners;
  for (std::size_t polygon = 0; polygon < mesh.Count(); ++polygon) {
    corners.clear();
    for (std::uint32_t at = mesh.Starts[polygon]; at < mesh.Starts[polygon + 1]; ++at) {
      const std::uint32_t next = at + 1 == mesh.Starts[polygon + 1] ? mesh.Starts[polygon] : at + 1;
      corners.push_back(mesh.Corners[at]);
      const auto begin = between.begin() + firstOf[at], end = between.begin() + endOf[at];
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

void WeldMesh(PolygonMesh& mesh, double distance) {
  UnitePoints(mesh, distance);
  SplitEdges(mesh, distance);
}

std::vector<Vector3> PointsOf(const PolygonMesh& mesh, std::size_t polygon) {
  std::vector<Vector3> points;
  points.reserve(mesh.CornersOf(polygon).size());
  for (const std::uint32_t corner : mesh.CornersOf(polygon))
    points.push_back(mesh.Points[corner]);
  return points;
}

std::vector<OpenEdge> FindOpenEdges(const PolygonMesh& mesh, const std::function<bool(std::size_t)>& counts) {
  const std::vector<EdgeUse> edges = ListEdges(mesh, counts);
  std::vector<OpenEdge> open;
  for (std::size_t i = 0; i < edges.size();) {
    const EdgeUse& edge = edges[i];
    int balance = 0;
    std::uint32_t forth = edge.Corner, back = edge.Corner;
    for (; i < edges.size() && edges[i].Low == edge.Low && edges[i].High == edge.High; ++i) {
      const bool upward = mesh.Corners[edges[i].Corner] == edge.Low;
      balance += upward ? 1 : -1;
      (upward ? forth : back) = edges[i].Corner;
    }
    if (balance == 0 || edge.Low == edge.High) continue;
    const std::uint32_t corner = balance > 0 ? forth : back;
    const auto polygon = std::upper_bound(mesh.Starts.begin(), mesh.Starts.end(), corner) - mesh.Starts.begin();
    open.push_back({static_cast<std::uint32_t>(polygon - 1), balance > 0 ? edge.Low : edge.High,
                    balance > 0 ? edge.High : edge.Low});
  }
  return open;
}

} // namespace quarvel
