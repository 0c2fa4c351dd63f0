#include "light/chart_texels.h"

#include "light/texel_samples.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace quarvel {

namespace {

enum class TexelState : std::uint8_t {
  Unused,
  Waiting, ///< in solid matter: takes the light of its neighbours
  Lit,
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
      : chart_(chart), normal_(chart.Lattice.Normal), surface_(surface), shadows_(shadows), samples_(chart, shadows),
        texels_(static_cast<std::size_t>(chart.Width) * static_cast<std::size_t>(chart.Height), surface.Ambient),
        states_(texels_.size(), TexelState::Unused), known_(texels_.size()), seen_(texels_.size()) {
    for (const Lamp& lamp : lamps)
      if (lamp.SpecialLit == surface.SpecialLit && MayReach(lamp, chart)) lamps_.push_back(&lamp);
  }

  /// Gives each texel the ambient light of its own zone, or what is everywhere.
  void TellZonesApart(const ZoneLight& zones) {
    ZoneLight::Search search = zones.Around(samples_.PlaceOf(texels_.size() / 2));
    for (std::size_t i = 0; i < texels_.size(); ++i)
      if (samples_.HasEye(i)) texels_[i] = zones.At(samples_.EyeOf(i), normal_, search).value_or(zones.Everywhere());
  }

  LitTexels Run(Image& page) {
    for (const Lamp* lamp : lamps_)
      AddLamp(*lamp);
    const LitTexels lit = Finish();
    FillWaiting();
    Store(page);
    return lit;
  }

 private:
  std::size_t At(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(chart_.Width) + static_cast<std::size_t>(x);
  }

  void AddLamp(const Lamp& lamp) {
    std::vector<Vector3>& light = lightOfLamp_;
    light.assign(texels_.size(), Vector3());
    for (std::size_t i = 0; i < texels_.size(); ++i) {
      known_[i] = seen_[i] = 0;
      if (!samples_.IsUsed(i)) continue;
      light[i] = LightFrom(lamp, samples_.PlaceOf(i), normal_);
      if (light[i] == Vector3() || samples_.OpenOf(i) == 0) continue;
      known_[i] = samples_.OpenOf(i);
      seen_[i] = known_[i] & shadows_.WhichSee(lamp, samples_.PointsOf(i), normal_);
    }
    for (std::size_t i = 0; i < texels_.size(); ++i)
      if (light[i] != Vector3())
        if (const double part = samples_.MeanAround(i, known_, seen_); part > 0)
          texels_[i] = AddVector(texels_[i], ScaleVector(light[i], part));
  }

  LitTexels Finish() {
    LitTexels lit;
    const std::vector<SampleMask>& open = samples_.Open();
    for (std::size_t i = 0; i < texels_.size(); ++i) {
      if (!samples_.IsUsed(i)) continue;
      states_[i] = samples_.MeanAround(i, open, open) < 0 ? TexelState::Waiting : TexelState::Lit;
      if (states_[i] == TexelState::Waiting) continue;
      Vector3& light = texels_[i];
      light = ToneMapped(light);
      ++lit.Count;
      lit.Sum += ToByte(light.X) + ToByte(light.Y) + ToByte(light.Z);
    }
    return lit;
  }

  /// Ring by ring, each waiting texel takes the mean of its neighbours that have light.
  void FillWaiting() {
    for (bool found = true; found;) {
      found = false;
      const std::vector<TexelState> before = states_;
      for (int y = 0; y < chart_.Height; ++y)
        for (int x = 0; x < chart_.Width; ++x)
          if (before[At(x, y)] == TexelState::Waiting && TakeFromNeighbours(x, y, before)) found = true;
    }
  }

  bool TakeFromNeighbours(int x, int y, const std::vector<TexelState>& before) {
    Vector3 sum;
    int count = 0;
    for (int v = std::max(y - 1, 0); v <= std::min(y + 1, chart_.Height - 1); ++v)
      for (int u = std::max(x - 1, 0); u <= std::min(x + 1, chart_.Width - 1); ++u) {
        if (before[At(u, v)] != TexelState::Lit) continue;
        sum = AddVector(sum, texels_[At(u, v)]);
        ++count;
      }
    if (count == 0) return false;
    texels_[At(x, y)] = ScaleVector(sum, 1.0 / count);
    states_[At(x, y)] = TexelState::Lit;
    return true;
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
  const Vector3& normal_;
  const LitSurface& surface_;
  const ShadowScene& shadows_;
  const TexelSamples samples_;
  std::vector<const Lamp*> lamps_;
  std::vector<Vector3> texels_;
  std::vector<TexelState> states_;
  std::vector<SampleMask> known_, seen_; ///< of one lamp
  std::vector<Vector3> lightOfLamp_;     ///< where nothing hides it
};

} // namespace

LitTexels LightChart(const Chart& chart, std::span<const LitSurface> surfaces, std::span<const Lamp> lamps,
                     const ShadowScene& shadows, const ZoneLight* zones, Image& page) {
  const auto surfaceOf = [&](const ChartPiece& piece) -> const LitSurface& {
    return surfaces[static_cast<std::size_t>(piece.Surface)];
  };
  ChartLighter lighter(chart, surfaceOf(chart.Pieces.front()), lamps, shadows);
  if (zones && std::any_of(chart.Pieces.begin(), chart.Pieces.end(),
                           [&](const ChartPiece& piece) { return surfaceOf(piece).HasZones; }))
    lighter.TellZonesApart(*zones);
  return lighter.Run(page);
}

} // namespace quarvel
