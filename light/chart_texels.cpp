#include "light/chart_texels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace quarvel {

namespace {

constexpr double reachOfTexels = 3; // texels from a piece to the centre of one that filtering may read
constexpr double inward = 0.5; // Unreal units, by which points on an outline, where a wall may stand, are moved inside

/// From a texel's centre, in texels: turned against the texels, so that edges along them are smoothed too.
constexpr std::array<PlanePoint, 4> sampleOffsets{{{-0.45, -0.15}, {0.15, -0.45}, {0.45, 0.15}, {-0.15, 0.45}}};

enum class TexelState : std::uint8_t {
  Unused,
  Waiting, ///< in solid matter: takes the light of a neighbour
  Lit,
};

/// What a texel's centre is nearest to.
struct NearestPiece {
  double Distance = 1e30; ///< texels
  PlanePoint Point;       ///< of that piece
  int Piece = -1;
};

bool MayReach(const Lamp& lamp, const Chart& chart) {
  const TexelLattice& lattice = chart.Lattice;
  if (lamp.Strength <= 0) return false;
  if (lamp.Shape == LampShape::Directional) return DotProduct(lamp.Direction, lattice.Normal) < 0;
  const double height = DotProduct(lamp.Position, lattice.Normal) - lattice.Distance;
  const PlanePoint foot = lattice.ToPlane(lamp.Position);
  const auto outside = [](double at, double first, double size) {
    return std::max({first - at, at - first - size, 0.0});
  };
  const double u = outside(foot.U, chart.FirstU, chart.Width) * lattice.Texel;
  const double v = outside(foot.V, chart.FirstV, chart.Height) * lattice.Texel;
  return height > 0 && height * height + u * u + v * v < lamp.Reach * lamp.Reach;
}

std::uint8_t ToByte(double value) { return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255)); }

class ChartLighter {
 public:
  ChartLighter(const Chart& chart, const LitSurface& surface, std::span<const Lamp> lamps, const ShadowScene& shadows)
      : chart_(chart), lattice_(chart.Lattice), surface_(surface), shadows_(shadows),
        texels_(static_cast<std::size_t>(chart.Width) * static_cast<std::size_t>(chart.Height)),
        states_(texels_.size(), TexelState::Unused) {
    for (const Lamp& lamp : lamps)
      if (lamp.SpecialLit == surface.SpecialLit && MayReach(lamp, chart)) lamps_.push_back(&lamp);
  }

  LitTexels Run(Image& page) {
    LitTexels lit;
    const std::vector<NearestPiece> nearest = FindNearest();
    for (int y = 0; y < chart_.Height; ++y)
      for (int x = 0; x < chart_.Width; ++x) {
        const NearestPiece& piece = nearest[At(x, y)];
        if (piece.Piece < 0 || !LightTexel(x, y, piece)) continue;
        const Vector3& light = texels_[At(x, y)];
        ++lit.Count;
        lit.Sum += ToByte(light.X) + ToByte(light.Y) + ToByte(light.Z);
      }
    FillWaiting();
    Store(page);
    return lit;
  }

 private:
  std::size_t At(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(chart_.Width) + static_cast<std::size_t>(x);
  }
  PlanePoint CenterOfTexel(int x, int y) const { return {chart_.FirstU + x + 0.5, chart_.FirstV + y + 0.5}; }

  std::vector<NearestPiece> FindNearest() const {
    std::vector<NearestPiece> nearest(texels_.size());
    for (std::size_t i = 0; i < chart_.Pieces.size(); ++i) {
      const PlanePolygon& outline = chart_.Pieces[i].Outline;
      const PlaneBox box = BoxOf(outline);
      const auto clamp = [](double value, int size) {
        return static_cast<int>(std::clamp(std::floor(value), 0.0, static_cast<double>(size)));
      };
      const int left = clamp(box.MinU - reachOfTexels - chart_.FirstU, chart_.Width);
      const int right = clamp(box.MaxU + reachOfTexels - chart_.FirstU + 1, chart_.Width);
      const int bottom = clamp(box.MinV - reachOfTexels - chart_.FirstV, chart_.Height);
      const int top = clamp(box.MaxV + reachOfTexels - chart_.FirstV + 1, chart_.Height);
      for (int y = bottom; y < top; ++y)
        for (int x = left; x < right; ++x) {
          NearestPiece& known = nearest[At(x, y)];
          if (known.Distance == 0) continue;
          const PlanePoint center = CenterOfTexel(x, y), point = NearestPointOf(outline, center);
          const double distance = DistanceOf(center, point);
          if (distance < known.Distance && distance <= reachOfTexels) known = {distance, point, static_cast<int>(i)};
        }
    }
    return nearest;
  }

