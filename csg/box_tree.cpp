#include "csg/box_tree.h"

#include <algorithm>
#include <numeric>

namespace quarvel {

namespace {

constexpr std::uint32_t boxesInLeaf = 12;

double Vector3::*LongestAxis(const Bounds3& box) {
  const Vector3 size = SubtractVector(box.Max, box.Min);
  if (size.X >= size.Y && size.X >= size.Z) return &Vector3::X;
  return size.Y >= size.Z ? &Vector3::Y : &Vector3::Z;
}

} // namespace

BoxTree::BoxTree(std::vector<Bounds3> boxes) : boxes_(std::move(boxes)), order_(boxes_.size()) {
  if (boxes_.empty()) return;
  std::iota(order_.begin(), order_.end(), 0U);
  nodes_.reserve(boxes_.size());
  nodes_.emplace_back();
  Build(0, 0, static_cast<std::uint32_t>(boxes_.size()));
  // A search reads the boxes of a leaf together.
  std::vector<Bounds3> ordered;
  ordered.reserve(boxes_.size());
  for (const std::uint32_t number : order_)
    ordered.push_back(boxes_[number]);
  boxes_ = std::move(ordered);
}

void BoxTree::Build(std::size_t node, std::uint32_t from, std::uint32_t to) {
  Bounds3 box = InitBounds(), centers = InitBounds();
  for (std::uint32_t i = from; i < to; ++i) {
    const Bounds3& inner = boxes_[order_[i]];
    box.Min = {std::min(box.Min.X, inner.Min.X), std::min(box.Min.Y, inner.Min.Y), std::min(box.Min.Z, inner.Min.Z)};
    box.Max = {std::max(box.Max.X, inner.Max.X), std::max(box.Max.Y, inner.Max.Y), std::max(box.Max.Z, inner.Max.Z)};
    const Vector3 center = AddVector(inner.Min, inner.Max); // twice it
    centers.Min = {std::min(centers.Min.X, center.X), std::min(centers.Min.Y, center.Y),
                   std::min(centers.Min.Z, center.Z)};
    centers.Max = {std::max(centers.Max.X, center.X), std::max(centers.Max.Y, center.Y),
                   std::max(centers.Max.Z, center.Z)};
  }
  nodes_[node].Box = box;
  if (to - from <= boxesInLeaf) {
    nodes_[node].First = from;
    nodes_[node].Count = to - from;
    return;
  }
  double Vector3::*const axis = LongestAxis(centers);
  const auto twiceMiddle = [&](std::uint32_t number) { return boxes_[number].Min.*axis + boxes_[number].Max.*axis; };
  const std::uint32_t middle = from + (to - from) / 2;
  std::nth_element(order_.begin() + from, order_.begin() + middle, order_.begin() + to,
                   [&](std::uint32_t a, std::uint32_t b) {
                     const double left = twiceMiddle(a), right = twiceMiddle(b);
                     return left != right ? left < right : a < b;
                   });
  const auto child = static_cast<std::uint32_t>(nodes_.size());
  nodes_[node].First = child;
  nodes_.resize(child + 2);
  Build(child, from, middle);
  Build(child + 1, middle, to);
}

} // namespace quarvel
