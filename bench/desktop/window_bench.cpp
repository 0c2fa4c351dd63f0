// Converts one large level in the window, without a screen, and with the command line, each in a process of its own,
// and prints time and memory side by side. The window has to show progress and textures, and to let events happen,
// within a tenth of what the conversion itself takes.
//   quarvel_window_bench [LEVEL [TEXTURES]]     without a level, one of 10,000 brushes is made

#include "app/cli/command_line.h"
#include "app/desktop/form_main.h"
#include "app/desktop/qt_text.h"
#include "bench/made_level.h"

#include <QApplication>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace quarvel::bench {

namespace {

namespace fs = std::filesystem;

/// What a run took. Processor time, since what else runs on a machine only adds to the time on its clock.
struct Cost {
  double Seconds = 0;
  double Before = 0; ///< MB that the program held when the run began
  double Peak = 0;   ///< MB
};

double ProcessorSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// A line of the process's status as Linux writes it, in MB.
double Megabytes(const std::string& key) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with(key + ":")) return std::atof(line.c_str() + key.size() + 1) / 1024;
  return 0;
}

template <typename Run>
int Measure(Run run) {
  const double before = Megabytes("VmRSS"), start = ProcessorSeconds();
  if (!run()) return 1;
  std::printf("%f %f %f\n", ProcessorSeconds() - start, before, Megabytes("VmHWM"));
  return 0;
}

int RunCommand(const std::string& level, const std::string& textures) {
  const std::string output = level + ".command.wrl";
  const char* arguments[] = {"quarvel", "--textures", textures.c_str(), level.c_str(), output.c_str()};
  std::ostringstream said;
  return Measure([&] { return RunCommandLine(5, arguments, {said, said, false, {}}) == ExitCode::Done; });
}

int RunWindow(const std::string& level, const std::string& textures) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  int argc = 1;
  char name[] = "quarvel-desktop";
  char* argv[] = {name, nullptr};
  QApplication program(argc, argv);
  DesktopServices services;
  FormMain form(ToQString(level + ".ini"), services);
  ConversionSettings settings;
  settings.ComboInFileName = level;
  settings.TextOutFileName = level + ".window.wrl";
  settings.TextSearchPathTxt = textures;
  form.ShowSettings(settings);
  form.show();
  QApplication::processEvents();
  return Measure([&] {
    form.Go();
    return form.Results().size() == 1 && form.Results().front().Outcome == RunOutcome::Done;
  });
}

Cost CostOf(const char* mode, const std::string& level, const std::string& textures) {
  const std::string command =
      "/proc/" + std::to_string(getpid()) + "/exe " + mode + " '" + level + "' '" + textures + "'";
  FILE* output = popen(command.c_str(), "r");
  if (!output) throw std::runtime_error("cannot run " + command);
  Cost cost;
  const bool printed = std::fscanf(output, "%lf %lf %lf", &cost.Seconds, &cost.Before, &cost.Peak) == 3;
  if (pclose(output) != 0 || !printed) throw std::runtime_error("failed: " + command);
  return cost;
}

void Better(Cost& best, const Cost& cost) {
  if (best.Seconds == 0 || cost.Seconds < best.Seconds) best.Seconds = cost.Seconds;
  best.Before = cost.Before;
  best.Peak = cost.Peak;
}

void PrintLine(const char* what, double window, double command, bool judged) {
  std::printf("%-28s %10.2f %14.2f %9.2f%s\n", what, window, command, window / command,
              !judged                   ? ""
              : window <= command * 1.1 ? "   wanted: at most 1.10"
                                        : "   wanted: at most 1.10   MISSED");
}

void Compare(const std::string& level, const std::string& textures) {
  Cost window, command;
  for (int i = 0; i < 5; ++i) { // in turn, so that both see the same machine
    Better(window, CostOf("--window", level, textures));
    Better(command, CostOf("--command", level, textures));
  }
  std::printf("%s, %.1f MB of T3D\n", fs::path(level).filename().c_str(),
              static_cast<double>(fs::file_size(level)) / 1e6);
  std::printf("%-28s %10s %14s %9s\n", "", "window", "command line", "ratio");
  PrintLine("seconds of processor time", window.Seconds, command.Seconds, true);
  PrintLine("MB that the run took", window.Peak - window.Before, command.Peak - command.Before, true);
  PrintLine("MB of the program, at most", window.Peak, command.Peak, false);
}

} // namespace

int Main(int argc, char** argv) {
  const std::string mode = argc == 4 ? argv[1] : "";
  if (mode == "--window") return RunWindow(argv[2], argv[3]);
  if (mode == "--command") return RunCommand(argv[2], argv[3]);
  std::string folder = (fs::temp_directory_path() / "quarvel_benchXXXXXX").string();
  if (!mkdtemp(folder.data())) return 1;
  const std::string level = folder + "/level.t3d";
  if (argc > 1)
    fs::copy_file(argv[1], level);
  else
    std::ofstream(level, std::ios::binary) << MakeLevel(10000);
  Compare(level, argc > 2 ? argv[2] : QUARVEL_SAMPLES_DIR "/textures");
  fs::remove_all(folder);
  return 0;
}

} // namespace quarvel::bench

int main(int argc, char** argv) { return quarvel::bench::Main(argc, argv); }
