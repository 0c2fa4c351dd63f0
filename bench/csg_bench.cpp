// Carves made levels of 500, 5,000 and 50,000 structural brushes on one core, converts one of 5,000 with carving in a
// process of its own, and prints what is wanted beside what it took.

#include "bench/made_rooms.h"
#include "core/conversion_run.h"
#include "settings/settings_store.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quarvel::bench {

namespace {

namespace fs = std::filesystem;

void Carve(benchmark::State& state) {
  const std::vector<CsgBrush> brushes = MakeRooms(static_cast<int>(state.range(0)));
  std::size_t faces = 0;
  for (auto _ : state) {
    const CarvedLevel level = CarveLevel(brushes);
    if (!level.OpenEdges.empty() || !level.Refused.empty()) state.SkipWithError("not carved");
    faces = level.Faces.size();
  }
  state.SetLabel(std::to_string(faces) + " faces");
}

/// Processor time, the best of several: what else runs here only ever adds.
double SecondsToCarve(int brushes) {
  const std::vector<CsgBrush> made = MakeRooms(brushes);
  double best = 1e9;
  for (int i = 0; i < 5; ++i) {
    const std::clock_t start = std::clock();
    benchmark::DoNotOptimize(CarveLevel(made));
    best = std::min(best, static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
  }
  return best;
}

void ConvertCarved(const fs::path& level) {
  ConversionSettings settings;
  settings.TextSearchPathTxt = QUARVEL_SAMPLES_DIR "/textures";
  settings.CheckCarve = true;
  MemoryStore store;
  RunMemory memory;
  RunInterface user;
  const RunResult result = ConvertFile(level, fs::path(level).replace_extension(".wrl"), settings, store, memory, user);
  if (result.Outcome != RunOutcome::Done || !result.Carving.Done) throw std::runtime_error("failed: " + result.Error);
}

/// Peak memory of a process that converts a level, as a multiple of the level's text.
double MemoryOfConverting(int brushes) {
  std::string pattern = (fs::temp_directory_path() / "quarvel_csg_benchXXXXXX").string();
  const fs::path folder = mkdtemp(pattern.data()), level = folder / "rooms.t3d";
  std::ofstream(level, std::ios::binary) << MakeRoomsLevel(brushes);
  const double bytes = static_cast<double>(fs::file_size(level));
  const std::string program = fs::read_symlink("/proc/self/exe").string();
  const pid_t child = fork();
  if (child == 0) {
    execl(program.c_str(), program.c_str(), "--convert", level.c_str(), nullptr);
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  if (wait4(child, &status, 0, &usage) != child || status != 0) throw std::runtime_error("converting failed");
  fs::remove_all(folder);
  return 1024.0 * static_cast<double>(usage.ru_maxrss) / bytes;
}

void PrintLine(const char* what, double value, const char* wanted, bool met) {
  std::printf("%-44s %8.2f   wanted: %s%s\n", what, value, wanted, met ? "" : "   MISSED");
}

} // namespace

int Main(int argc, char** argv) {
  if (argc == 3 && std::string_view(argv[1]) == "--convert") {
    ConvertCarved(argv[2]);
    return 0;
  }
  benchmark::RegisterBenchmark("Carve", Carve)->Arg(500)->Arg(5000)->Arg(50000)->Unit(benchmark::kMillisecond);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  const double seconds = SecondsToCarve(5000), growth = SecondsToCarve(50000) / seconds;
  const double memory = MemoryOfConverting(5000);
  std::printf("\n5,000 structural brushes:\n");
  PrintLine("seconds to carve", seconds, "at most 0.3", seconds <= 0.3);
  PrintLine("times that for 50,000", growth, "at most 12", growth <= 12);
  PrintLine("memory to convert, as a multiple of the T3D", memory, "at most 8", memory <= 8);
  return 0;
}

} // namespace quarvel::bench

int main(int argc, char** argv) { return quarvel::bench::Main(argc, argv); }