  /// Where the texel looks at the lamps from: its centre, where that is in the open, else where its piece is nearest.
  /// False when that is in solid matter.
  bool FindEye(int x, int y, const NearestPiece& nearest, Vector3& eye) const {
    const PlanePoint center = CenterOfTexel(x, y);
    const PlanePolygon& outline = chart_.Pieces[static_cast<std::size_t>(nearest.Piece)].Outline;
    const double margin = inward / lattice_.Texel;
    const PlanePoint inside = MovedInside(nearest.Point, CenterOf(outline), margin);
    eye = lattice_.ToSpace(center);
    if (nearest.Distance > 0) {
      const Vector3 onPiece = lattice_.ToSpace(inside);
      if (!shadows_.Connected(onPiece, eye, lattice_.Normal) || shadows_.InSolid(eye, lattice_.Normal)) eye = onPiece;
    } else if (DistanceToEdge(outline, center) < margin) {
      eye = lattice_.ToSpace(inside);
    }
    return !shadows_.InSolid(eye, lattice_.Normal);
  }

  bool LightTexel(int x, int y, const NearestPiece& nearest) {
    Vector3 eye;
    const std::size_t at = At(x, y);
    states_[at] = TexelState::Waiting;
    if (!FindEye(x, y, nearest, eye)) return false;
    texels_[at] = ToneMapped(LightAt(lattice_.ToSpace(CenterOfTexel(x, y)), eye));
    states_[at] = TexelState::Lit;
    return true;
  }

  /// The light at a place, as far as the lamps are seen from around the eye.
  Vector3 LightAt(const Vector3& place, const Vector3& eye) const {
    Vector3 sum = surface_.Ambient;
    if (lamps_.empty()) return sum;
    std::array<Vector3, 4> samples;
    bool placed = false;
    for (const Lamp* lamp : lamps_) {
      const Vector3 light = LightFrom(*lamp, place, lattice_.Normal);
      if (light == Vector3()) continue;
      if (!placed) samples = SamplesAround(eye);
      placed = true;
      const int seen = shadows_.CountSeen(*lamp, samples, lattice_.Normal);
      sum = AddVector(sum, ScaleVector(light, seen / 4.0));
    }
    return sum;
  }

  /// The points from which a texel looks at the lamps. One behind a wall becomes the eye itself.
  std::array<Vector3, 4> SamplesAround(const Vector3& eye) const {
    std::array<Vector3, 4> samples;
    for (std::size_t i = 0; i < 4; ++i)
      samples[i] = AddVector(eye, AddVector(ScaleVector(lattice_.U, lattice_.Texel * sampleOffsets[i].U),
                                            ScaleVector(lattice_.V, lattice_.Texel * sampleOffsets[i].V)));
    const std::array<bool, 4> open = shadows_.Connected(eye, samples, lattice_.Normal);
    for (std::size_t i = 0; i < 4; ++i)
      if (!open[i]) samples[i] = eye;
    return samples;
  }

  /// Ring by ring, each waiting texel takes the light of a neighbour that has some.
  void FillWaiting() {
    for (bool found = true; found;) {
      found = false;
      const std::vector<TexelState> before = states_;
      for (int y = 0; y < chart_.Height; ++y)
        for (int x = 0; x < chart_.Width; ++x)
          if (before[At(x, y)] == TexelState::Waiting && TakeFromNeighbour(x, y, before)) found = true;
    }
  }

  bool TakeFromNeighbour(int x, int y, const std::vector<TexelState>& before) {
    constexpr std::array<std::array<int, 2>, 8> steps{
        {{-1, 0}, {1, 0}, {0, -1}, {0, 1}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1}}};
    for (const auto& [dx, dy] : steps) {
      if (x + dx < 0 || x + dx >= chart_.Width || y + dy < 0 || y + dy >= chart_.Height) continue;
      if (before[At(x + dx, y + dy)] != TexelState::Lit) continue;
      texels_[At(x, y)] = texels_[At(x + dx, y + dy)];
      states_[At(x, y)] = TexelState::Lit;
      return true;
    }
    return false;
  }

  void Store(Image& page) const {
    for (int y = 0; y < chart_.Height; ++y)
      for (int x = 0; x < chart_.Width; ++x) {
        if (states_[At(x, y)] != TexelState::Lit) continue;
        const Vector3& light = texels_[At(x, y)];
        std::uint8_t* pixel = page.Values.data() + PixelOffset(page, chart_.PageX + x, chart_.PageY + y);
        pixel[0] = ToByte(light.X);
        pixel[1] = ToByte(light.Y);
        pixel[2] = ToByte(light.Z);
      }
  }

  const Chart& chart_;
  const TexelLattice& lattice_;
  const LitSurface& surface_;
  const ShadowScene& shadows_;
  std::vector<const Lamp*> lamps_;
  std::vector<Vector3> texels_;
  std::vector<TexelState> states_;
};

} // namespace

LitTexels LightChart(const Chart& chart, std::span<const LitSurface> surfaces, std::span<const Lamp> lamps,
                     const ShadowScene& shadows, Image& page) {
  const LitSurface& surface = surfaces[static_cast<std::size_t>(chart.Pieces.front().Surface)];
  return ChartLighter(chart, surface, lamps, shadows).Run(page);
}

} // namespace quarvel
