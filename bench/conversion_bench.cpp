// Converts levels of 100, 1,000 and 10,000 brushes with default options, both scenes written, and prints what is wanted
// of a conversion beside what it did: T3D per second, growth, memory, and time beside a plain search of the same file.

#include "bench/made_crowd.h"
#include "bench/made_level.h"
#include "core/conversion_run.h"
#include "settings/settings_store.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace quarvel::bench {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

/// Adds up the time between the passes that a run shows.
class PassClock : public RunInterface {
 public:
  void ShowPass(std::string_view text) override {
    EndPass();
    pass_ = text;
  }
  void EndPass() {
    if (pass_.empty()) pass_ = "Starting";
    if (!seconds_.contains(pass_)) order_.push_back(pass_);
    seconds_[pass_] += SecondsSince(std::exchange(start_, Clock::now()));
  }

  /// "Reading file 4%, Processing Brushes 70%, ...": what takes at least half a percent. The document is written, and
  /// everything is freed, after the last pass has been shown, and counts as that one's.
  std::string Shares() const {
    double total = 0;
    for (const auto& [pass, seconds] : seconds_)
      total += seconds;
    std::string shares;
    for (const std::string& pass : order_) {
      const int percent = static_cast<int>(100 * seconds_.at(pass) / total + 0.5);
      if (percent > 0) shares += (shares.empty() ? "" : ", ") + pass + " " + std::to_string(percent) + "%";
    }
    return shares;
  }

 private:
  std::string pass_;
  std::vector<std::string> order_;
  std::map<std::string, double> seconds_;
  Clock::time_point start_ = Clock::now();
};

/// The levels and their scenes, until the program ends.
class Workplace {
 public:
  Workplace() {
    std::string pattern = (fs::temp_directory_path() / "quarvel_benchXXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~Workplace() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  fs::path Level(int brushes) const {
    const fs::path file = folder_ / (std::to_string(brushes) + ".t3d");
    if (!fs::exists(file)) std::ofstream(file, std::ios::binary) << MakeLevel(brushes);
    return file;
  }
  fs::path Crowd(const CrowdKind& kind, int count) const {
    const fs::path folder =
        folder_ / ("crowd" + std::to_string(&kind - CrowdKinds().data()) + "-" + std::to_string(count));
    fs::create_directories(folder);
    kind.Make(folder, count);
    return folder / "level.t3d";
  }

 private:
  fs::path folder_;
};

void ConvertOnce(const fs::path& level, RunInterface& user) {
  ConversionSettings settings;
  settings.TextSearchPathTxt = QUARVEL_SAMPLES_DIR "/textures;" + (level.parent_path() / "lib").string();
  settings.CheckOutputFlyThru = level.filename() == "level.t3d";
  const fs::path out = level.parent_path() / "out";
  fs::remove_all(out); // copies that are there are not made again
  MemoryStore store;
  RunMemory memory;
  const RunResult result = ConvertFile(level, out / "level.wrl", settings, store, memory, user);
  if (result.Outcome != RunOutcome::Done || result.Brushes == 0) throw std::runtime_error("failed: " + result.Error);
}

/// Peak memory of this process in bytes, as Linux accounts for it.
double PeakMemory() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with("VmHWM:")) return 1024 * std::atof(line.c_str() + 6);
  return 0;
}

/// What a process of its own took. Its processor time, and the best of several: what else runs here only ever adds.
struct Cost {
  double Seconds = 1e9;
  double Printed = 0; ///< the number that the command printed
};

double ProcessorSecondsOfChildren() {
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

Cost CostOf(const std::string& command) {
  Cost cost;
  for (int i = 0; i < 5; ++i) {
    const double start = ProcessorSecondsOfChildren();
    FILE* output = popen(command.c_str(), "r");
    if (output == nullptr) throw std::runtime_error("cannot run " + command);
    const bool printed = std::fscanf(output, "%lf", &cost.Printed) == 1;
    if (pclose(output) != 0 || !printed) throw std::runtime_error("failed: " + command);
    cost.Seconds = std::min(cost.Seconds, ProcessorSecondsOfChildren() - start);
  }
  return cost;
}

/// A conversion in a fresh process, as a user runs it: a second one in the same process has its memory at hand already.
Cost CostOfConverting(const fs::path& level) {
  return CostOf("/proc/" + std::to_string(getpid()) + "/exe --convert '" + level.string() + "'");
}

void Convert(benchmark::State& state, const Workplace& place) {
  const fs::path level = place.Level(static_cast<int>(state.range(0)));
  PassClock clock;
  for (auto _ : state) {
    ConvertOnce(level, clock);
    clock.EndPass();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(fs::file_size(level)));
  state.SetLabel(clock.Shares());
}

void PrintLine(const char* what, double value, const char* wanted, bool met) {
  std::printf("%-52s %8.1f   wanted: %s%s\n", what, value, wanted, met ? "" : "   MISSED");
}

void PrintSummary(const Workplace& place) {
  const fs::path level = place.Level(10000);
  const double bytes = static_cast<double>(fs::file_size(level));
  const Cost cost = CostOfConverting(level);
  const double speed = bytes / 1e6 / cost.Seconds;
  const double growth = cost.Seconds / CostOfConverting(place.Level(1000)).Seconds;
  const double greps = cost.Seconds / CostOf("grep -c Class= '" + level.string() + "'").Seconds;
  const double memory = cost.Printed / bytes;
  std::printf("\n10,000 brushes, %.1f MB of T3D, a process of its own:\n", bytes / 1e6);
  PrintLine("MB of T3D per second", speed, "at least 60", speed >= 60);
  PrintLine("times the time of 1,000 brushes", growth, "at most 11", growth <= 11);
  PrintLine("times the time of grep -c Class=", greps, "at most 40", greps <= 40);
  PrintLine("peak memory as a multiple of the T3D", memory, "at most 6", memory <= 6);
}

void PrintGrowth(const Workplace& place) {
  std::printf("\nFour times as many of what refers to one another:\n");
  for (const CrowdKind& kind : CrowdKinds()) {
    const double once = CostOfConverting(place.Crowd(kind, kind.Count)).Seconds;
    const double growth = CostOfConverting(place.Crowd(kind, 4 * kind.Count)).Seconds / once;
    PrintLine((std::to_string(4 * kind.Count) + " " + kind.What + ": times").c_str(), growth, "at most 5", growth <= 5);
  }
}

} // namespace

int Main(int argc, char** argv) {
  if (argc == 3 && std::string_view(argv[1]) == "--convert") {
    RunInterface user;
    ConvertOnce(argv[2], user);
    std::printf("%.0f\n", PeakMemory());
    return 0;
  }
  const Workplace place;
  benchmark::RegisterBenchmark("Convert", [&](benchmark::State& state) { Convert(state, place); })
      ->Arg(100)
      ->Arg(1000)
      ->Arg(10000)
      ->Unit(benchmark::kMillisecond);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  PrintSummary(place);
  PrintGrowth(place);
  return 0;
}

} // namespace quarvel::bench

int main(int argc, char** argv) { return quarvel::bench::Main(argc, argv); }
