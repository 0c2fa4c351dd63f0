#include "scene/face_sets.h"

#include <array>
#include <bit>
#include <cstdint>
#include <map>
#include <numeric>
#include <unordered_map>

namespace quarvel {

namespace {

struct Corner {
  Vector3 Point;
  TexturePoint Texture;
  bool operator==(const Corner&) const = default;
};

struct CornerHash {
  std::size_t operator()(const Corner& c) const {
    std::uint64_t hash = 0;
    for (const double value : {c.Point.X, c.Point.Y, c.Point.Z, c.Texture.U, c.Texture.V})
      hash = (std::rotl(hash, 5) ^ std::bit_cast<std::uint64_t>(value + 0.0)) * 0x9e3779b97f4a7c15ULL;
    return static_cast<std::size_t>(hash ^ (hash >> 32));
  }
};

using CornerIndex = std::unordered_map<Corner, int, CornerHash>;

FaceSet NewSet(int textureNumber, std::uint32_t flags) {
  FaceSet set;
  set.TextureNumber = textureNumber;
  set.Flags = flags;
  return set;
}

int AddCorner(FaceSet& set, const Corner& corner) {
  set.Points.push_back(corner.Point);
  set.TexturePoints.push_back(corner.Texture);
  return static_cast<int>(set.Points.size()) - 1;
}

/// Calls `take` with each corner of the polygon as the scene has it.
template <typename Take>
void ForEachCorner(const ChosenFace& face, const BrushPlacement& placement, const MaterialWriter& materials,
                   Take take) {
  const TextureFile& file = materials.Entry(face.TextureNumber).File;
  const TexturePlane plane = MakeTexturePlane(*face.Polygon, file.Width, file.Height);
  for (const Vector3& vertex : face.Polygon->Vertices)
    take(Corner{TransformPoint(placement.VertexMatrix, vertex), TextureCoordinateOf(plane, vertex)});
}

/// Union-find over corners that have the same position.
class PositionGroups {
 public:
  explicit PositionGroups(const std::vector<Vector3>& points) : parents_(points.size()) {
    std::iota(parents_.begin(), parents_.end(), 0);
    std::map<std::array<double, 3>, int> first;
    for (std::size_t i = 0; i < points.size(); ++i)
      parents_[i] = first.try_emplace({points[i].X, points[i].Y, points[i].Z}, static_cast<int>(i)).first->second;
  }

  int Root(int i) {
    while (At(i) != i)
      i = At(i) = At(At(i));
    return i;
  }
  void Join(int a, int b) { At(Root(a)) = Root(b); }

 private:
  int& At(int i) { return parents_[static_cast<std::size_t>(i)]; }
  std::vector<int> parents_;
};

} // namespace

FaceSet MakeFaceSet(const ChosenFace& face, const BrushPlacement& placement, const MaterialWriter& materials) {
  FaceSet set = NewSet(face.TextureNumber, face.Polygon->Flags);
  std::vector<int>& indices = set.Faces.emplace_back();
  if (!face.Colors.empty()) set.FaceColors.push_back(face.Colors);
  ForEachCorner(face, placement, materials, [&](const Corner& corner) { indices.push_back(AddCorner(set, corner)); });
  return set;
}

std::vector<FaceSet> MergeFaces(const std::vector<ChosenFace>& faces, const BrushPlacement& placement,
                                const MaterialWriter& materials) {
  std::vector<FaceSet> sets;
  std::vector<CornerIndex> corners;
  std::unordered_map<int, std::size_t> setOfTexture;
  for (const ChosenFace& face : faces) {
    const auto [at, isNew] = setOfTexture.try_emplace(face.TextureNumber, sets.size());
    if (isNew) {
      sets.push_back(NewSet(face.TextureNumber, face.Polygon->Flags));
      corners.emplace_back();
    }
    FaceSet& set = sets[at->second];
    CornerIndex& known = corners[at->second];
    std::vector<int>& indices = set.Faces.emplace_back();
    indices.reserve(face.Polygon->Vertices.size());
    if (!face.Colors.empty()) set.FaceColors.push_back(face.Colors);
    ForEachCorner(face, placement, materials, [&](const Corner& corner) {
      const auto [place, unseen] = known.try_emplace(corner, static_cast<int>(set.Points.size()));
      if (unseen) AddCorner(set, corner);
      indices.push_back(place->second);
    });
  }
  return sets;
}

std::vector<FaceSet> SplitByPosition(const FaceSet& faces) {
  PositionGroups groups(faces.Points);
  for (const std::vector<int>& face : faces.Faces)
    for (const int corner : face)
      groups.Join(corner, face.front());

  std::vector<FaceSet> pieces;
  std::map<int, std::size_t> pieceOfRoot;
  std::vector<int> newIndex(faces.Points.size(), -1);
  for (const std::vector<int>& face : faces.Faces) {
    const auto [at, isNew] = pieceOfRoot.try_emplace(groups.Root(face.front()), pieces.size());
    if (isNew) pieces.push_back(NewSet(faces.TextureNumber, faces.Flags));
    FaceSet& piece = pieces[at->second];
    std::vector<int>& indices = piece.Faces.emplace_back();
    for (const int corner : face) {
      const auto from = static_cast<std::size_t>(corner);
      if (newIndex[from] < 0) newIndex[from] = AddCorner(piece, {faces.Points[from], faces.TexturePoints[from]});
      indices.push_back(newIndex[from]);
    }
  }
  return pieces;
}

} // namespace quarvel
