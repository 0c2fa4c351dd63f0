#include "app/cli/command_line.h"
#include "app/cli/console_interface.h"
#include "app/cli/option_list.h"
#include "base/ascii_text.h"
#include "core/run_report.h"
#include "core/run_summary.h"
#include "settings/option_table.h"
#include "settings/settings_file.h"
#include "tests/scene/scene_readers.h"
#include "tests/temporary_folder.h"

#include <csignal>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace quarvel {
namespace {

namespace fs = std::filesystem;
using Arguments = std::vector<std::string>;

/// Runs the program with a conversion that notes what it is asked to do and ends as the input's name says.
class CommandLineTest : public testing::Test {
 protected:
  int Run(const Arguments& arguments) {
    std::vector<const char*> argv{"quarvel"};
    for (const std::string& argument : arguments)
      argv.push_back(argument.c_str());
    out_.str("");
    err_.str("");
    const auto convert = [this](const fs::path& in, const fs::path& out, const ConversionSettings& settings,
                                SettingsStore& store, RunMemory&, RunInterface& user) {
      converted_.push_back(in.string() + " > " + out.string());
      settings_ = settings;
      user.ShowPass("Processing Brushes");
      RunResult result = result_;
      result.InputFile = in;
      result.Error = SaveSettings(settings, store);
      if (in.stem() == "bad") result.Error = "cannot read " + in.string();
      if (!result.Error.empty()) result.Outcome = RunOutcome::Failed;
      if (in.stem() == "stop") result.Outcome = RunOutcome::Stopped;
      return result;
    };
    const Console console{out_, err_, terminal_, {}};
    return static_cast<int>(RunCommandLine(static_cast<int>(argv.size()), argv.data(), console, convert));
  }

  bool Complains(const std::string& about) const {
    return err_.str().starts_with("quarvel: ") && err_.str().find(about) != std::string::npos;
  }

