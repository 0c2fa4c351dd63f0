#include "resources/missing_lists.h"
#include "resources/preload_script.h"
#include "tests/temporary_folder.h"

#include <gtest/gtest.h>

namespace quarvel::test {
namespace {

class MissingLists : public TempFolder {};

TEST_F(MissingLists, AreNamedAfterTheOutputAndRemovedWhenNothingIsMissing) {
  const std::filesystem::path out = folder_ / "my.level.wrl";
  ConversionSettings settings;
  const auto first = WriteMissingLists(out, {{"A.b", "c"}, {"hum.wav"}, {"Crate"}}, settings);
  EXPECT_EQ(Read("my.levelMissingTextures.txt"), "A.b\r\nc\r\n");
  EXPECT_EQ(Read("my.levelMissingSounds.txt"), "hum.wav\r\n");
  ASSERT_EQ(first.Messages.size(), 3U);
  EXPECT_EQ(first.Messages[0],
            "There were missing textures. Please see " + (folder_ / "my.levelMissingTextures.txt").string());
  EXPECT_EQ(first.FilesWritten.back(), folder_ / "my.levelMissingMeshes.txt");

  settings.CheckReportMissingMeshes = false;
  settings.CheckDoSounds = false;
  const auto second = WriteMissingLists(out, {{}, {"hum.wav"}, {"Crate"}}, settings);
  EXPECT_TRUE(second.Messages.empty());
  EXPECT_TRUE(std::filesystem::is_empty(folder_)) << "lists of the first run are stale";

  const auto unwritten = WriteMissingLists(folder_ / "none/level.wrl", {{"a"}, {}, {}}, {});
  EXPECT_EQ(unwritten.Errors.size(), 1U);
  EXPECT_TRUE(unwritten.Messages.empty());
}

TEST(PreloadScript, PrefixesRelativeUrlsAndStaysValidWithinAPage) {
  const std::string script =
      MakePreloadScript({"a%20b.png", "http://example.org/x.png"}, "http://example.org/</script>\"t");
  EXPECT_NE(script.find("\"http://example.org/%3C/script%3E%22t/a%20b.png\",\n"), std::string::npos) << script;
  EXPECT_NE(script.find("\"http://example.org/x.png\"\n"), std::string::npos);
  EXPECT_EQ(script.find("</"), std::string::npos);
  EXPECT_NE(MakePreloadScript({}, "").find("var urls = [];"), std::string::npos);
  EXPECT_NE(MakePreloadScript({"\"<\x01\\&"}, "").find("\"\\u0022\\u003c\\u0001\\u005c\\u0026\""), std::string::npos);
}

} // namespace
} // namespace quarvel::test
