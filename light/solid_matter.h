#pragma once

#include "csg/box_tree.h"
#include "csg/brush_tree.h"
#include "light/lit_surface.h"

#include <vector>

namespace quarvel {

/// What fills the space of the level without bounding it: the faces of such bodies may be cut away, or lie in one
/// another, so that no ray tells who is inside. Unreal units, the editor's axes.
class SolidMatter {
 public:
  struct Body {
    Bounds3 Box;
    BrushTree Inside;
  };

  explicit SolidMatter(std::vector<Body> bodies = {});

  bool Contains(const Vector3& point) const;

  /// True when it lies on all of the surface: nobody can see that.
  bool Covers(const LitSurface& surface) const;

 private:
  std::vector<Body> bodies_;
  BoxTree boxes_;
};

} // namespace quarvel
