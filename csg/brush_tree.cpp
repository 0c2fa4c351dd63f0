#include "csg/brush_tree.h"

#include <algorithm>
#include <limits>

namespace quarvel {

namespace {

using Piece = PieceStore::Piece;
using Side = PieceStore::Side;

/// A tree of more levels than this is one that rounding keeps from ending.
constexpr int deepest = 2000;
/// How many planes are tried as the next node of a tree.
constexpr std::size_t planesTried = 24;

bool IsBehind(const Plane3& plane, const FlatFace& face, double tolerance) {
  return std::all_of(face.Points.begin(), face.Points.end(),
                     [&](const Vector3& point) { return DistanceFrom(plane, point) <= tolerance; });
}

bool LiesIn(const Plane3& plane, const FlatFace& face, double tolerance) {
  return IsBehind(plane, face, tolerance) && IsBehind(FlipPlane(plane), face, tolerance);
}

/// The plane that cuts fewest of the others and halves them best.
Plane3 ChoosePlane(PieceStore& store, const std::vector<Piece>& pieces) {
  Plane3 best;
  std::size_t bestCost = std::numeric_limits<std::size_t>::max();
  const std::size_t step = std::max<std::size_t>(1, pieces.size() / planesTried);
  for (std::size_t i = 0; i < pieces.size(); i += step) {
    const Plane3 plane = PlaneOfPolygon(store.Points(pieces[i]));
    std::size_t front = 0, back = 0, cut = 0;
    for (const Piece& piece : pieces) {
      const Side side = store.SideOf(piece, plane);
      front += side == Side::Front;
      back += side == Side::Back;
      cut += side == Side::Both;
    }
    const std::size_t cost = cut * 8 + (front > back ? front - back : back - front);
    if (cost < bestCost) {
      bestCost = cost;
      best = plane;
    }
  }
  return best;
}

} // namespace

BrushTree::BrushTree(const std::vector<FlatFace>& faces, double tolerance) {
  isConvex_ = std::all_of(faces.begin(), faces.end(), [&](const FlatFace& face) {
    return std::all_of(faces.begin(), faces.end(),
                       [&](const FlatFace& other) { return IsBehind(face.Plane, other, tolerance); });
  });
  if (isConvex_) {
    BuildConvex(faces, tolerance);
    return;
  }
  PieceStore store(tolerance);
  std::vector<Piece> pieces;
  for (const FlatFace& face : faces)
    pieces.push_back(store.Add(face.Points));
  Build(store, std::move(pieces), Outside, 0);
}

void BrushTree::BuildConvex(const std::vector<FlatFace>& faces, double tolerance) {
  for (const FlatFace& face : faces) {
    const bool known = std::any_of(nodes_.begin(), nodes_.end(),
                                   [&](const Node& node) { return LiesIn(node.Plane, face, tolerance); });
    if (known) continue;
    if (!nodes_.empty()) nodes_.back().Back = static_cast<std::int32_t>(nodes_.size());
    nodes_.push_back({face.Plane});
  }
}

std::int32_t BrushTree::Build(PieceStore& store, std::vector<Piece> pieces, std::int32_t leaf, int depth) {
  if (pieces.empty() || depth > deepest) return leaf;
  const Plane3 plane = ChoosePlane(store, pieces);
  std::vector<Piece> front, back;
  for (const Piece& piece : pieces) {
    switch (store.SideOf(piece, plane)) {
    case Side::Front:
      front.push_back(piece);
      break;
    case Side::Back:
      back.push_back(piece);
      break;
    case Side::Both: {
      const auto [before, behind] = store.Split(piece);
      front.push_back(before);
      back.push_back(behind);
      break;
    }
    case Side::On:
      break;
    }
  }
  if (front.size() == pieces.size() || back.size() == pieces.size()) return leaf;
  const auto at = nodes_.size();
  nodes_.push_back({plane});
  const std::int32_t inFront = Build(store, std::move(front), Outside, depth + 1);
  const std::int32_t behind = Build(store, std::move(back), Inside, depth + 1);
  nodes_[at].Front = inFront;
  nodes_[at].Back = behind;
  return static_cast<std::int32_t>(at);
}

bool BrushTree::Contains(const Vector3& point) const {
  std::int32_t at = nodes_.empty() ? Outside : 0;
  while (at >= 0) {
    const Node& node = nodes_[static_cast<std::size_t>(at)];
    at = DistanceFrom(node.Plane, point) > 0 ? node.Front : node.Back;
  }
  return at == Inside;
}

bool BrushTree::MissesConvex(const PieceStore& store, Piece piece) const {
  const std::span<const Vector3> points = store.Points(piece);
  return std::any_of(nodes_.begin(), nodes_.end(), [&](const Node& node) {
    return std::all_of(points.begin(), points.end(),
                       [&](const Vector3& point) { return DistanceFrom(node.Plane, point) > PlaneTolerance; });
  });
}

void BrushTree::Clip(PieceStore& store, Piece piece, const Vector3& normal, unsigned asked,
                     std::vector<ClippedPiece>& parts) const {
  if (nodes_.empty() || (isConvex_ && MissesConvex(store, piece))) {
    parts.push_back({piece, NoSide});
    return;
  }
  const std::size_t start = parts.size();
  ClipFrom(0, store, piece, normal, asked, parts);
  const unsigned first = parts[start].Contained;
  const bool allSame = std::all_of(parts.begin() + static_cast<std::ptrdiff_t>(start), parts.end(),
                                   [&](const ClippedPiece& part) { return part.Contained == first; });
  if (!allSame) return;
  parts.resize(start);
  parts.push_back({piece, first});
}

void BrushTree::ClipFrom(std::int32_t at, PieceStore& store, Piece piece, const Vector3& normal, unsigned asked,
                         std::vector<ClippedPiece>& parts) const {
  while (at >= 0) {
    const Node& node = nodes_[static_cast<std::size_t>(at)];
    switch (store.SideOf(piece, node.Plane)) {
    case Side::Front:
      at = node.Front;
      break;
    case Side::Back:
      at = node.Back;
      break;
    case Side::On:
      ClipInPlane(node, store, piece, normal, asked, parts);
      return;
    case Side::Both: {
      const auto [front, back] = store.Split(piece);
      ClipFrom(node.Front, store, front, normal, asked, parts);
      piece = back;
      at = node.Back;
      break;
    }
    }
  }
  parts.push_back({piece, at == Inside ? asked : NoSide});
}

void BrushTree::ClipInPlane(const Node& node, PieceStore& store, Piece piece, const Vector3& normal, unsigned asked,
                            std::vector<ClippedPiece>& parts) const {
  const bool sameWay = DotProduct(normal, node.Plane.Normal) > 0;
  const unsigned sideInFront = asked & (sameWay ? FrontSide : BackSide);
  const unsigned sideBehind = asked & (sameWay ? BackSide : FrontSide);
  if (sideInFront == NoSide || sideBehind == NoSide) {
    ClipFrom(sideInFront != NoSide ? node.Front : node.Back, store, piece, normal, asked, parts);
    return;
  }
  std::vector<ClippedPiece> inFront;
  ClipFrom(node.Front, store, piece, normal, sideInFront, inFront);
  for (const ClippedPiece& part : inFront) {
    const std::size_t start = parts.size();
    ClipFrom(node.Back, store, part.Piece, normal, sideBehind, parts);
    for (std::size_t i = start; i < parts.size(); ++i)
      parts[i].Contained |= part.Contained;
  }
}

} // namespace quarvel
