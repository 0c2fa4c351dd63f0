// Indexes the packages of a game's folder, and prints what that took beside what is wanted. With a level file and its
// text as arguments, in this order, it also tells how much longer the level file takes.

#include "core/conversion_run.h"
#include "resources/package_library.h"
#include "settings/settings_store.h"
#include "tests/packages/made_package.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace quarvel::bench {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int packages = 150;
constexpr int objects = 20000;

/// The best of several, in seconds: what else runs here only ever adds.
template <typename Task>
double SecondsOf(int times, Task task) {
  double best = 1e9;
  for (int i = 0; i < times; ++i) {
    const auto start = Clock::now();
    task();
    best = std::min(best, std::chrono::duration<double>(Clock::now() - start).count());
  }
  return best;
}

void MakeGame(const fs::path& folder) {
  for (int i = 0; i < packages; ++i) {
    test::MadePackage made;
    const ObjectRef group = made.Export("Package", "Walls");
    for (int object = 1; object < objects / packages + 1; ++object)
      made.Export(object % 5 == 0 ? "Sound" : "Texture", "Thing" + std::to_string(i * 1000 + object),
                  test::Blob(4096, 1), group);
    const test::Blob file = made.Build();
    std::ofstream(folder / ("Package" + std::to_string(i) + ".utx"), std::ios::binary)
        .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
  }
}

bool Index(const fs::path& folder) {
  std::size_t indexed = 0;
  const double seconds = SecondsOf(5, [&] {
    Report report;
    PackageLibrary library;
    library.AddFolders(FileIndex({folder}), report);
    library.Sort();
    indexed = library.Objects();
  });
  const bool met = seconds <= 0.3 && indexed >= objects - packages;
  std::printf("%d packages, %zu objects indexed: %.3f s   wanted: at most 0.3%s\n", packages, indexed, seconds,
              met ? "" : "   MISSED");
  return met;
}

double SecondsOfConverting(const fs::path& level, const fs::path& folder) {
  return SecondsOf(15, [&] {
    ConversionSettings settings;
    settings.TextSearchPathTxt = settings.TextSearchPathSnd = folder.string();
    MemoryStore store;
    RunMemory memory;
    RunInterface user;
    const RunResult result = ConvertFile(level, folder / "scene.wrl", settings, store, memory, user);
    if (result.Outcome != RunOutcome::Done) std::printf("%s\n", result.Error.c_str());
  });
}

bool Compare(const fs::path& level, const fs::path& text, const fs::path& folder) {
  const double asFile = SecondsOfConverting(level, folder);
  const double asText = SecondsOfConverting(text, folder);
  const bool met = asFile <= 2 * asText;
  std::printf("level file %.1f ms, its text %.1f ms: %.2f times   wanted: at most 2%s\n", asFile * 1e3, asText * 1e3,
              asFile / asText, met ? "" : "   MISSED");
  return met;
}

} // namespace

} // namespace quarvel::bench

int main(int count, char** arguments) {
  std::string pattern = (std::filesystem::temp_directory_path() / "quarvel_benchXXXXXX").string();
  const std::filesystem::path folder = mkdtemp(pattern.data());
  std::filesystem::create_directories(folder / "game");
  std::filesystem::create_directories(folder / "none");
  quarvel::bench::MakeGame(folder / "game");
  bool met = quarvel::bench::Index(folder / "game");
  if (count == 3) met = quarvel::bench::Compare(arguments[1], arguments[2], folder / "none") && met;
  std::filesystem::remove_all(folder);
  return met ? 0 : 1;
}
