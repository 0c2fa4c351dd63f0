#include "core/batch.h"
#include "settings/settings_store.h"
#include "tests/temporary_folder.h"

#include <gtest/gtest.h>

namespace quarvel {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

/// A folder in which the test's relative names are looked up.
class Batch : public testing::Test {
 protected:
  Batch() { fs::current_path(folder_.Path()); }
  ~Batch() override { fs::current_path(before_); }

  void WriteAll(const Names& names) const {
    for (const std::string& name : names)
      folder_.Write(name, "");
  }

  /// "in > out" of each job, or "in: refusal".
  static Names Jobs(const Names& inputs, const std::string& output = {}, const ConversionSettings& settings = {}) {
    Names jobs;
    for (const ConversionJob& job : ListJobs(inputs, output, settings))
      jobs.push_back(job.Refusal.empty() ? job.InFile.string() + " > " + job.OutFile.string()
                                         : "refused: " + job.Refusal);
    return jobs;
  }

  fs::path before_ = fs::current_path();
  TemporaryFolder folder_;
};

TEST(MatchesPattern, FollowsTheWildcards) {
  EXPECT_TRUE(MatchesPattern("LEVEL.T3D", "*.t3d"));
  EXPECT_TRUE(MatchesPattern("a.b.t3d", "*b*.t?d"));
  EXPECT_TRUE(MatchesPattern("aab", "*ab"));
  EXPECT_TRUE(MatchesPattern("x", "x**"));
  EXPECT_TRUE(MatchesPattern("\xC3\xA4.t3d", "?.t3d")) << "one character of two bytes";
  EXPECT_FALSE(MatchesPattern("level.t3d2", "*.t3d"));
  EXPECT_FALSE(MatchesPattern("ab", "a?b"));
  EXPECT_FALSE(MatchesPattern("", "?"));
}

TEST_F(Batch, ASingleNameGoesToTheOutputAsItStands) {
  EXPECT_EQ(Jobs({"maps/a.b.t3d"}), Names{"maps/a.b.t3d > maps/a.b.wrl"});
  EXPECT_EQ(Jobs({"a.t3d"}, "out\\b.x3d"), Names{"a.t3d > out/b.x3d"});
  EXPECT_EQ(Jobs({"maps\\a.t3d"}), Names{"maps/a.t3d > maps/a.wrl"});
  WriteAll({"odd\\name.t3d", "x,y.t3d"});
  EXPECT_EQ(Jobs({"odd\\name.t3d"}), Names{"odd\\name.t3d > odd\\name.wrl"});
  EXPECT_EQ(Jobs({"x,y.t3d"}, "z.wrl"), Names{"x,y.t3d > z.wrl"});
}

TEST_F(Batch, APatternFindsFilesInAllFoldersBelow) {
  WriteAll({"maps/b.t3d", "maps/a.T3D", "maps/sub/deep/c.t3d", "maps/d.txt", "e.t3d"});
  fs::create_directory("maps/folder.t3d");
  EXPECT_EQ(Jobs({"maps/*.t3d"}),
            (Names{"maps/a.T3D > maps/a.wrl", "maps/b.t3d > maps/b.wrl", "maps/sub/deep/c.t3d > maps/sub/deep/c.wrl"}));
  EXPECT_EQ(Jobs({"maps\\?.t3d"}, "out/any.wrl"),
            (Names{"maps/a.T3D > out/a.wrl", "maps/b.t3d > out/b.wrl", "maps/sub/deep/c.t3d > out/c.wrl"}));
  EXPECT_EQ(Jobs({"e.*"}), Names{"e.t3d > e.wrl"});
  fs::create_directory("out");
  EXPECT_EQ(Jobs({"e.*"}, "out"), Names{"e.t3d > out/e.wrl"}) << "a folder, even without a separator behind it";
  EXPECT_EQ(Jobs({"maps/*.unr"}), Names{"refused: no file matches maps/*.unr"});
  EXPECT_EQ(Jobs({"none/*.t3d"}), Names{"refused: no file matches none/*.t3d"});
}

TEST_F(Batch, AListNamesFilesOfOneFolder) {
  EXPECT_EQ(Jobs({"maps,a.t3d,,sub\\b.t3d,"}), (Names{"maps/a.t3d > maps/a.wrl", "maps/sub/b.t3d > maps/sub/b.wrl"}));
  EXPECT_EQ(Jobs({"maps/, a.t3d"}, "out/x.wrl"), Names{"maps/a.t3d > out/a.wrl"});
  EXPECT_EQ(Jobs({"maps,,"}), Names{"refused: no file is named in maps,,"});
}

TEST_F(Batch, ATextWinsOverTheGamesOwnFile) {
  WriteAll({"game/A.unr", "game/a.t3d", "game/b.unr", "game/sub/a.unr"});
  EXPECT_EQ(Jobs({"game/*.*"}),
            (Names{"game/a.t3d > game/a.wrl", "game/b.unr > game/b.wrl", "game/sub/a.unr > game/sub/a.wrl"}));
  EXPECT_EQ(ListJobs({"game/A.unr", "game/a.t3d"}, "", {}).at(0).PassedOver, "game/A.unr");
}

TEST_F(Batch, NoSceneIsWrittenTwiceAndNoInputOverwritten) {
  EXPECT_EQ(Jobs({"a/x.t3d", "b/x.t3d", "b/y.t3d"}, "out/any.wrl"),
            (Names{"a/x.t3d > out/x.wrl",
                   "refused: b/x.t3d is not converted: its output out/x.wrl is the output of a/x.t3d already",
                   "b/y.t3d > out/y.wrl"}));
  EXPECT_EQ(Jobs({"a.t3d", "./a.t3d"}).size(), 2u);
  ConversionSettings page;
  page.CheckMakePage = page.CheckPageOnly = true;
  EXPECT_EQ(Jobs({"a/x.t3d", "b/x.t3d"}, "out/any.html", page)[1],
            "refused: b/x.t3d is not converted: its output out/x.html is the output of a/x.t3d already");
  EXPECT_TRUE(Jobs({"a.t3d", "./a.t3d"})[1].starts_with("refused: "));
  EXPECT_EQ(Jobs({"a.t3d", "a.wrl"}),
            (Names{"refused: a.t3d is not converted: its output a.wrl would overwrite an input",
                   "refused: a.wrl is not converted: its output a.wrl would overwrite an input"}));
  // The other scene counts as well, and so does the copy.
  EXPECT_EQ(Jobs({"a.x3d"}, "a.wrl"),
            Names{"refused: a.x3d is not converted: its output a.x3d would overwrite an input"});
  EXPECT_EQ(Jobs({"a.xml"}, "a.wrl"), Names{"a.xml > a.wrl"});
  ConversionSettings settings;
  settings.CheckXMLtoo = true;
  EXPECT_TRUE(Jobs({"a.xml"}, "a.wrl", settings)[0].starts_with("refused: "));
  settings.CheckAppendDash = true;
  EXPECT_EQ(Jobs({"a.wrl"}, "a.wrl", settings), Names{"a.wrl > a.wrl"}) << "the scene is a-.wrl";
  settings.CheckCCW = true;
  EXPECT_TRUE(Jobs({"a.wrl"}, "a.wrl", settings)[0].starts_with("refused: "));

  WriteAll({"real/a.t3d"});
  fs::create_directory_symlink("real", "link");
  EXPECT_TRUE(Jobs({"real/a.t3d", "link/a.t3d"})[1].starts_with("refused: ")) << "one file by two ways";
  fs::create_hard_link("real/a.t3d", "real/b.wrl");
  EXPECT_EQ(Jobs({"real/a.t3d"}, "real/b.wrl"),
            Names{"refused: real/a.t3d is not converted: its output real/b.wrl would overwrite an input"});
  EXPECT_EQ(Jobs({"levelMissingTextures.txt"}, "level.wrl"),
            Names{"refused: levelMissingTextures.txt is not converted: its report levelMissingTextures.txt would "
                  "overwrite an input"});
}

class CountingUser : public RunInterface {
 public:
  void Beep() override { ++Beeps; }
  bool StopRequested() override { return Stop; }
  int Beeps = 0;
  bool Stop = false;
};

/// Runs jobs through a conversion that fails for "bad" and is stopped at "stop".
class Runs : public testing::Test {
 protected:
  std::vector<RunResult> Run(const Names& inputs) {
    std::vector<ConversionJob> jobs;
    for (const std::string& input : inputs)
      jobs.push_back({input, input, input + ".wrl", input == "refused" ? "no" : "", {}});
    const auto convert = [this](const fs::path& in, const fs::path&, const ConversionSettings& settings, SettingsStore&,
                                RunMemory& memory, RunInterface&) {
      memory.T3DText += in.string() + ";";
      EXPECT_TRUE(settings.CheckRescanFile) << "the text in memory is not every file's";
      seen_.push_back(settings.ComboInFileName + " " + settings.TextOutFileName);
      RunResult result;
      result.Outcome = in == "bad" ? RunOutcome::Failed : in == "stop" ? RunOutcome::Stopped : RunOutcome::Done;
      return result;
    };
    const auto finished = [this](const ConversionJob& job, const RunResult& result) {
      finished_ += job.Input + (result.Outcome == RunOutcome::Done ? " " : "! ");
    };
    MemoryStore store;
    return RunBatch(jobs, settings_, store, memory_, user_, {{}, finished}, convert);
  }

