#include "light/light_baker.h"

#include "images/image_png.h"
#include "light/atlas.h"
#include "light/chart_texels.h"
#include "light/charts.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <exception>
#include <limits>
#include <mutex>
#include <thread>

namespace quarvel {

namespace {

constexpr double farthest = 4e6;   // Unreal units from the origin
constexpr double coarsest = 65536; // Unreal units a texel; from here on there are as many pages as it takes
constexpr auto betweenReports = std::chrono::milliseconds(100);

struct Layout {
  std::vector<Chart> Charts;
  std::vector<PageSize> Pages;
  double Texel = 0;
};

/// Doubles the texel until the charts fit the pages.
Layout LayOut(std::span<const LitSurface> surfaces, const ShadowScene& shadows, const BakeOptions& options) {
  const double capacity = static_cast<double>(options.PageSide) * options.PageSide * options.MaxPages;
  Layout layout;
  for (layout.Texel = options.Texel;; layout.Texel *= 2) {
    const bool last = layout.Texel >= coarsest;
    if (!last && TexelsOf(surfaces, layout.Texel) > capacity) continue;
    layout.Charts = MakeCharts(surfaces, shadows, layout.Texel, options.PageSide);
    layout.Pages =
        PackCharts(layout.Charts, options.PageSide, last ? std::numeric_limits<int>::max() : options.MaxPages);
    if (!layout.Pages.empty() || layout.Charts.empty()) return layout;
  }
}

LitPiece PieceOf(const ChartPiece& piece, const Chart& chart, const PageSize& page) {
  LitPiece lit{piece.Surface, chart.Page, piece.Points, {}};
  for (const PlanePoint& point : piece.Outline)
    lit.Coordinates.push_back({(point.U - chart.FirstU + chart.PageX) / page.Width,
                               1 - (point.V - chart.FirstV + chart.PageY) / page.Height});
  return lit;
}

std::vector<LitPiece> PiecesOf(const Layout& layout) {
  std::vector<LitPiece> pieces;
  for (const Chart& chart : layout.Charts)
    for (const ChartPiece& piece : chart.Pieces)
      pieces.push_back(PieceOf(piece, chart, layout.Pages[static_cast<std::size_t>(chart.Page)]));
  std::stable_sort(pieces.begin(), pieces.end(),
                   [](const LitPiece& a, const LitPiece& b) { return a.Surface < b.Surface; });
  return pieces;
}

/// A page that is being lit: its memory lives from its first chart to its last.
struct OpenPage {
  std::once_flag Begun;
  Image Picture;
  std::atomic<std::size_t> ChartsLeft = 0;
};

/// The charts on their way to pages, shared by all threads.
class BakeJob {
 public:
  BakeJob(const Layout& layout, std::span<const LitSurface> surfaces, std::span<const Lamp> lamps,
          const ShadowScene& shadows, const ZoneLight* zones, BakedLight& result)
      : layout_(layout), surfaces_(surfaces), lamps_(lamps), shadows_(shadows), zones_(zones), result_(result),
        pages_(layout.Pages.size()) {
    for (std::size_t i = 0; i < layout.Charts.size(); ++i) {
      order_.push_back(i);
      ++pages_[static_cast<std::size_t>(layout.Charts[i].Page)].ChartsLeft;
    }
    // Page by page, the large ones first: few pages are open at a time, and no thread ends late.
    std::stable_sort(order_.begin(), order_.end(), [&](std::size_t a, std::size_t b) {
      const Chart &one = layout.Charts[a], &other = layout.Charts[b];
      return one.Page != other.Page ? one.Page < other.Page : one.Width * one.Height > other.Width * other.Height;
    });
    result.Pages.resize(pages_.size());
  }

