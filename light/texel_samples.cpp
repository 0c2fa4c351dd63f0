#include "light/texel_samples.h"

#include <algorithm>
#include <cmath>

namespace quarvel {

namespace {

constexpr double reachOfTexels = 3; // texels from a piece to the centre of one that filtering may read
constexpr double reachOfFilter = 1; // of one that viewers read when they are near
constexpr double inward = 0.5; // Unreal units, by which points on an outline, where a wall may stand, are moved inside

/// From a texel's centre, in texels: turned against the texels, so that edges along them are smoothed too.
constexpr std::array<PlanePoint, 4> sampleOffsets{{{-0.375, -0.125}, {0.125, -0.375}, {0.375, 0.125}, {-0.125, 0.375}}};
constexpr SampleMask allSamples = 15;

constexpr int around = 9, itself = 4; // the texels around one, row by row
constexpr int StepU(int number) { return number % 3 - 1; }
constexpr int StepV(int number) { return number / 3 - 1; }

/// A tent that is two texels wide: what viewers interpolate between such means has no steps.
constexpr double Tent(double offset) { return std::max(1 - std::max(offset, -offset), 0.0); }

using WeightTable = std::array<std::array<double, allSamples + 1>, around>;

/// What the samples of a mask in one of the texels around weigh.
constexpr WeightTable MakeWeights() {
  WeightTable weights{};
  for (int number = 0; number < around; ++number)
    for (unsigned mask = 0; mask <= allSamples; ++mask)
      for (std::size_t i = 0; i < sampleOffsets.size(); ++i)
        if (mask >> i & 1)
          weights[static_cast<std::size_t>(number)][mask] +=
              Tent(StepU(number) + sampleOffsets[i].U) * Tent(StepV(number) + sampleOffsets[i].V);
  return weights;
}

constexpr WeightTable weights = MakeWeights();

} // namespace

TexelSamples::TexelSamples(const Chart& chart, const ShadowScene& shadows)
    : chart_(chart), lattice_(chart.Lattice), shadows_(shadows), nearest_(FindNearest()), eyes_(nearest_.size()),
      open_(nearest_.size()), links_(nearest_.size()), fromEye_(nearest_.size()) {
  for (std::size_t texel = 0; texel < nearest_.size(); ++texel)
    if (IsUsed(texel)) OpenTexel(texel);
  for (int y = 0; y < chart.Height; ++y)
    for (int x = 0; x < chart.Width; ++x)
      Link(x, y);
  LookFromEyes();
}

PlanePoint TexelSamples::OnLattice(std::size_t texel) const {
  const auto width = static_cast<std::size_t>(chart_.Width);
  return {chart_.FirstU + static_cast<double>(texel % width) + 0.5,
          chart_.FirstV + static_cast<double>(texel / width) + 0.5};
}

std::vector<TexelSamples::NearestPiece> TexelSamples::FindNearest() const {
  std::vector<NearestPiece> nearest(static_cast<std::size_t>(chart_.Width) * static_cast<std::size_t>(chart_.Height));
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
        const std::size_t texel = At(x, y);
        NearestPiece& known = nearest[texel];
        if (known.Distance == 0) continue;
        const PlanePoint center = OnLattice(texel), point = NearestPointOf(outline, center);
        const double distance = DistanceOf(center, point);
        if (distance < known.Distance && distance <= reachOfTexels) known = {distance, point, static_cast<int>(i)};
      }
  }
  return nearest;
}