  bool terminal_ = false;
  RunResult result_;
  std::ostringstream out_, err_;
  Arguments converted_;
  ConversionSettings settings_;
};

TEST_F(CommandLineTest, TakesTheLastArgumentForTheOutputByItsExtension) {
  EXPECT_EQ(Run({"maps/a.t3d"}), 0);
  EXPECT_EQ(Run({"a.t3d", "b.X3D"}), 0);
  EXPECT_EQ(Run({"a.t3d", "b.t3d"}), 0);
  EXPECT_EQ(converted_, (Arguments{"maps/a.t3d > maps/a.wrl", "a.t3d > b.X3D", "a.t3d > a.wrl", "b.t3d > b.wrl"}));
  EXPECT_EQ(Run({}), 2);
  EXPECT_EQ(Run({"a.wrl"}), 2);
  EXPECT_TRUE(Complains("no INPUT is given, only the OUTPUT a.wrl")) << err_.str();
  EXPECT_EQ(Run({"a.t3d", ""}), 2);
  EXPECT_EQ(converted_.size(), 4u);
}

TEST_F(CommandLineTest, SetsOptionsWithoutTakingInputsForValues) {
  EXPECT_EQ(Run({"--set", "TextScale=2", "a.t3d", "--set", "checkfog=0", "--textures", "t;u", "--set=OptionIFSs=-1"}),
            0);
  EXPECT_EQ(settings_.TextScale.Value, 2);
  EXPECT_FALSE(settings_.CheckFog);
  EXPECT_TRUE(settings_.OptionIFSs);
  EXPECT_EQ(settings_.TextSearchPathTxt, "t;u");
  EXPECT_EQ(Run({"--set", "ComboInFileName=b.t3d", "--set", "textoutfilename=out/"}), 0);
  EXPECT_EQ(converted_.back(), "b.t3d > out/b.wrl");
  EXPECT_EQ(Run({"--set", "ComboInFileName=b.t3d", "a.t3d"}), 2);
  EXPECT_EQ(Run({"--set", "TextOutFileName=b.wrl", "a.t3d", "a.wrl"}), 2);
  EXPECT_TRUE(Complains("TextOutFileName is set to b.wrl, but the OUTPUT is a.wrl; give one of them")) << err_.str();
  EXPECT_EQ(Run({"a.t3d", "out/", "--set", "TextScale=2", "--set", "checkfog=0", "--set=OptionIFSs=-1"}), 0);
  EXPECT_EQ(settings_.ComboInFileName, "a.t3d");
  EXPECT_EQ(settings_.TextOutFileName, "out/a.wrl");
  EXPECT_EQ(Run({"a.t3d"}), 0);
  EXPECT_EQ(settings_.TextOutFileName, "a.wrl");
}

TEST_F(CommandLineTest, RefusesOptionsThatDoNotExistAndValuesOfTheWrongKind) {
  EXPECT_EQ(Run({"a.t3d", "--set", "CheckFogg=1"}), 2);
  EXPECT_TRUE(Complains("there is no option CheckFogg; did you mean CheckFog?\nTry --list-options.\n")) << err_.str();
  EXPECT_EQ(Run({"a.t3d", "--set", "textscale=big"}), 2);
  EXPECT_TRUE(Complains("TextScale must be a number above 0, not \"big\"")) << err_.str();
  EXPECT_EQ(Run({"a.t3d", "--set", "TextScale"}), 2);
  EXPECT_TRUE(Complains("needs a value")) << err_.str();
  EXPECT_EQ(Run({"a.t3d", "--set", "OptionMeshes=0"}), 2);
  EXPECT_TRUE(Complains("select OptionIFSs instead")) << err_.str();
  for (const Arguments& wrong :
       {Arguments{"a.t3d", "--nonsense"}, {"a.t3d", "--set"}, {"a.t3d", "--quiet", "--verbose"}}) {
    EXPECT_EQ(Run(wrong), 2);
    EXPECT_TRUE(Complains(""));
  }
  EXPECT_TRUE(converted_.empty());
}

TEST_F(CommandLineTest, SingleOptionsWinOverSetsAndSetsOverTheOutput) {
  Run({"a.t3d", "a.X3DV"});
  EXPECT_TRUE(settings_.OptionFlux && !settings_.OptionVRML97);
  Run({"a.t3d", "a.x3dv", "--set", "OptionContact=-1"});
  EXPECT_TRUE(settings_.OptionContact && !settings_.OptionFlux);
  Run({"a.t3d", "a.x3d"});
  EXPECT_TRUE(settings_.OptionVRML97);
  Run({"--set", "CheckPageOnly=0", "--web", "a.t3d"});
  EXPECT_TRUE(settings_.CheckMakePage && settings_.CheckBakeLight && !settings_.CheckPageOnly);
}

TEST_F(CommandLineTest, AnswersWithoutConverting) {
  EXPECT_EQ(Run({"--help"}), 0);
  EXPECT_NE(out_.str().find("Usage: quarvel [options] INPUT... [OUTPUT]"), std::string::npos);
  EXPECT_EQ(Run({"--version"}), 0);
  EXPECT_EQ(out_.str(), "quarvel " QUARVEL_VERSION "\n");
  EXPECT_EQ(Run({"--list-options"}), 0);
  for (const OptionInfo& option : OptionTable())
    EXPECT_NE(out_.str().find("\n  " + option.Control + "="), std::string::npos) << option.Control;
  EXPECT_EQ(err_.str(), "");
  EXPECT_TRUE(converted_.empty());
}

TEST_F(CommandLineTest, ExitsWithTheWorstOfABatch) {
  EXPECT_EQ(Run({"a.t3d", "bad.t3d", "b.t3d"}), 1);
  EXPECT_EQ(err_.str(), "quarvel: cannot read bad.t3d\n");
  EXPECT_NE(out_.str().find("2 of 3 files converted"), std::string::npos);
  EXPECT_EQ(Run({"x/a.t3d", "y/a.t3d", "out/any.wrl"}), 1);
  EXPECT_TRUE(Complains("y/a.t3d is not converted: its output out/a.wrl")) << err_.str();
  EXPECT_EQ(Run({"none/*.t3d"}), 1);
  EXPECT_TRUE(Complains("no file matches none/*.t3d")) << err_.str();
  EXPECT_EQ(Run({"bad.t3d", "stop.t3d", "b.t3d"}), 3);
  EXPECT_EQ(err_.str(), "quarvel: cannot read bad.t3d\nquarvel: stopped; stop.t3d is not converted\n");
  EXPECT_EQ(converted_.back(), "stop.t3d > stop.wrl");
}

TEST_F(CommandLineTest, ReportsEveryFileOfABatchAsJson) {
  const TemporaryFolder folder;
  const std::string file = (folder.Path() / "report.json").string();
  EXPECT_EQ(Run({"a.t3d", "bad.t3d", "--report", file}), 1);
  const auto runs = nlohmann::json::parse(folder.Read("report.json"));
  ASSERT_EQ(runs.size(), 2U);
  EXPECT_EQ(runs[0]["input"], "a.t3d");
  EXPECT_EQ(runs[0]["outcome"], "done");
  EXPECT_EQ(runs[1]["error"], "cannot read bad.t3d");
  EXPECT_EQ(Run({"a.t3d", "--report", (folder.Path() / "none" / "r.json").string()}), 1);
  EXPECT_TRUE(Complains("r.json cannot be written")) << err_.str();
  const std::size_t before = converted_.size();
  EXPECT_EQ(Run({"a.t3d", "--report", "./a.t3d"}), 2);
  EXPECT_EQ(converted_.size(), before);
}

TEST_F(CommandLineTest, KeepsTheRunsSettingsInTheirFile) {
  const TemporaryFolder folder;
  const std::string file = (folder.Path() / "my.ini").string();
  EXPECT_EQ(Run({"a.t3d", "--settings", file, "--set", "TextScale=2", "--set", "CheckFog=0"}), 0);
  EXPECT_EQ(Run({"b.t3d", "--settings", file, "--set", "TextScale=3"}), 0);
  EXPECT_EQ(settings_.TextScale.Value, 3) << "the command line wins";
  EXPECT_FALSE(settings_.CheckFog) << "the first run's value is lost";
  EXPECT_NE(folder.Read("my.ini").find("InFile=b.t3d\nOutFile=b.wrl\nScale=3\n"), std::string::npos);
  EXPECT_EQ(Run({"c.t3d"}), 0);
  EXPECT_TRUE(settings_.CheckFog) << "a run depends on its command line only";

  // Another file is not taken for settings, and neither is one of the run.
  folder.Write("notes.txt", "[Notes]\nmine=1\n");
  folder.Write("bare.txt", "mine\n");
  folder.Write("in.t3d", "[Quarvel]\n");
  fs::create_hard_link(folder.Path() / "in.t3d", folder.Path() / "other.ini");
  for (const char* name : {"notes.txt", "bare.txt", "other.ini", "out.x3d", "outMissingTextures.txt"}) {
    const std::string before = folder.Read(name), path = (folder.Path() / name).string();
    EXPECT_EQ(Run({"--settings", path, folder.Path() / "in.t3d", folder.Path() / "out.wrl"}), 2) << name;
    EXPECT_TRUE(Complains(path)) << err_.str();
    EXPECT_EQ(folder.Read(name), before);
  }
  // A value that an option cannot have is told, and stays until the option is set.
  folder.Write("my.ini", "\xEF\xBB\xBF\t[Quarvel]\r\n; mine\r\nScale=45,5\r\nListBMtypeOut=tiff\r\nOptionFlux=2\r\n"
                         "[QuarvelExtra]\r\nCheckConforming=2\r\n");
  EXPECT_EQ(Run({"a.t3d", "--settings", file, "--set", "CheckConforming=0", "--set", "OptionVRML97=-1"}), 0);
  EXPECT_EQ(err_.str(), "quarvel: " + file +
                            ", line 3: Scale=45,5 is not used: it must be a number above 0\nquarvel: " + file +
                            ", line 4: ListBMtypeOut=tiff is not used: it must be png, jpg, gif, bmp, tga or dds\n");
  EXPECT_NE(folder.Read("my.ini").find("Scale=45,5\n"), std::string::npos);
  EXPECT_NE(folder.Read("my.ini").find("CheckConforming=0\n"), std::string::npos);

  EXPECT_EQ(Run({"a.t3d", "--settings", folder.Path().string()}), 1);
  EXPECT_TRUE(Complains("is a folder"));
  EXPECT_EQ(Run({"a.t3d", "--settings", (folder.Path() / "none" / "my.ini").string()}), 1);
  EXPECT_TRUE(Complains("cannot write"));
}

TEST_F(CommandLineTest, SpeaksAsMuchAsItIsAsked) {
  EXPECT_EQ(Run({"a.t3d"}), 0);
  EXPECT_EQ(err_.str(), "") << "progress without a terminal";
  EXPECT_NE(out_.str(), "");
  EXPECT_EQ(Run({"a.t3d", "--verbose"}), 0);
  EXPECT_EQ(err_.str(), "Processing Brushes\n");
  terminal_ = true;
  EXPECT_EQ(Run({"a.t3d"}), 0);
  EXPECT_NE(err_.str().find("0% Processing Brushes"), std::string::npos);
  EXPECT_TRUE(err_.str().ends_with("\r\x1b[K")) << "the progress line stays";
  EXPECT_EQ(Run({"a.t3d", "b.t3d", "--quiet"}), 0);
  EXPECT_EQ(out_.str() + err_.str(), "");
}

TEST(Program, HearsCtrlCWhileAPipeIsOpened) {
  const TemporaryFolder folder;
  const fs::path pipe = folder.Path() / "out.wrl";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const pid_t program = fork();
  if (program == 0) {
    execl(QUARVEL_PROGRAM, "quarvel", "--quiet", QUARVEL_TEST_DATA_DIR "/golden.t3d", pipe.c_str(), nullptr);
    _exit(99);
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  kill(program, SIGINT);
  int status = -1;
  for (int i = 0; i < 100 && waitpid(program, &status, WNOHANG) == 0; ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  if (status == -1) kill(program, SIGKILL);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 3) << status;
}

/// What a shell command printed, and its exit code behind that.
std::string Shell(const std::string& command) {
  std::string said;
  FILE* pipe = popen(("(" + command + ") 2>&1").c_str(), "r");
  for (int c = 0; pipe && (c = fgetc(pipe)) != EOF;)
    said += static_cast<char>(c);
  return said + "exit " + std::to_string(WEXITSTATUS(pclose(pipe)));
}

TEST(Program, TellsEveryCopyThatFailedAndAllElseToo) {
  const TemporaryFolder folder;
  const std::string out = (folder.Path() / "out").string();
  folder.Write("out/textures", "a file where the folder should be");
  const std::string said = Shell(
      "'" QUARVEL_PROGRAM "' '" QUARVEL_SAMPLES_DIR "/harbour.t3d' '" + out +
      "/' --set TextureDestPathBehavior=1 --textures '" QUARVEL_SAMPLES_DIR "/textures' --report '" + out + "/r.json'");
  for (const char* part :
       {"quarvel: ", "textures/brick.png cannot be written: ", "textures/crate.png cannot be written: ",
        "harbour.t3d: converted in ", "wrote ", "box: ", "exit 1"})
    EXPECT_NE(said.find(part), said.npos) << part << " in\n" << said;
  const auto run = nlohmann::json::parse(folder.Read("out/r.json"))[0];
  EXPECT_EQ(run["outcome"], "failed");
  EXPECT_GE(run["failedFiles"].size(), 2U);
  EXPECT_EQ(test::ReadVrml(folder.Read("out/harbour.wrl")).Faults, std::vector<std::string>());
}

TEST(Program, RunsOutOfMemoryInOneSentence) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the sanitizer reserves more than any limit";
#endif
  const TemporaryFolder folder;
  std::string level = "Begin Map\n";
  for (int i = 0; i < 20000; ++i)
    level += "Begin Actor Class=Light Name=Light" + std::to_string(i) + "\n    LightBrightness=99\nEnd Actor\n";
  folder.Write("level.t3d", level + "End Map\n");
  folder.Write("level.wrl", "older");
  const std::string in = (folder.Path() / "level.t3d").string();
  bool ranOut = false;
  for (int megabytes = 20; megabytes < 400; megabytes += 20) {
    const std::string said = Shell("ulimit -v " + std::to_string(megabytes * 1024) +
                                   "; '" QUARVEL_PROGRAM "' --quiet '" + in + "' --set CheckOutputStaticLights=1");
    if (said == "exit 0") break;
    if (!said.starts_with("quarvel: ")) continue; // not enough to load the program
    ranOut = true;
    EXPECT_EQ(said, "quarvel: there is not enough memory to convert " + in + "\nexit 1") << megabytes;
    EXPECT_EQ(folder.Read("level.wrl"), "older");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 2) << "half a file";
  }
  EXPECT_TRUE(ranOut);
}

