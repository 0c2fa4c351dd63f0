// Bakes the light of a made level of about 8,000 faces and 230 lamps on all cores, and prints what is wanted beside
// what it took.

#include "bench/made_rooms.h"
#include "scene/level_light.h"
#include "scene/lit_level.h"
#include "t3d/light_records.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <sys/resource.h>

namespace quarvel::bench {

namespace {

constexpr int roomsOfLevel = 62, brushesOfRoom = 11, roomsOfRow = 8; // as MakeRooms lays them out
constexpr double pitch = 1024;
constexpr int lampsOfLevel = 230;

std::vector<LitSurface> MadeSurfaces() {
  const CarvedLevel level = CarveLevel(MakeRooms(roomsOfLevel * brushesOfRoom));
  std::vector<LitSurface> surfaces;
  for (std::size_t i = 0; i < level.Faces.size(); ++i) {
    surfaces.push_back(MakeLitSurface(PointsOf(level.Mesh, i), level.Faces[i].Plane.Normal, level.Faces[i].Flags));
    surfaces.back().Texture = level.Faces[i].Polygon % 6;
  }
  return surfaces;
}

/// Up to four in each room, near its ceiling.
std::vector<Lamp> MadeLamps() {
  std::vector<Lamp> lamps;
  for (int i = 0; i < lampsOfLevel; ++i) {
    const int room = i % roomsOfLevel, place = i / roomsOfLevel;
    LightRecord light;
    light.Location = {room % roomsOfRow * pitch + (place % 2 ? 480 : 190),
                      room / roomsOfRow * pitch + (place / 2 ? 480 : 260), 280};
    light.LightRadius = 40;
    light.LightHue = 37 * i % 255;
    light.LightSaturation = 128;
    lamps.push_back(MakeLamp(light, 1));
  }
  return lamps;
}

/// Seconds of the last run.
double lastSeconds = 0;

void Bake(benchmark::State& state) {
  const std::vector<LitSurface> surfaces = MadeSurfaces();
  const std::vector<Lamp> lamps = MadeLamps();
  BakedLight baked;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    baked = LevelLight(surfaces, lamps, {0.02, 0.02, 0.02}).Bake({}, {});
    lastSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }
  if (baked.Pages.empty() || baked.Mean < 0.05) throw std::runtime_error("the level is dark");
  state.SetLabel(std::to_string(surfaces.size()) + " faces, " + std::to_string(lamps.size()) + " lamps, " +
                 std::to_string(baked.Texels) + " texels, " + std::to_string(baked.Pages.size()) + " pages");
}

double PeakGigabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) * 1024 / 1e9;
}

} // namespace

int Main(int argc, char** argv) {
  benchmark::RegisterBenchmark("Bake", Bake)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  const double memory = PeakGigabytes();
  std::printf("\nseconds to bake %6.2f   wanted: at most 8%s\n", lastSeconds, lastSeconds <= 8 ? "" : "   MISSED");
  std::printf("peak memory, GB %6.2f   wanted: at most 1.5%s\n", memory, memory <= 1.5 ? "" : "   MISSED");
  return 0;
}

} // namespace quarvel::bench

int main(int argc, char** argv) { return quarvel::bench::Main(argc, argv); }