/// Finds a point in the open for a texel: its centre, else where its piece is nearest, else one of its samples.
bool TexelSamples::FindEye(std::size_t texel, Vector3& eye) const {
  const NearestPiece& nearest = nearest_[texel];
  const PlanePoint center = OnLattice(texel);
  const PlanePolygon& outline = chart_.Pieces[static_cast<std::size_t>(nearest.Piece)].Outline;
  const double margin = inward / lattice_.Texel;
  const PlanePoint inside = MovedInside(nearest.Point, CenterOf(outline), margin);
  eye = lattice_.ToSpace(center);
  if (nearest.Distance > margin) {
    const Vector3 onPiece = lattice_.ToSpace(inside);
    if (!shadows_.Connected(onPiece, eye, lattice_.Normal) || shadows_.InSolid(eye, lattice_.Normal)) eye = onPiece;
  } else if (nearest.Distance > 0 || DistanceToEdge(outline, center) < margin) {
    eye = lattice_.ToSpace(inside);
  }
  if (!shadows_.InSolid(eye, lattice_.Normal)) return true;
  if (nearest.Distance > 0) return false;
  const std::array<Vector3, 4> samples = PointsOf(texel);
  const auto open = std::find_if(samples.begin(), samples.end(),
                                 [&](const Vector3& sample) { return !shadows_.InSolid(sample, lattice_.Normal); });
  if (open == samples.end()) return false;
  eye = *open;
  return true;
}

void TexelSamples::OpenTexel(std::size_t texel) {
  Vector3& eye = eyes_[texel];
  if (!FindEye(texel, eye)) return;
  links_[texel] = std::uint16_t{1} << itself;
  const std::array<bool, 4> open = shadows_.Connected(eye, PointsOf(texel), lattice_.Normal);
  for (std::size_t i = 0; i < open.size(); ++i)
    if (open[i]) open_[texel] |= static_cast<SampleMask>(1U << i);
}

/// Finds out which of its neighbours a texel takes samples from, four at a time: the others have asked already.
void TexelSamples::Link(int x, int y) {
  const std::size_t texel = At(x, y);
  if (links_[texel] == 0) return;
  std::array<Vector3, 4> ways;
  ways.fill(eyes_[texel]);
  std::array<std::size_t, 4> others;
  others.fill(texel);
  for (int i = 0; i < 4; ++i) {
    const int u = x + StepU(itself + 1 + i), v = y + StepV(itself + 1 + i);
    if (u < 0 || u >= chart_.Width || v >= chart_.Height || links_[At(u, v)] == 0) continue;
    others[static_cast<std::size_t>(i)] = At(u, v);
    ways[static_cast<std::size_t>(i)] = eyes_[At(u, v)];
  }
  const std::array<bool, 4> open = shadows_.Connected(eyes_[texel], ways, lattice_.Normal);
  for (std::size_t i = 0; i < open.size(); ++i) {
    if (!open[i] || others[i] == texel) continue;
    links_[texel] |= static_cast<std::uint16_t>(1U << (itself + 1 + i));
    links_[others[i]] |= static_cast<std::uint16_t>(1U << (itself - 1 - i));
  }
}

/// Of surfaces so small that no sample falls on them.
void TexelSamples::LookFromEyes() {
  std::vector<std::size_t> found;
  for (std::size_t texel = 0; texel < nearest_.size(); ++texel)
    if (links_[texel] != 0 && nearest_[texel].Distance < reachOfFilter && MeanAround(texel, open_, open_) < 0)
      found.push_back(texel);
  for (const std::size_t texel : found) {
    fromEye_[texel] = true;
    open_[texel] = 1;
  }
}

std::array<Vector3, 4> TexelSamples::PointsOf(std::size_t texel) const {
  std::array<Vector3, 4> points;
  const PlanePoint center = OnLattice(texel);
  for (std::size_t i = 0; i < points.size(); ++i)
    points[i] = fromEye_[texel] ? eyes_[texel]
                                : lattice_.ToSpace({center.U + sampleOffsets[i].U, center.V + sampleOffsets[i].V});
  return points;
}

double TexelSamples::MeanAround(std::size_t texel, std::span<const SampleMask> known,
                                std::span<const SampleMask> seen) const {
  double all = 0, some = 0;
  for (int number = 0; number < around; ++number) {
    if (!(links_[texel] >> number & 1)) continue;
    const std::size_t other = static_cast<std::size_t>(static_cast<std::ptrdiff_t>(texel) + StepU(number) +
                                                       std::ptrdiff_t(StepV(number)) * chart_.Width);
    const auto& weightsOf = weights[static_cast<std::size_t>(number)];
    all += weightsOf[known[other]];
    some += weightsOf[seen[other]];
  }
  return all > 0 ? some / all : -1;
}

} // namespace quarvel