  void Run(unsigned threads, const BakeProgress& progress) {
    running_ = threads;
    std::vector<std::jthread> workers;
    for (unsigned i = 0; i < threads; ++i)
      workers.emplace_back([this] { Work(); });
    std::unique_lock lock(mutex_);
    while (!ended_.wait_for(lock, betweenReports, [this] { return running_ == 0; })) {
      lock.unlock();
      if (progress && !progress(Done())) stop_ = true;
      lock.lock();
    }
    lock.unlock();
    workers.clear();
    if (failure_) std::rethrow_exception(failure_);
    result_.Texels = texels_;
    result_.Mean = static_cast<double>(sum_) / (3.0 * 255 * std::max(1.0, static_cast<double>(texels_)));
    result_.Stopped = stop_;
  }

 private:
  double Done() const {
    return std::min(1.0, static_cast<double>(next_) / static_cast<double>(std::max<std::size_t>(order_.size(), 1)));
  }

  void Work() {
    try {
      for (std::size_t i = next_++; i < order_.size() && !stop_; i = next_++)
        Light(layout_.Charts[order_[i]]);
    } catch (...) {
      const std::lock_guard lock(mutex_);
      if (!failure_) failure_ = std::current_exception();
      stop_ = true;
    }
    const std::lock_guard lock(mutex_);
    if (--running_ == 0) ended_.notify_all();
  }

  void Light(const Chart& chart) {
    const auto number = static_cast<std::size_t>(chart.Page);
    OpenPage& page = pages_[number];
    std::call_once(page.Begun, [&] {
      const PageSize& size = layout_.Pages[number];
      page.Picture = MakeImage(size.Width, size.Height, PixelFormat::Rgba8);
      for (std::size_t i = 3; i < page.Picture.Values.size(); i += 4)
        page.Picture.Values[i] = 255;
    });
    const LitTexels lit = LightChart(chart, surfaces_, lamps_, shadows_, zones_, page.Picture);
    texels_ += lit.Count;
    sum_ += lit.Sum;
    if (--page.ChartsLeft > 0) return;
    result_.Pages[number] = WritePng(page.Picture);
    page.Picture = Image();
  }

  const Layout& layout_;
  std::span<const LitSurface> surfaces_;
  std::span<const Lamp> lamps_;
  const ShadowScene& shadows_;
  const ZoneLight* zones_;
  BakedLight& result_;
  std::vector<OpenPage> pages_;
  std::vector<std::size_t> order_;
  std::atomic<std::size_t> next_ = 0;
  std::atomic<std::uint64_t> texels_ = 0, sum_ = 0;
  std::atomic<bool> stop_ = false;
  std::mutex mutex_;
  std::condition_variable ended_;
  unsigned running_ = 0;
  std::exception_ptr failure_;
};

} // namespace

bool IsSoundSurface(const LitSurface& surface) {
  if (surface.Points.size() < 3 || !(VectorLength(surface.Normal) > 0.5)) return false;
  return std::all_of(surface.Points.begin(), surface.Points.end(), [](const Vector3& p) {
    return std::fabs(p.X) < farthest && std::fabs(p.Y) < farthest && std::fabs(p.Z) < farthest;
  });
}

BakedLight BakeLight(std::span<const LitSurface> surfaces, std::span<const Lamp> lamps, const ShadowScene& shadows,
                     const BakeOptions& options, const BakeProgress& progress, const ZoneLight* zones) {
  BakedLight result;
  const Layout layout = LayOut(surfaces, shadows, options);
  result.Texel = layout.Texel;
  result.Pieces = PiecesOf(layout);
  const unsigned threads = options.Threads != 0 ? options.Threads : std::max(std::thread::hardware_concurrency(), 1U);
  BakeJob(layout, surfaces, lamps, shadows, zones, result).Run(threads, progress);
  if (result.Stopped) result.Pages.clear();
  return result;
}

Vector3 LightAtPoint(std::span<const Lamp> lamps, const ShadowScene& shadows, const Vector3& point,
                     const Vector3& normal, bool specialLit, const Vector3& ambient) {
  Vector3 sum = ambient;
  for (const Lamp& lamp : lamps)
    if (lamp.SpecialLit == specialLit) sum = AddVector(sum, shadows.Light(lamp, point, normal));
  return ToneMapped(sum);
}

} // namespace quarvel
