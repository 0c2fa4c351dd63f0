#include "t3d/level.h"
#include "tests/core/converted.h"
#include "tests/scene/scene_readers.h"

#include <gtest/gtest.h>
#include <map>
#include <random>

namespace quarvel {
namespace {

/// The first actor of every class of the sample level, and the first brushes: small enough to be converted a thousand
/// times.
std::string OneOfEverything() {
  const std::string sample = test::ReadFile(QUARVEL_SAMPLES_DIR "/harbour.t3d");
  const T3DLevel level(sample);
  std::map<std::string_view, int> seen;
  std::string text = "Begin Map\r\n";
  for (const ActorBlock& actor : level.Actors)
    if (++seen[actor.Class] <= (actor.Class == "Brush" ? 3 : 1))
      text += "Begin Actor " +
              sample.substr(static_cast<std::size_t>(actor.From) - 1, static_cast<std::size_t>(actor.To - actor.From)) +
              "End Actor\r\n";
  return text + "End Map\r\n";
}

/// Converts whatever it is handed, and looks at what came of it.
class DamagedLevels : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_GT(level_.size(), 10000U);
    // The library's images are the same every time, and not what this is about.
    settings_.TextSearchPathTxt = settings_.TextSearchPathSnd = settings_.TextSearchPathMesh = folder_.Path().string();
    settings_.CheckOutputFlyThru = settings_.CheckShowFlyThru = settings_.CheckOutputStaticLights = true;
    settings_.CheckSkyZone = settings_.CheckShowTriggers = settings_.CheckMakeDefaultViewpoint = true;
    settings_.CheckRescanFile = false;
  }

  void Convert(const std::string& text, bool conforming) {
    settings_.CheckConforming = settings_.OptionFlux = settings_.OptionIFSs = conforming;
    settings_.OptionVRML97 = settings_.OptionMeshes = !conforming;
    memory_.T3DText = text;
    const auto outFile = folder_.Path() / "level.wrl";
    const RunResult result = ConvertFile("level.t3d", outFile, settings_, store_, memory_, user_);
    if (result.Outcome == RunOutcome::Failed) {
      EXPECT_NE(result.Error, "");
      return;
    }
    ++done_;
    const SceneFileNames names = DeriveSceneFileNames(outFile, settings_);
    EXPECT_EQ(test::ReadVrml(test::ReadFile(names.Text)).Faults, std::vector<std::string>());
    if (conforming) {
      EXPECT_EQ(test::ReadX3D(test::ReadFile(names.Document)).Faults, std::vector<std::string>());
    }
  }

  const std::string level_ = OneOfEverything();
  const TemporaryFolder folder_;
  ConversionSettings settings_;
  MemoryStore store_;
  RunMemory memory_;
  RunInterface user_;
  int done_ = 0;
  std::mt19937 random_{5};
};

TEST_F(DamagedLevels, CutOffAnywhere) {
  for (std::size_t i = 0; i < 150 && !HasFailure(); ++i)
    Convert(level_.substr(0, level_.size() * i / 150 + random_() % 50), i % 2 == 0);
  EXPECT_GT(done_, 135) << "what is there is converted";
}

TEST_F(DamagedLevels, WithOtherBytesAnywhere) {
  // Whatever has a meaning of its own somewhere, and any byte at all.
  const std::string bytes = "0123456789+-.,=()\"'\\ \t\r\n&<{}[]#EeBV\x80\xff" + std::string(1, '\0');
  for (int i = 0; i < 150 && !HasFailure(); ++i) {
    std::string text = level_;
    for (int flips = 0; flips < 1 + i % 40; ++flips)
      text[random_() % text.size()] = i % 3 == 0 ? static_cast<char>(random_()) : bytes[random_() % bytes.size()];
    Convert(text, i % 2 == 0);
  }
  EXPECT_GT(done_, 135);
}

TEST_F(DamagedLevels, WithNumbersThatNoLevelHas) {
  for (const char* number :
       {"1e999", "-1e999", "1e-999", "+1.#IND00", "-nan(ind)", "99999999999999999999", "inf", ""}) {
    std::string text = level_;
    int count = 0;
    for (std::size_t at = text.find_first_of("0123456789"); at < text.size();
         at = text.find_first_of("0123456789", at + 1)) {
      const std::size_t end = text.find_first_not_of("0123456789.", at);
      if (++count % 7 == 0) text.replace(at, end - at, number);
      at = std::max(at, text.find_first_not_of("0123456789.", at));
    }
    Convert(text, true);
    Convert(text, false);
  }
}

} // namespace
} // namespace quarvel
