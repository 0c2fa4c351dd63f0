#include "base/level_text.h"
#include "base/text_coding.h"

#include <gtest/gtest.h>

namespace quarvel {
namespace {

using namespace std::string_literals;

TEST(LevelText, NamesFilesInTheirFolderOnAnySystem) {
  const std::pair<std::string, std::string> cases[] = {
      {"SkyZoneInfo0", "SkyZoneInfo0"},
      {"T\xFCr", "T\xC3\xBCr"},
      {"../../x", "_.._.._x"},
      {"/abs/path/x", "_abs_path_x"},
      {"C:\\x", "C__x"},
      {"..", "_"},
      {".bashrc", "_.bashrc"},
      {"Makefile\0"s, "Makefile_"},
      {"a\x1B[2Jb\x7F\x9B", "a_[2Jb_\xE2\x80\xBA"},
      {"con", "_con"},
      {"Nul .tar", "_Nul .tar"},
      {"COM\xC2\xB9", "_COM\xC2\xB9"},
      {"lpt0.x", "_lpt0.x"},
      {"common", "common"},
      {"name. .", "name"},
      {"", "_"},
      {"\xE2\x80\xAEgnp.exe", "_gnp.exe"},
  };
  for (const auto& [text, name] : cases)
    EXPECT_EQ(FileNameOf(text), name) << text;
  EXPECT_LE(FileNameOf(std::string(100'000, 'x')).size(), 200U);
  EXPECT_EQ(FileNameOf("xxx" + std::string(200, '\xFC')).size() % 2, 1U) << "cut between characters";
}

TEST(LevelText, ShowsNothingThatATerminalActsOn) {
  EXPECT_EQ(PrintableText("a\x1B]0;t\x07\r\nb\tc\0\xC2\x9B"s), "a?]0;t???b?c??");
  EXPECT_EQ(PrintableText("\x81z\x9B \xE4"), "?z\xE2\x80\xBA \xC3\xA4");
  EXPECT_EQ(PrintableText("\xE2\x80\xAE\xD9\x85 \xD8\x9C\xE2\x80\x8E"), "?\xD9\x85 ??") << "directions of writing";
  EXPECT_EQ(PrintableText(std::string_view("\xC3\xA9", 1)), "\xC3\x83") << "a character beyond the text's end";
}

TEST(LevelText, FoldsLetterCaseInEveryScriptOneToOne) {
  const std::pair<const char*, const char*> same[] = {
      {"\x8Cuvre", "\xC5\x93UVRE"},             // Windows-1252 and UTF-8
      {"\xD0\x96\xD0\xB8", "\xD0\xB6\xD0\x98"}, // Cyrillic
      {"\xCE\xA3\xCF\x82", "\xCF\x83\xCF\x83"}, // Greek, with the final form
      {"\xF0\x90\x90\x80", "\xF0\x90\x90\xA8"}, // Deseret, beyond 16 bits
      {"\xE1\xBA\x9E", "\xC3\x9F"},             // sharp s
  };
  for (const auto& [a, b] : same)
    EXPECT_EQ(FoldName(a), FoldName(b)) << a;
  EXPECT_NE(FoldName("\xC3\x9F"), FoldName("ss"));
  EXPECT_NE(FoldName("\xC4\xB0"), FoldName("i")) << "the capital I with a dot";
  EXPECT_NE(FoldName("\xC3\x97"), FoldName("\xC3\xB7")) << "times and divided by";
}

} // namespace
} // namespace quarvel
