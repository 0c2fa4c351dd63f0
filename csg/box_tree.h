#pragma once

#include "math/vector.h"

#include <array>
#include <cstdint>
#include <vector>

namespace quarvel {

inline bool BoxesMeet(const Bounds3& a, const Bounds3& b) {
  return a.Min.X <= b.Max.X && b.Min.X <= a.Max.X && a.Min.Y <= b.Max.Y && b.Min.Y <= a.Max.Y && a.Min.Z <= b.Max.Z &&
         b.Min.Z <= a.Max.Z;
}

inline Bounds3 WidenBox(const Bounds3& box, double by) {
  return {SubtractVector(box.Min, {by, by, by}), AddVector(box.Max, {by, by, by})};
}

/// A tree of boxes, halved in the middle of their longest spread, for finding those that meet something.
class BoxTree {
 public:
  explicit BoxTree(std::vector<Bounds3> boxes);

  /// Calls `visit` with the number of each box for which `meets(box)` is true; `meets` must hold for a box around one
  /// for which it holds.
  template <typename Meets, typename Visit>
  void Search(Meets meets, Visit visit) const {
    if (nodes_.empty()) return;
    std::array<std::uint32_t, 64> open;
    std::size_t depth = 0;
    open[depth++] = 0;
    while (depth > 0) {
      const Node& node = nodes_[open[--depth]];
      if (!meets(node.Box)) continue;
      if (node.Count == 0) {
        open[depth++] = node.First + 1;
        open[depth++] = node.First;
        continue;
      }
      for (std::uint32_t i = node.First; i < node.First + node.Count; ++i)
        if (meets(boxes_[i])) visit(order_[i]);
    }
  }

 private:
  struct Node {
    Bounds3 Box;
    std::uint32_t First = 0; ///< the first of two child nodes, or of the boxes of a leaf
    std::uint32_t Count = 0; ///< of the boxes of a leaf
  };
  void Build(std::size_t node, std::uint32_t from, std::uint32_t to);

  std::vector<Bounds3> boxes_;       ///< in the order of the leaves, once the tree is built
  std::vector<std::uint32_t> order_; ///< the numbers of the boxes in that order
  std::vector<Node> nodes_;
};

} // namespace quarvel
