#include "core/run_report.h"
#include "tests/core/converted.h"
#include "tests/images/made_images.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

namespace quarvel::test {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string_view>;

Lines LinesOf(std::string_view text) {
  Lines lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
    lines.push_back(text.substr(at, end - at));
    at = end;
  }
  return lines;
}

/// What makes one text of another: the lines that go ("-", with their numbers) and those that come ("+"). A kept scene
/// that differs little from another is a few lines this way, which a reviewer can read.
std::string Difference(std::string_view from, std::string_view to) {
  const Lines a = LinesOf(from), b = LinesOf(to);
  // The longest common rest of a from i and of b from j.
  std::vector<std::vector<std::uint16_t>> rest(a.size() + 1, std::vector<std::uint16_t>(b.size() + 1));
  for (std::size_t i = a.size(); i-- > 0;)
    for (std::size_t j = b.size(); j-- > 0;)
      rest[i][j] =
          a[i] == b[j] ? static_cast<std::uint16_t>(rest[i + 1][j + 1] + 1) : std::max(rest[i + 1][j], rest[i][j + 1]);
  std::string difference;
  for (std::size_t i = 0, j = 0; i < a.size() || j < b.size();) {
    if (i < a.size() && j < b.size() && a[i] == b[j]) {
      ++i, ++j;
    } else if (j == b.size() || (i < a.size() && rest[i + 1][j] >= rest[i][j + 1])) {
      difference += "-" + std::to_string(i + 1) + " ";
      difference += a[i++];
    } else {
      difference += "+ ";
      difference += b[j++];
    }
  }
  return difference;
}

/// Compares with the file that was looked at and kept. With QUARVEL_KEEP_GOLDENS set, the file takes the text instead.
void ExpectKept(const std::string& name, const std::string& text) {
  const fs::path file = fs::path(QUARVEL_TEST_DATA_DIR) / "golden" / name;
  if (std::getenv("QUARVEL_KEEP_GOLDENS") != nullptr) {
    std::ofstream(file, std::ios::binary) << text;
    return;
  }
  if (const std::string kept = ReadFile(file); kept != text)
    ADD_FAILURE() << name << " differs:\n"
                  << Difference(kept, text).substr(0, 2000)
                  << "\nWhen that is right, run this test with QUARVEL_KEEP_GOLDENS=1 and look at what git shows.";
}

/// Settings under which every converter writes what it can.
ConversionSettings Everything(const fs::path& library) {
  ConversionSettings settings;
  settings.TextSearchPathTxt = QUARVEL_SAMPLES_DIR "/textures;" + library.string();
  settings.TextSearchPathSnd = QUARVEL_SAMPLES_DIR "/sounds";
  settings.TextSearchPathMesh = QUARVEL_SAMPLES_DIR "/meshes";
  settings.CheckOutputStaticLights = settings.CheckOutputFlyThru = settings.CheckOutputFlyThruViewpoints = true;
  settings.CheckMakeDefaultViewpoint = settings.OptionDefViewAsProxSensor = true;
  return settings;
}

/// A level in the three encodings, as they are by default and as they are to conform.
class Golden : public testing::TestWithParam<const char*> {
 protected:
  Converted Make(bool classic, bool conforming) {
    folder_.Write("lib/golden_hills.bmp", [] {
      const Blob hills = MadeBmp(4, 3, 16, {}, Blob{0, 128, 0, 144, 0,   128, 0, 96, 0,   160, 0, 128,
                                                    0, 128, 0, 128, 255, 127, 0, 0,  255, 255, 0, 128});
      return std::string(hills.begin(), hills.end());
    }());
    ConversionSettings settings = Everything(folder_.Path() / "lib");
    settings.OptionFlux = classic;
    settings.OptionVRML97 = !classic;
    settings.CheckConforming = conforming;
    const std::string name = GetParam();
    std::string level = ReadFile(QUARVEL_TEST_DATA_DIR "/golden/" + name + ".t3d");
    if (name == "first") level += ReadFile(QUARVEL_TEST_DATA_DIR "/golden.t3d");
    Converted converted = ConvertIn(folder_, level, settings);
    EXPECT_EQ(converted.Result.Outcome, RunOutcome::Done) << converted.Result.Error;
    return converted;
  }

  /// What the run reports, without what is not the same every time.
  std::string ReportOf(RunResult result) const {
    result.Seconds = 0;
    result.Bounds = InitBounds();
    std::string report = ReportAsJson({result});
    const std::string folder = folder_.Path().string() + "/";
    for (std::size_t at = report.find(folder); at != report.npos; at = report.find(folder, at))
      report.erase(at, folder.size());
    return report;
  }

  TemporaryFolder folder_;
};

TEST_P(Golden, StaysAsItIs) {
  const std::string name = GetParam();
  const Converted plain = Make(false, false), classic = Make(true, false);
  const Converted conforming = Make(false, true), both = Make(true, true);
  ExpectKept(name + ".wrl", plain.Text);
  ExpectKept(name + ".x3d", plain.Document);
  ExpectKept(name + ".json", ReportOf(plain.Result));
  ExpectKept(name + ".x3dv.diff", Difference(plain.Text, classic.Text));
  ExpectKept(name + "-conforming.wrl.diff", Difference(plain.Text, conforming.Text));
  ExpectKept(name + "-conforming.x3d.diff", Difference(plain.Document, conforming.Document));
  ExpectKept(name + "-conforming.x3dv.diff", Difference(conforming.Text, both.Text));
  EXPECT_EQ(classic.Document, plain.Document);
  EXPECT_EQ(both.Document, conforming.Document);
}

INSTANTIATE_TEST_SUITE_P(BothGenerations, Golden, testing::Values("first", "second"),
                         [](const auto& level) { return std::string(level.param); });

} // namespace
} // namespace quarvel::test
