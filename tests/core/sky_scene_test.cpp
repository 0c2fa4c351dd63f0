#include "core/batch.h"
#include "tests/core/converted.h"
#include "tests/made_actors.h"

#include <gtest/gtest.h>

namespace quarvel {
namespace {

namespace fs = std::filesystem;
using test::Actor;
using test::ReadFile;
using test::SampleSettings;
using Texts = std::vector<std::string>;

bool Holds(const std::string& text, const std::string& what) { return text.find(what) != std::string::npos; }

std::string LevelWithSky(const std::string& name) {
  return Actor("SkyZoneInfo Name=" + name) + test::TriangleActor("Brush Name=Ground", " CsgOper=CSG_Add") +
         test::TriangleActor("Brush Name=Cloud", " CsgOper=CSG_Add\r\n Region=(Zone=SkyZoneInfo'L." + name + "')");
}

const std::string skyLevel = LevelWithSky("Sky0");

TEST(SkyScene, LeaveTheSkyWhereItIsRatherThanOverwriteTheLevel) {
  // Both scenes would be overwritten, the document, and the text.
  for (const auto& [sky, options] :
       {std::pair("LEVEL", ""), std::pair("Level", "OptionFlux=-1"), std::pair("level-", "CheckAppendDash=1")}) {
    ConversionSettings settings = SampleSettings();
    test::SetOptions("CheckSkyZone=1 " + std::string(options), settings);
    const test::Converted converted = test::Convert(LevelWithSky(sky), settings);
    EXPECT_EQ(converted.Result.FilesWritten.size(), 2U) << sky;
    ASSERT_FALSE(converted.Result.Findings.Findings().empty()) << sky;
    EXPECT_EQ(converted.Result.Findings.Findings().front().Code, FindingCode::SkyStaysInScene);
    EXPECT_TRUE(Holds(converted.Text, "DEF Cloud Transform")) << sky;
  }
}

TEST(SkyScene, IsWhatItsFileNameSays) {
  const TemporaryFolder folder;
  ConversionSettings settings = SampleSettings();
  settings.CheckSkyZone = settings.OptionFlux = true;
  settings.OptionVRML97 = false;
  EXPECT_TRUE(test::ConvertIn(folder, skyLevel, settings).Text.starts_with("#X3D"));
  const std::string sky = ReadFile(folder.Path() / "Sky0.wrl");
  EXPECT_TRUE(sky.starts_with("#VRML V2.0 utf8")) << sky.substr(0, 40);
}

TEST(SkyScene, NoSkyTakesThePlaceOfAnotherScene) {
  const TemporaryFolder folder;
  ConversionSettings settings = SampleSettings();
  settings.CheckSkyZone = true;
  MemoryStore store;
  RunMemory memory;
  RunInterface user;
  /// How each level of a batch ends.
  const auto convert = [&](const Texts& names) {
    Texts inputs, ends;
    for (const std::string& name : names) {
      folder.Write(name + ".t3d", name == "Sky0" ? Actor("PlayerStart Name=P", "") : skyLevel);
      inputs.push_back((folder.Path() / (name + ".t3d")).string());
    }
    for (const RunResult& result : RunBatch(ListJobs(inputs, {}, settings), settings, store, memory, user))
      ends.push_back(result.Outcome == RunOutcome::Done ? "done" : result.Reason);
    return ends;
  };
  const std::string sky = (folder.Path() / "Sky0.wrl").string();
  const auto refusal = [&](const std::string& what, const char* owner) {
    return "is not converted: its " + what + " " + sky + " is an output of " + (folder.Path() / owner).string() +
           " already";
  };
  EXPECT_EQ(convert({"one"}), Texts{"done"});
  EXPECT_EQ(convert({"one", "two", "Sky0"}),
            (Texts{"done", refusal("sky scene", "one.t3d"), refusal("output", "one.t3d")}));
  EXPECT_TRUE(Holds(ReadFile(sky), "DEF Cloud Transform"));
  EXPECT_EQ(convert({"Sky0", "two"}), (Texts{"done", refusal("sky scene", "Sky0.t3d")}));
  EXPECT_FALSE(Holds(ReadFile(sky), "DEF Cloud Transform"));
}

} // namespace
} // namespace quarvel
