#include "core/run_summary.h"
#include "tests/core/converted.h"
#include "tests/made_actors.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace quarvel {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using Names = std::vector<std::string>;

std::string Brush(const std::string& name, const std::string& texture) {
  return test::TriangleActor("Brush Name=" + name, " CsgOper=CSG_Add", 1, "Texture=" + texture);
}

std::string SkyZone(const std::string& name) { return test::Actor("SkyZoneInfo Name=" + name, " Location=(X=1)"); }

/// Every file below a folder, sorted.
Names FilesIn(const fs::path& folder) {
  Names names;
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    if (!entry.is_directory()) names.push_back(entry.path().lexically_relative(folder).generic_string());
  std::sort(names.begin(), names.end());
  return names;
}

TEST(UntrustedLevel, NamesNoFileOutsideItsFolderAndNoneOfTheUsers) {
  const TemporaryFolder folder;
  folder.Write("lib/A/wall.png", "a");
  folder.Write("lib/B/wall.png", "bb");
  folder.Write("lib/C/wall.png", "ccc");
  ConversionSettings settings;
  settings.TextSearchPathTxt = (folder.Path() / "lib").string();
  settings.CheckSkyZone = true;
  const std::string outside = (folder.Path() / "abs").string();
  for (const std::string& sky : {"../x"s, "../../x"s, outside, "C:\\x"s}) {
    const std::string level =
        Brush("A", "A.wall") + Brush("B", "Makefile\0.B.wall"s) + Brush("C", "..\\Up.C.wall") + SkyZone(sky);
    fs::create_directories(folder.Path() / "out/deep/down");
    folder.Write("out/deep/down/Makefile", "mine");
    folder.Write("out/deep/down/level.t3d", level);
    RunInterface user;
    MemoryStore store;
    RunMemory memory;
    const fs::path out = folder.Path() / "out/deep/down/level.wrl";
    const RunResult result = ConvertFile(folder.Path() / "out/deep/down/level.t3d", out, settings, store, memory, user);
    EXPECT_EQ(result.Outcome, RunOutcome::Done) << result.Error;
    EXPECT_EQ(folder.Read("out/deep/down/Makefile"), "mine");
    const Names files = FilesIn(folder.Path());
    const auto isForeign = [](const std::string& name) {
      return !name.starts_with("lib/") && fs::path(name).parent_path() != "out/deep/down";
    };
    EXPECT_FALSE(std::any_of(files.begin(), files.end(), isForeign)) << sky;
    EXPECT_EQ(FilesIn(folder.Path() / "out").size(), 10U)
        << sky; // two of the user's, four scenes, three copies, their list
    fs::remove_all(folder.Path() / "out");
  }
}

TEST(UntrustedLevel, ReachesNoTerminalOrListRaw) {
  const TemporaryFolder folder;
  const std::string level = Brush("A\x1B[2J", "T\x1B]0;t\x07"
                                              "ex") +
                            SkyZone("S") + "Begin Actor Class=Tree\x9B Name=B\nEnd Actor\n";
  const test::Converted converted = test::ConvertIn(folder, level);
  std::ostringstream summary;
  WriteSummary(summary, converted.Result, SummaryLength::Full);
  const auto isRaw = [](char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\r'; };
  for (const std::string& text : {summary.str(), folder.Read("levelMissingTextures.txt")}) {
    EXPECT_FALSE(std::any_of(text.begin(), text.end(), isRaw)) << text;
    EXPECT_NE(text.find("T?]0;t?ex"), std::string::npos) << text;
  }
}

} // namespace
} // namespace quarvel
