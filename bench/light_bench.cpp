// Bakes the light of a made level of about 8,000 faces and 230 lamps on all cores, and prints what is wanted beside
// what it took.

#include "bench/made_rooms.h"
#include "light/zone_light.h"
#include "scene/level_light.h"
#include "scene/lit_level.h"
#include "t3d/light_records.h"

#include <array>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <sys/resource.h>

namespace quarvel::bench {

namespace {

constexpr int roomsOfLevel = 62, brushesOfRoom = 11;
constexpr double pitch = 1024;
constexpr int lampsOfLevel = 230;

/// A corner of a room, as MakeRooms lays them out.
Vector3 CornerOfRoom(int room, int rooms) {
  const int row = static_cast<int>(std::ceil(std::sqrt(rooms)));
  return {room % row * pitch, room / row * pitch, 0};
}

std::vector<LitSurface> MadeSurfaces(int rooms) {
  const CarvedLevel level = CarveLevel(MakeRooms(rooms * brushesOfRoom));
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
    light.Location =
        AddVector(CornerOfRoom(room, roomsOfLevel), {place % 2 ? 480.0 : 190.0, place / 2 ? 480.0 : 260.0, 280});
    light.LightRadius = 40;
    light.LightHue = 37 * i % 255;
    light.LightSaturation = 128;
    lamps.push_back(MakeLamp(light, 1));
  }
  return lamps;
}

/// In each room some places in one of two zones.
std::vector<ZoneSeed> MadeSeeds(int rooms) {
  std::vector<ZoneSeed> seeds;
  for (int i = 0; i < rooms * 16; ++i) {
    const int room = i / 16, place = i % 16;
    const double light = room % 2 ? 0.2 : 0.1;
    seeds.push_back(
        {AddVector(CornerOfRoom(room, rooms), {100.0 + 25 * place, 260, 200 + 5.0 * place}), {light, light, light}});
  }
  return seeds;
}

/// Seconds of the last run.
double lastSeconds = 0;
/// Seconds to tell zones apart in a level, and in one four times as large.
std::array<double, 2> zoneSeconds{};

void TellZonesApart(benchmark::State& state) {
  const int times = static_cast<int>(state.range(0)), rooms = roomsOfLevel * times;
  const std::vector<LitSurface> surfaces = MadeSurfaces(rooms);
  for (auto _ : state) {
    std::vector<LitSurface> lit = surfaces;
    const auto start = std::chrono::steady_clock::now();
    ZoneLight zones(lit, MadeSeeds(rooms), {});
    zones.Light(lit);
    zoneSeconds[times > 1] = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (lit.front().Ambient == Vector3()) throw std::runtime_error("no zone is found");
  }
}

void Bake(benchmark::State& state) {
  const std::vector<LitSurface> surfaces = MadeSurfaces(roomsOfLevel);
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
  benchmark::RegisterBenchmark("TellZonesApart", TellZonesApart)->Arg(1)->Arg(4)->Unit(benchmark::kMillisecond);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  const double memory = PeakGigabytes();
  std::printf("\nseconds to bake %6.2f   wanted: at most 8%s\n", lastSeconds, lastSeconds <= 8 ? "" : "   MISSED");
  std::printf("peak memory, GB %6.2f   wanted: at most 1.5%s\n", memory, memory <= 1.5 ? "" : "   MISSED");
  const double growth = zoneSeconds[1] / zoneSeconds[0];
  std::printf("zones, 4 times  %6.2f   wanted: at most 6%s\n", growth, growth <= 6 ? "" : "   MISSED");
  return 0;
}

} // namespace quarvel::bench

int main(int argc, char** argv) { return quarvel::bench::Main(argc, argv); }
