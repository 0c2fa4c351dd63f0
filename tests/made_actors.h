#pragma once

#include "csg/carve.h"

#include <sstream>
#include <string>

namespace quarvel::test {

/// An actor's block with these keys, one a line; the header is its class, and what else stands there.
inline std::string Actor(const std::string& header, const std::string& keys = {}) {
  return "Begin Actor Class=" + header + "\r\n" + keys + "\r\nEnd Actor\r\n";
}

/// A brush or mover of triangles.
inline std::string TriangleActor(const std::string& header, const std::string& keys = {}, int triangles = 1,
                                 const std::string& polygon = "Texture=brick") {
  std::string text = keys + "\r\n Begin Brush Name=M\r\n";
  for (int i = 0; i < triangles; ++i)
    text += "  Begin Polygon " + polygon + "\r\n   TextureU 1,0,0\r\n   TextureV 0,1,0\r\n   Vertex " +
            std::to_string(10 * i) + ",0,0\r\n   Vertex 5,5,0\r\n   Vertex 0,9,9\r\n  End Polygon\r\n";
  return Actor(header, text + " End Brush");
}

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
