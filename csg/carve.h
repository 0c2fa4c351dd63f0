#pragma once

#include "csg/brush_tree.h"
#include "csg/polygon.h"
#include "csg/polygon_mesh.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace quarvel {

/// What a brush does to the space inside it.
enum class CsgOperation { Add, Subtract };

/// Whether the brush takes part in carving, or only adds its faces to what has been carved.
enum class CsgKind { Structural, Semisolid, NonSolid, Portal };

/// A face of a brush. Points in Unreal units on the editor's axes, in the order that faces out of the brush: Newell's
/// normal of the bare numbers points outward.
struct CsgPolygon {
  std::vector<Vector3> Points;
  std::uint32_t Flags = 0; ///< handed on
};

struct CsgBrush {
  CsgOperation Operation = CsgOperation::Add;
  CsgKind Kind = CsgKind::Structural;
  std::vector<CsgPolygon> Polygons;
};

/// A surface of the empty space. Its corners are those of the mesh's polygon of the same number.
struct CarvedFace {
  Plane3 Plane;            ///< of the brush's face; faces the empty space, or out of a brush that does not carve
  int Brush = 0;           ///< the number of the brush that it comes from
  int Polygon = 0;         ///< and of the brush's polygon
  std::uint32_t Flags = 0; ///< of that polygon
  bool IsStructural = true;
};

enum class CarveFault {
  NotClosed, ///< a subtractive brush with a gap
  Crossing,  ///< bent faces, or faces that cross each other: there is no inside
  OutOfRange ///< corners beyond the range of a level
};

/// A brush that could not take part and has no face in the result.
struct RefusedBrush {
  int Brush = 0;
  CarveFault Fault = CarveFault::Crossing;
};

/// A brush that fills space, though it does not carve it.
struct SemisolidBrush {
  int Brush = 0;
  Bounds3 Box;
  BrushTree Inside;
};

/// How many brushes took part, by what they did.
struct CarveCounts {
  int Added = 0, Subtracted = 0, Semisolid = 0, NonSolid = 0, Portals = 0;
  int Sheets = 0;      ///< open brushes of any kind
  int FacesBefore = 0; ///< of all these brushes
};

/// The level as it is seen from inside.
struct CarvedLevel {
  PolygonMesh Mesh; ///< welded; the structural faces come first
  std::vector<CarvedFace> Faces;
  std::vector<SemisolidBrush> Semisolids; ///< the closed ones
  std::vector<RefusedBrush> Refused;
  std::vector<OpenEdge> OpenEdges; ///< of the structural faces; none when they enclose the empty space
  double EmptyVolume = 0;          ///< cubic Unreal units
  CarveCounts Counts;
  double PrepareSeconds = 0, CarveSeconds = 0, WeldSeconds = 0;
  bool Stopped = false; ///< by the caller: the rest says nothing then
};

/// Told before each brush how much of the carving is done, 0 to 1; returns false to stop.
using CarveProgress = std::function<bool(double)>;

/// How near two points are that become one; Unreal units.
inline constexpr double WeldDistance = 0.1;

/// Carves a level. The world starts solid; the state of a point is decided by the last structural brush that contains
/// it. A face of one survives where it parts empty from solid; where several coincide, the last brush's does. The other
/// brushes, and those that are open, then add their faces where both sides are empty.
CarvedLevel CarveLevel(std::span<const CsgBrush> brushes, const CarveProgress& progress = {});

} // namespace quarvel