TEST(Program, TheDemoNamesAPage) {
  const TemporaryFolder folder;
  const fs::path scripts = fs::path(QUARVEL_SAMPLES_DIR).parent_path() / "scripts";
  if (!Shell("'" + (scripts / "fetch_viewer.sh").string() + "'").ends_with("exit 0"))
    GTEST_SKIP() << "the viewer cannot be fetched";
  const std::string demo = (scripts / "demo.sh").string();
  const std::string said =
      Shell("QUARVEL_PROGRAM='" QUARVEL_PROGRAM "' '" + demo + "' '" QUARVEL_SAMPLES_DIR "/terrace.t3d' '" +
            (folder.Path() / "new/folder").string() + "'");
  EXPECT_TRUE(said.ends_with("exit 0")) << said;
  const fs::path page = folder.Path() / "new/folder/terrace.html";
  EXPECT_NE(said.find("  " + page.string()), std::string::npos) << said;
  EXPECT_TRUE(StartsWithText(folder.Read("new/folder/terrace.html"), "<!DOCTYPE html>"));
}

TEST(Summary, CutsLongNamesAndLists) {
  RunResult result;
  result.Missing[ResourceKind::Sound] = {std::string(100000, 'S')};
  for (int i = 1; i <= 12; ++i)
    result.Findings.Add(FindingCode::DamagedBrush, "Brush" + std::to_string(i));
  std::ostringstream cut, full;
  WriteSummary(cut, result, SummaryLength::Short);
  EXPECT_NE(cut.str().find("1 sound missing: " + std::string(100, 'S') + "...\n"), std::string::npos);
  EXPECT_NE(cut.str().find("Brush9, Brush10 and 2 more (see --verbose)\n"), std::string::npos);
  WriteSummary(full, result, SummaryLength::Full);
  EXPECT_NE(full.str().find("Brush10, Brush11, Brush12\n"), std::string::npos);
}

TEST(ConsoleInterface, DrawsOneShortLineNowAndThen) {
  std::ostringstream out;
  ConsoleInterface user(out, {.ProgressLine = true}, {});
  user.BeginFile("2/2 a.t3d: ", 0.5, 0.5);
  user.ShowFraction(0.5);
  user.ShowPass("Processing Brushes");
  for (long i = 0; i < 100000; ++i)
    user.ShowItem(std::string(99, '\xE4') + "on face ", i);
  EXPECT_LT(out.str().size(), 2000u) << "drawn for every face";
  EXPECT_NE(out.str().find("75% 2/2 a.t3d: "), std::string::npos) << "of the whole batch";
  EXPECT_EQ(out.str().find('\n'), std::string::npos);
}

TEST(OptionList, TheDocumentedOptionsAreThePrograms) {
  const fs::path page = fs::path(QUARVEL_SAMPLES_DIR).parent_path() / "docs" / "options.md";
  std::ifstream in(page, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  EXPECT_EQ(text, OptionListAsMarkdown()) << "make it anew: quarvel --list-options --markdown > docs/options.md";
}

} // namespace
} // namespace quarvel
