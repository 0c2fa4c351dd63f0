#include "csg/polygon.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace quarvel {

namespace {

/// Twice the area of a triangle as seen from the normal's side; negative when it runs clockwise.
double TurnAt(const Vector3& before, const Vector3& at, const Vector3& after, const Vector3& normal) {
  return DotProduct(CrossProduct(SubtractVector(at, before), SubtractVector(after, at)), normal);
}

/// How much a corner may turn the wrong way, as a distance off the line of its neighbours.
bool TurnsInward(const Vector3& before, const Vector3& at, const Vector3& after, const Vector3& normal) {
  return TurnAt(before, at, after, normal) < -PlaneTolerance * VectorLength(SubtractVector(after, before));
}

bool IsConvex(std::span<const Vector3> points, const Vector3& normal) {
  const std::size_t count = points.size();
  for (std::size_t i = 0; i < count; ++i)
    if (TurnsInward(points[i], points[(i + 1) % count], points[(i + 2) % count], normal)) return false;
  return true;
}

/// True when the corner lies on the line of its neighbours.
bool RunsStraight(const Vector3& before, const Vector3& at, const Vector3& after, const Vector3& normal) {
  return std::fabs(TurnAt(before, at, after, normal)) < 0.0001 * VectorLength(SubtractVector(after, before));
}

bool IsInTriangle(const Vector3& p, const Vector3& a, const Vector3& b, const Vector3& c, const Vector3& normal) {
  return TurnAt(a, b, p, normal) >= 0 && TurnAt(b, c, p, normal) >= 0 && TurnAt(c, a, p, normal) >= 0;
}

/// True when the corner can be cut off: it turns outward, and no other corner lies in the triangle.
bool IsEar(std::span<const Vector3> points, std::size_t at, const Vector3& normal) {
  const std::size_t count = points.size();
  const Vector3 &before = points[(at + count - 1) % count], &corner = points[at], &after = points[(at + 1) % count];
  if (TurnAt(before, corner, after, normal) <= 0) return false;
  return std::none_of(points.begin(), points.end(), [&](const Vector3& p) {
    return !(p == before) && !(p == corner) && !(p == after) && IsInTriangle(p, before, corner, after, normal);
  });
}

/// Takes corners from the polygon for as long as what they span with the first of them is convex and holds no other
/// corner.
std::vector<Vector3> CutConvexPart(std::vector<Vector3>& points, const Vector3& normal) {
  for (std::size_t at = 0; at < points.size(); ++at) {
    if (!IsEar(points, at, normal)) continue;
    const std::size_t count = points.size();
    std::vector<Vector3> part{points[(at + count - 1) % count], points[at], points[(at + 1) % count]};
    points.erase(points.begin() + static_cast<std::ptrdiff_t>(at));
    return part;
  }
  // No ear: the polygon crosses itself.
  std::vector<Vector3> rest;
  rest.swap(points);
  return rest;
}

} // namespace

Vector3 NewellVector(std::span<const Vector3> points) {
  Vector3 sum;
  if (points.empty()) return sum;
  const Vector3 origin = points.front();
  for (std::size_t i = 1; i + 1 < points.size(); ++i)
    sum = AddVector(sum, CrossProduct(SubtractVector(points[i], origin), SubtractVector(points[i + 1], origin)));
  return sum;
}

Plane3 PlaneOfPolygon(std::span<const Vector3> points) {
  Plane3 plane{NormalizeVector(NewellVector(points)), 0};
  for (const Vector3& point : points)
    plane.Distance += DotProduct(plane.Normal, point) / static_cast<double>(points.size());
  return plane;
}

double AreaOfPolygon(std::span<const Vector3> points) { return VectorLength(NewellVector(points)) / 2; }

