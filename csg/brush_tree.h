#pragma once

#include "csg/polygon.h"

#include <cstdint>
#include <vector>

namespace quarvel {

/// A convex face of a brush with its plane, which faces out of the brush.
struct FlatFace {
  std::vector<Vector3> Points; ///< counterclockwise as seen from outside, on right-handed axes
  Plane3 Plane;
  int Polygon = 0; ///< number of the brush's polygon that it is, or is a part of
};

/// The two sides of a face, as bits.
enum FaceSide : unsigned { NoSide = 0, FrontSide = 1, BackSide = 2, BothSides = 3 };

/// What a brush contains of a piece: the space just in front of it, just behind it, both or none.
struct ClippedPiece {
  PieceStore::Piece Piece;
  unsigned Contained = NoSide;
};

/// The space inside a closed brush, as a binary tree of the planes of its own faces.
class BrushTree {
 public:
  /// Corners may lie off the planes of their faces by `tolerance`.
  explicit BrushTree(const std::vector<FlatFace>& faces, double tolerance = PlaneTolerance);

  /// Cuts a piece where the answer changes, and appends its parts. Only the sides of `asked` are looked at. The piece
  /// is appended whole when the answer is the same for all parts.
  void Clip(PieceStore& store, PieceStore::Piece piece, const Vector3& normal, unsigned asked,
            std::vector<ClippedPiece>& parts) const;

  /// True for points inside or on the surface.
  bool Contains(const Vector3& point) const;

  bool IsConvex() const { return isConvex_; }

 private:
  static constexpr std::int32_t Outside = -1, Inside = -2;
  struct Node {
    Plane3 Plane;
    std::int32_t Front = Outside, Back = Inside;
  };

  void BuildConvex(const std::vector<FlatFace>& faces, double tolerance);
  std::int32_t Build(PieceStore& store, std::vector<PieceStore::Piece> pieces, std::int32_t leaf, int depth);
  bool MissesConvex(const PieceStore& store, PieceStore::Piece piece) const;
  void ClipFrom(std::int32_t node, PieceStore& store, PieceStore::Piece piece, const Vector3& normal, unsigned asked,
                std::vector<ClippedPiece>& parts) const;
  void ClipInPlane(const Node& node, PieceStore& store, PieceStore::Piece piece, const Vector3& normal, unsigned asked,
                   std::vector<ClippedPiece>& parts) const;

  std::vector<Node> nodes_; ///< the root first
  bool isConvex_ = false;
};

} // namespace quarvel
