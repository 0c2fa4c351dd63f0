#pragma once

#include "csg/box_tree.h"
#include "csg/brush_tree.h"

#include <cstdint>
#include <span>
#include <vector>

namespace quarvel {

/// A structural brush: what it contains, and what it makes of that. Their order is that of the level.
struct Carver {
  BrushTree Tree;
  Bounds3 Box;
  bool Empties = false; ///< a subtractive brush
};

/// Cuts faces down to what is seen of them.
class FaceCarver {
 public:
  FaceCarver(const std::vector<Carver>& carvers, const BoxTree& boxes) : carvers_(carvers), boxes_(boxes) {}

  /// Handed to Carve for the face of a brush that does not carve.
  static constexpr int NoCarver = -1;

  /// The parts of a face that stay; of `owner`, a carver's number. A face of which all is seen comes back as it was.
  /// The result is valid until the next call.
  const std::vector<PieceStore::Piece>& Carve(const FlatFace& face, int owner);
  std::span<const Vector3> Points(PieceStore::Piece piece) const { return store_.Points(piece); }

 private:
  using Piece = PieceStore::Piece;
  enum class Fate { Gone, Cut, Whole };

  /// A piece and the last carvers known to contain the space in front of it and behind it.
  struct Candidate {
    PieceStore::Piece Piece;
    int Front = NoCarver, Back = NoCarver;
  };

  bool IsEmpty(int carver) const { return carver >= 0 && carvers_[static_cast<std::size_t>(carver)].Empties; }
  bool IsLost(const Candidate& piece) const;
  bool IsSeen(const Candidate& piece) const;
  bool CanBecomeSeen(const Candidate& piece, std::size_t from) const;
  Bounds3 BoxOf(Piece piece) const;
  std::size_t ListThose(const Candidate& piece, std::size_t from, std::size_t to);
  void BringMiddleToEnd(const Bounds3& box, std::size_t from);
  Fate Decide(Candidate piece, std::size_t from, std::size_t to);
  void JoinKept(std::size_t from);
  Fate DecideParts(const Candidate& piece, int carver, std::size_t firstPart, std::size_t from);

  const std::vector<Carver>& carvers_;
  const BoxTree& boxes_;
  PieceStore store_;
  Vector3 normal_;
  int owner_ = NoCarver;
  std::vector<ClippedPiece> parts_; ///< used as a stack, as the next is
  std::vector<int> near_;           ///< carvers that can change what is known of a piece
  std::vector<PieceStore::Piece> kept_;
};

} // namespace quarvel
