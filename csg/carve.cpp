#include "csg/carve.h"

#include "csg/face_carver.h"
#include "csg/solid_brush.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>

namespace quarvel {

namespace {

/// How far the outline of a gap may leave a plane and still be filled in that plane; Unreal units.
constexpr double widestGap = 0.5;

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

/// A brush with the carver that it became, or none.
struct Taker {
  PreparedBrush Shape;
  int Brush = 0;
  int Carver = FaceCarver::NoCarver;
};

/// What a level is carved from.
struct Workshop {
  std::vector<Taker> Takers;
  std::vector<Carver> Carvers;
};

void CountBrush(CarveCounts& counts, const CsgBrush& brush, const PreparedBrush& shape) {
  counts.FacesBefore += static_cast<int>(brush.Polygons.size());
  if (!shape.IsClosed)
    ++counts.Sheets;
  else if (brush.Operation == CsgOperation::Subtract)
    ++counts.Subtracted;
  else if (brush.Kind == CsgKind::Semisolid)
    ++counts.Semisolid;
  else if (brush.Kind == CsgKind::NonSolid)
    ++counts.NonSolid;
  else if (brush.Kind == CsgKind::Portal)
    ++counts.Portals;
  else
    ++counts.Added;
}

bool IsStructural(const CsgBrush& brush) {
  return brush.Operation == CsgOperation::Subtract || brush.Kind == CsgKind::Structural;
}

Workshop Prepare(std::span<const CsgBrush> brushes, CarvedLevel& level) {
  Workshop workshop;
  workshop.Takers.reserve(brushes.size());
  workshop.Carvers.reserve(brushes.size());
  for (std::size_t i = 0; i < brushes.size(); ++i) {
    const CsgBrush& brush = brushes[i];
    const auto refuse = [&](CarveFault fault) { level.Refused.push_back({static_cast<int>(i), fault}); };
    Taker taker{PrepareBrush(brush), static_cast<int>(i)};
    if (taker.Shape.Faces.empty()) {
      refuse(CarveFault::OutOfRange);
      continue;
    }
    if (IsStructural(brush) && taker.Shape.Tree) {
      taker.Carver = static_cast<int>(workshop.Carvers.size());
      workshop.Carvers.push_back(
          {std::move(*taker.Shape.Tree), taker.Shape.Box, brush.Operation == CsgOperation::Subtract});
    } else if (IsStructural(brush) && (taker.Shape.IsClosed || brush.Operation == CsgOperation::Subtract)) {
      refuse(taker.Shape.IsClosed ? CarveFault::Crossing : CarveFault::NotClosed);
      continue;
    }
    CountBrush(level.Counts, brush, taker.Shape);
    if (!IsStructural(brush) && brush.Kind == CsgKind::Semisolid && taker.Shape.Tree)
      level.Semisolids.push_back({taker.Brush, taker.Shape.Box, std::move(*taker.Shape.Tree)});
    workshop.Takers.push_back(std::move(taker));
  }
  return workshop;
}

/// Puts what is left of a brush's faces into the mesh.
void CarveBrush(const Taker& taker, const CsgBrush& brush, FaceCarver& carver, CarvedLevel& level) {
  const bool isStructural = taker.Carver != FaceCarver::NoCarver;
  const bool turned = brush.Operation == CsgOperation::Subtract;
  for (const FlatFace& face : taker.Shape.Faces)
    for (const PieceStore::Piece piece : carver.Carve(face, taker.Carver)) {
      const std::span<const Vector3> points = carver.Points(piece);
      PolygonMesh& mesh = level.Mesh;
      for (std::size_t i = 0; i < points.size(); ++i) {
        mesh.Corners.push_back(static_cast<std::uint32_t>(mesh.Points.size()));
        mesh.Points.push_back(points[turned ? points.size() - 1 - i : i]);
      }
      mesh.Starts.push_back(static_cast<std::uint32_t>(mesh.Corners.size()));
      level.Faces.push_back({turned ? FlipPlane(face.Plane) : face.Plane, taker.Brush, face.Polygon,
                             brush.Polygons[static_cast<std::size_t>(face.Polygon)].Flags, isStructural});
    }
}

/// By the divergence theorem: a third of the flow of the position out of the empty space.
double VolumeInside(const CarvedLevel& level) {
  if (level.Faces.empty()) return 0;
  const Vector3 middle = level.Mesh.Points.front();
  double sixfold = 0;
  for (std::size_t i = 0; i < level.Faces.size(); ++i) {
    if (!level.Faces[i].IsStructural) continue;
    const std::vector<Vector3> points = PointsOf(level.Mesh, i);
    sixfold -= DotProduct(NewellVector(points), SubtractVector(points.front(), middle));
  }
  return sixfold / 6;
}

/// The edges that are still open and lead on from one another.
class OpenEdgeLoops {
 public:
  explicit OpenEdgeLoops(const std::vector<OpenEdge>& edges) : edges_(edges) {
    for (std::size_t i = 0; i < edges.size(); ++i)
      startingAt_.emplace(edges[i].From, i);
  }

