#include "settings/ini_store.h"
#include "settings/settings_file.h"
#include "tests/core/converted.h"

#include <clocale>
#include <cstdlib>
#include <gtest/gtest.h>
#include <locale>

namespace quarvel {
namespace {

const std::string sample = test::ReadFile(QUARVEL_SAMPLES_DIR "/harbour.t3d");

/// Every option away from its default that makes numbers of its own.
ConversionSettings ManyNumbers() {
  ConversionSettings settings = test::SampleSettings();
  test::SetOptions("TextScale=0.0137 TextCreaseAngle=22.5 CheckCreaseAngle=1 CheckOutputStaticLights=1 "
                   "CheckOutputFlyThru=1",
                   settings);
  return settings;
}

/// Whether two conversions wrote the same; the sample is too long to be printed.
bool AreSame(const test::Converted& a, const test::Converted& b) {
  return !a.Text.empty() && a.Text == b.Text && !a.Document.empty() && a.Document == b.Document;
}

TEST(SameBytes, ConvertingTwice) {
  EXPECT_TRUE(AreSame(test::Convert(sample, ManyNumbers()), test::Convert(sample, ManyNumbers())));
}

/// Everything is German as long as this lives, where numbers have a comma. A system without that locale gets it made
/// for the test, if it has what that takes.
class GermanLocale {
 public:
  GermanLocale() {
    if (!Set() && Make()) Set();
  }
  ~GermanLocale() {
    std::locale::global(std::locale::classic());
    unsetenv("LOCPATH");
  }

  bool IsSet() const { return *std::localeconv()->decimal_point == ','; }

 private:
  static bool Set() {
    try {
      std::locale::global(std::locale("de_DE.UTF-8"));
      return true;
    } catch (const std::runtime_error&) {
      return false;
    }
  }

  bool Make() {
    const std::string folder = folder_.Path().string();
    setenv("LOCPATH", folder.c_str(), 1);
    return std::system(("localedef -i de_DE -f UTF-8 '" + folder + "/de_DE.UTF-8' >/dev/null 2>&1").c_str()) == 0;
  }

  TemporaryFolder folder_;
};

TEST(SameBytes, UnderAGermanLocale) {
  const test::Converted before = test::Convert(sample, ManyNumbers());
  const GermanLocale german;
  if (!german.IsSet()) GTEST_SKIP() << "no German locale here";
  EXPECT_TRUE(AreSame(before, test::Convert(sample, ManyNumbers())));
}

TEST(SameBytes, WithTheSettingsSavedAndLoadedInBetween) {
  const TemporaryFolder folder;
  IniStore store(folder.Path() / "Quarvel.ini");
  ASSERT_EQ(SaveSettings(ManyNumbers(), store), "");
  IniStore again(folder.Path() / "Quarvel.ini");
  ASSERT_EQ(again.Load(), "");
  ConversionSettings loaded;
  LoadSettings(loaded, again);
  EXPECT_TRUE(AreSame(test::Convert(sample, ManyNumbers()), test::Convert(sample, loaded)));
}

} // namespace
} // namespace quarvel