  ConversionSettings settings_;
  RunMemory memory_;
  CountingUser user_;
  Names seen_;
  std::string finished_;
};

TEST_F(Runs, AFailureDoesNotKeepTheOthersFromBeingConverted) {
  settings_.CheckBeep = true;
  settings_.CheckRescanFile = false;
  const auto results = Run({"a", "bad", "refused", "b"});
  EXPECT_EQ(finished_, "a bad! refused! b ");
  EXPECT_EQ(memory_.T3DText, "a;bad;b;") << "one memory for all";
  EXPECT_EQ(seen_, (Names{"a a.wrl", "bad bad.wrl", "b b.wrl"}));
  EXPECT_EQ(WorstOutcome(results), RunOutcome::Failed);
  EXPECT_EQ(results[2].Error, "no");
  EXPECT_EQ(user_.Beeps, 1);
  Run({"a", "b"});
}

TEST_F(Runs, AStopEndsTheBatch) {
  EXPECT_EQ(WorstOutcome(Run({"bad", "stop", "b"})), RunOutcome::Stopped);
  EXPECT_EQ(finished_, "bad! stop! ");
  user_.Stop = true;
  EXPECT_EQ(WorstOutcome(Run({"c"})), RunOutcome::Stopped);
  EXPECT_EQ(memory_.T3DText, "bad;stop;") << "converted after the stop";
  EXPECT_EQ(user_.Beeps, 0);
}

} // namespace
} // namespace quarvel