  /// The next loop that closes, edge by edge; empty when there is none left.
  std::vector<OpenEdge> Take() {
    while (!startingAt_.empty()) {
      std::vector<OpenEdge> loop;
      for (auto at = startingAt_.begin(); at != startingAt_.end(); at = startingAt_.find(loop.back().To)) {
        loop.push_back(edges_[at->second]);
        startingAt_.erase(at);
        if (loop.back().To == loop.front().From) return loop;
      }
    }
    return {};
  }

 private:
  const std::vector<OpenEdge>& edges_;
  std::multimap<std::uint32_t, std::size_t> startingAt_;
};

/// Where two faces lie in nearly one plane, the tolerance leaves a gap between them. A loop of open edges in the plane
/// of a face that it touches is filled with a piece of that face.
void FillGap(CarvedLevel& level, const std::vector<OpenEdge>& loop) {
  if (loop.size() < 3) return;
  std::vector<Vector3> outline;
  for (const OpenEdge& edge : loop)
    outline.push_back(level.Mesh.Points[edge.From]);
  std::reverse(outline.begin(), outline.end());
  for (const OpenEdge& edge : loop) {
    const CarvedFace face = level.Faces[edge.Polygon];
    const bool fits = std::all_of(outline.begin(), outline.end(), [&](const Vector3& point) {
      return std::fabs(DistanceFrom(face.Plane, point)) < widestGap;
    });
    if (!fits || DotProduct(NewellVector(outline), face.Plane.Normal) <= 0) continue;
    for (auto at = loop.rbegin(); at != loop.rend(); ++at)
      level.Mesh.Corners.push_back(at->From);
    level.Mesh.Starts.push_back(static_cast<std::uint32_t>(level.Mesh.Corners.size()));
    level.Faces.push_back(face);
    return;
  }
}

std::vector<OpenEdge> FindOpenEdges(const CarvedLevel& level) {
  return FindOpenEdges(level.Mesh, [&](std::size_t face) { return level.Faces[face].IsStructural; });
}

/// Takes out the faces for which `goes` is true.
void RemoveFaces(CarvedLevel& level, const std::vector<bool>& goes) {
  std::vector<CarvedFace> faces;
  PolygonMesh& mesh = level.Mesh;
  std::vector<std::uint32_t> corners, starts{0};
  for (std::size_t i = 0; i < level.Faces.size(); ++i) {
    if (goes[i]) continue;
    faces.push_back(level.Faces[i]);
    corners.insert(corners.end(), mesh.CornersOf(i).begin(), mesh.CornersOf(i).end());
    starts.push_back(static_cast<std::uint32_t>(corners.size()));
  }
  level.Faces = std::move(faces);
  mesh.Corners = std::move(corners);
  mesh.Starts = std::move(starts);
}

/// Takes out the faces that welding left without corners.
void RemoveEmptyFaces(CarvedLevel& level) {
  std::vector<bool> empty(level.Faces.size());
  bool found = false;
  for (std::size_t i = 0; i < empty.size(); ++i)
    if (level.Mesh.CornersOf(i).empty()) empty[i] = found = true;
  if (found) RemoveFaces(level, empty);
}

std::size_t CountStructural(const CarvedLevel& level) {
  return static_cast<std::size_t>(
      std::count_if(level.Faces.begin(), level.Faces.end(), [](const CarvedFace& face) { return face.IsStructural; }));
}

/// Unites what lies at the rims of narrow gaps and of faces that overlap a little.
void CloseNarrowGaps(CarvedLevel& level) {
  PolygonMesh rims;
  std::map<std::uint32_t, std::uint32_t> rimOf;
  for (const OpenEdge& edge : level.OpenEdges)
    for (const std::uint32_t point : {edge.From, edge.To})
      if (rimOf.emplace(point, static_cast<std::uint32_t>(rims.Points.size())).second) {
        rims.Corners.push_back(static_cast<std::uint32_t>(rims.Points.size()));
        rims.Points.push_back(level.Mesh.Points[point]);
      }
  UnitePoints(rims, widestGap);
  for (const auto& [point, rim] : rimOf)
    level.Mesh.Points[point] = rims.Points[rims.Corners[rim]];
  WeldMesh(level.Mesh, WeldDistance, CountStructural(level));
  RemoveEmptyFaces(level);
}

/// True for a face that welding left with hardly a width.
bool IsSliver(const PolygonMesh& mesh, std::span<const std::uint32_t> corners) {
  const Vector3 start = mesh.Points[corners.front()];
  Vector3 along;
  double length = 0;
  for (const std::uint32_t corner : corners) {
    const Vector3 offset = SubtractVector(mesh.Points[corner], start);
    if (const double distance = VectorLength(offset); distance > length) {
      length = distance;
      along = offset;
    }
  }
  return std::all_of(corners.begin(), corners.end(), [&](std::uint32_t corner) {
    const Vector3 offset = SubtractVector(mesh.Points[corner], start);
    return VectorLength(CrossProduct(offset, along)) <= WeldDistance / 2 * length;
  });
}

/// Takes out faces without a width: viewers drop them, and where their two sides have different corners, that leaves a
/// crack. Without them the neighbours get each other's corners.
void RemoveSlivers(CarvedLevel& level) {
  std::vector<bool> sliver(level.Faces.size());
  bool found = false;
  for (std::size_t i = 0; i < sliver.size(); ++i)
    if (IsSliver(level.Mesh, level.Mesh.CornersOf(i))) sliver[i] = found = true;
  if (!found) return;
  CarvedLevel without = level;
  RemoveFaces(without, sliver);
  WeldMesh(without.Mesh, WeldDistance, CountStructural(without));
  RemoveEmptyFaces(without);
  without.OpenEdges = FindOpenEdges(without);
  if (without.OpenEdges.size() <= level.OpenEdges.size()) level = std::move(without);
}

/// Welds the faces, and closes what the tolerance left open.
void CloseSurfaces(CarvedLevel& level) {
  WeldMesh(level.Mesh, WeldDistance, CountStructural(level));
  RemoveEmptyFaces(level);
  level.OpenEdges = FindOpenEdges(level);
  RemoveSlivers(level);
  if (level.OpenEdges.empty()) return;
  CarvedLevel closed = level;
  CloseNarrowGaps(closed);
  closed.OpenEdges = FindOpenEdges(closed);
  if (closed.OpenEdges.size() < level.OpenEdges.size()) level = std::move(closed);
  OpenEdgeLoops loops(level.OpenEdges);
  for (std::vector<OpenEdge> loop = loops.Take(); !loop.empty(); loop = loops.Take())
    FillGap(level, loop);
  level.OpenEdges = FindOpenEdges(level);
}

void CarveFaces(const Workshop& workshop, std::span<const CsgBrush> brushes, const CarveProgress& progress,
                CarvedLevel& level) {
  std::vector<Bounds3> boxes;
  for (const Carver& carver : workshop.Carvers)
    boxes.push_back(carver.Box);
  const BoxTree tree(std::move(boxes));
  FaceCarver carver(workshop.Carvers, tree);
  std::size_t done = 0;
  for (const bool structural : {true, false})
    for (const Taker& taker : workshop.Takers) {
      if ((taker.Carver != FaceCarver::NoCarver) != structural) continue;
      level.Stopped = progress && !progress(static_cast<double>(done++) / static_cast<double>(brushes.size()));
      if (level.Stopped) return;
      CarveBrush(taker, brushes[static_cast<std::size_t>(taker.Brush)], carver, level);
    }
}

} // namespace

CarvedLevel CarveLevel(std::span<const CsgBrush> brushes, const CarveProgress& progress) {
  CarvedLevel level;
  const auto timed = [](double& seconds, auto step) {
    const Clock::time_point start = Clock::now();
    step();
    seconds = SecondsSince(start);
  };
  Workshop workshop;
  timed(level.PrepareSeconds, [&] { workshop = Prepare(brushes, level); });
  timed(level.CarveSeconds, [&] { CarveFaces(workshop, brushes, progress, level); });
  if (level.Stopped) return level;
  level.EmptyVolume = VolumeInside(level);
  timed(level.WeldSeconds, [&] { CloseSurfaces(level); });
  return level;
}

} // namespace quarvel
