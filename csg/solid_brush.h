#pragma once

#include "csg/brush_tree.h"
#include "csg/carve.h"

#include <optional>
#include <vector>

namespace quarvel {

/// A brush made ready for carving.
struct PreparedBrush {
  std::vector<FlatFace> Faces;
  Bounds3 Box = InitBounds();
  bool IsClosed = false;
  std::optional<BrushTree> Tree; ///< the space inside; of a closed brush, unless its faces cross
};

/// Flattens the faces and cuts them into convex ones; bent faces are folded, those without an area are left out. Gaps
/// in the brush that are narrower than a unit are closed. A closed brush whose faces look inward is turned inside out.
/// A brush with corners beyond the range of a level has no face.
PreparedBrush PrepareBrush(const CsgBrush& brush);

} // namespace quarvel
