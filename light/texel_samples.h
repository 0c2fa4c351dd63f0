#pragma once

#include "light/charts.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace quarvel {

/// Of a texel's samples, one bit each.
using SampleMask = std::uint8_t;

/// Where the texels of a chart look at the lamps from: four samples each, of which those count that are in the open.
/// What a texel shows is the mean of its own and its neighbours' samples, so that the edges of shadows are soft.
class TexelSamples {
 public:
  TexelSamples(const Chart& chart, const ShadowScene& shadows);

  /// The samples of a texel that are in the open; none where there is no surface near it, or solid matter on it.
  SampleMask OpenOf(std::size_t texel) const { return open_[texel]; }
  const std::vector<SampleMask>& Open() const { return open_; }
  std::array<Vector3, 4> PointsOf(std::size_t texel) const;

  /// True when viewers may read the texel.
  bool IsUsed(std::size_t texel) const { return nearest_[texel].Piece >= 0; }
  /// A point of the surface in the open, at the texel's centre or near it; if there is one.
  bool HasEye(std::size_t texel) const { return links_[texel] != 0; }
  const Vector3& EyeOf(std::size_t texel) const { return eyes_[texel]; }
  Vector3 PlaceOf(std::size_t texel) const { return lattice_.ToSpace(OnLattice(texel)); }

  /// How much of a texel's surroundings is seen, 0 to 1: of the samples that `known` has for each texel, those in
  /// `seen`. Negative when it has none.
  double MeanAround(std::size_t texel, std::span<const SampleMask> known, std::span<const SampleMask> seen) const;

 private:
  /// What a texel's centre is nearest to.
  struct NearestPiece {
    double Distance = 1e30; ///< texels
    PlanePoint Point;       ///< of that piece
    int Piece = -1;
  };

  std::size_t At(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(chart_.Width) + static_cast<std::size_t>(x);
  }
  PlanePoint OnLattice(std::size_t texel) const;
  std::vector<NearestPiece> FindNearest() const;
  bool FindEye(std::size_t texel, Vector3& eye) const;
  void OpenTexel(std::size_t texel);
  void Link(int x, int y);
  void LookFromEyes();

  const Chart& chart_;
  const TexelLattice& lattice_;
  const ShadowScene& shadows_;
  std::vector<NearestPiece> nearest_;
  std::vector<Vector3> eyes_;
  std::vector<SampleMask> open_;
  std::vector<std::uint16_t> links_; ///< one bit for each of the nine texels around: the way to it is free
  std::vector<bool> fromEye_;        ///< the eye stands for all samples
};

} // namespace quarvel