std::vector<Vector3> JoinAlongEdge(std::span<const Vector3> a, std::span<const Vector3> b, const Vector3& normal) {
  for (std::size_t i = 0; i < a.size(); ++i) {
    const std::size_t next = i + 1 == a.size() ? 0 : i + 1;
    const auto from = std::find(b.begin(), b.end(), a[next]);
    if (from == b.end()) continue;
    const auto start = static_cast<std::size_t>(from - b.begin());
    if (!(b[start + 1 == b.size() ? 0 : start + 1] == a[i])) continue;
    // From the edge's end round the first polygon to its start, and on round the second.
    std::vector<Vector3> joined;
    joined.reserve(a.size() + b.size() - 2);
    for (std::size_t k = 0; k < a.size(); ++k)
      joined.push_back(a[(next + k) % a.size()]);
    for (std::size_t k = 2; k < b.size(); ++k)
      joined.push_back(b[(start + k) % b.size()]);
    const std::size_t seam = a.size() - 1;
    if (RunsStraight(joined[seam - 1], joined[seam], joined[(seam + 1) % joined.size()], normal))
      joined.erase(joined.begin() + static_cast<std::ptrdiff_t>(seam));
    if (RunsStraight(joined.back(), joined[0], joined[1], normal)) joined.erase(joined.begin());
    return IsConvex(joined, normal) ? joined : std::vector<Vector3>();
  }
  return {};
}

std::vector<std::vector<Vector3>> ConvexParts(std::vector<Vector3> points, const Plane3& plane) {
  if (IsConvex(points, plane.Normal)) return {std::move(points)};
  std::vector<std::vector<Vector3>> parts;
  while (points.size() > 2) {
    std::vector<Vector3> part = CutConvexPart(points, plane.Normal);
    if (!parts.empty())
      if (std::vector<Vector3> joined = JoinAlongEdge(parts.back(), part, plane.Normal); !joined.empty()) {
        parts.back() = std::move(joined);
        continue;
      }
    parts.push_back(std::move(part));
  }
  return parts;
}

PieceStore::Piece PieceStore::Add(std::span<const Vector3> points) {
  const auto first = static_cast<std::uint32_t>(points_.size());
  points_.insert(points_.end(), points.begin(), points.end());
  return {first, static_cast<std::uint32_t>(points.size())};
}

PieceStore::Side PieceStore::SideOf(Piece piece, const Plane3& plane) {
  distances_.resize(piece.Count);
  double farthest = 0, nearest = 0, sum = 0;
  const std::span<const Vector3> points = Points(piece);
  for (std::size_t i = 0; i < points.size(); ++i) {
    const double distance = distances_[i] = DistanceFrom(plane, points[i]);
    farthest = std::max(farthest, distance);
    nearest = std::min(nearest, distance);
    sum += distance;
  }
  if (farthest > tolerance_) return nearest < -tolerance_ ? Side::Both : Side::Front;
  if (nearest < -tolerance_) return Side::Back;
  // Narrower than the tolerance and standing on the plane, it lies in it only by its size.
  const Vector3 normal = NewellVector(points);
  if (std::fabs(DotProduct(normal, plane.Normal)) > 0.7 * VectorLength(normal)) return Side::On;
  return sum > 0 ? Side::Front : Side::Back;
}

std::pair<PieceStore::Piece, PieceStore::Piece> PieceStore::Split(Piece piece) {
  Piece parts[2];
  for (const bool front : {true, false}) {
    Piece& part = parts[front ? 0 : 1];
    part.First = static_cast<std::uint32_t>(points_.size());
    for (std::size_t i = 0; i < piece.Count; ++i) {
      const std::size_t next = i + 1 == piece.Count ? 0 : i + 1;
      const double here = distances_[i], there = distances_[next];
      const Vector3 a = points_[piece.First + i], b = points_[piece.First + next];
      if (front ? here >= -tolerance_ : here <= tolerance_) points_.push_back(a);
      if ((here > tolerance_ && there < -tolerance_) || (here < -tolerance_ && there > tolerance_)) {
        // Always from the front to the back: both faces of an edge get the same point.
        const auto [from, to, start, end] = here > 0 ? std::tuple(a, b, here, there) : std::tuple(b, a, there, here);
        points_.push_back(AddVector(from, ScaleVector(SubtractVector(to, from), start / (start - end))));
      }
    }
    part.Count = static_cast<std::uint32_t>(points_.size()) - part.First;
  }
  return {parts[0], parts[1]};
}

} // namespace quarvel
