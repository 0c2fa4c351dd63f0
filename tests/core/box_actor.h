#pragma once

#include "csg/carve.h"

#include <sstream>
#include <string>

namespace quarvel::test {

/// A brush actor with the box's polygons; `keys` are lines of the actor.
inline std::string BoxActor(const std::string& name, const CsgBrush& box, const std::string& keys,
                            const std::string& texture = "brick") {
  std::ostringstream text;
  text << "Begin Actor Class=Brush Name=" << name << "\n" << keys << "\n Begin Brush Name=Model1\n  Begin PolyList\n";
  for (const CsgPolygon& polygon : box.Polygons) {
    const Vector3 along = NormalizeVector(SubtractVector(polygon.Points[1], polygon.Points[0]));
    text << "   Begin Polygon Texture=" << texture << "\n    Origin 0,0,0\n    TextureU " << along.X << "," << along.Y
         << "," << along.Z << "\n    TextureV 0,0,-1\n";
    for (const Vector3& point : polygon.Points)
      text << "    Vertex " << point.X << "," << point.Y << "," << point.Z << "\n";
    text << "   End Polygon\n";
  }
  text << "  End PolyList\n End Brush\n Name=" << name << "\nEnd Actor\n";
  return text.str();
}

} // namespace quarvel::test
