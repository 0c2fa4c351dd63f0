#include "base/file_name.h"
#include "base/reference.h"
#include "resources/file_index.h"
#include "resources/program_data.h"
#include "resources/url.h"
#include "tests/temporary_folder.h"

#include <gtest/gtest.h>

namespace quarvel::test {
namespace {

namespace fs = std::filesystem;

class FileIndexTest : public TempFolder {
 protected:
  static std::vector<std::string> PathsOf(const FileIndex& index, std::string_view name) {
    std::vector<std::string> paths;
    for (const IndexedFile& file : index.Find(name))
      paths.push_back((file.Folder / file.Name).generic_string());
    return paths;
  }
};

TEST_F(FileIndexTest, FindsByBaseNameWhateverTheCase) {
  Write("b/Wall.PNG", "");
  Write("a/WALL.bmp", "");
  Write("wall", "");
  Write("wall.old.png", "");
  Write(".hidden/wall.png", "");
  Write("\xC3\x84rger.png", "");
  const FileIndex index({folder_});
  EXPECT_EQ(PathsOf(index, "wAlL"), (std::vector<std::string>{"wall", "a/WALL.bmp", "b/Wall.PNG"}));
  EXPECT_EQ(PathsOf(index, "wall.old").size(), 1U);
  EXPECT_EQ(PathsOf(index, "\xE4rger").size(), 1U) << "a level's Windows-1252 text";
  EXPECT_EQ(index.Find("WALL")[1].Extension, "bmp");
  EXPECT_TRUE(fs::exists(index.PathOf(index.Find("wall")[2])));

  class Impatient : public RunInterface {
    bool StopRequested() override { return true; }
  } user;
  EXPECT_TRUE(FileIndex({folder_}, Walk::Tree, &user).Files().empty()) << "a stop is not heard on the way";
}

TEST_F(FileIndexTest, SurvivesLinkLoopsAndUnreadableFolders) {
  Write("a/deep/wall.png", "");
  Write("outside/brick.png", "");
  std::error_code error;
  fs::create_directory_symlink(folder_ / "a", folder_ / "a/deep/up", error);
  if (error) GTEST_SKIP() << "no symbolic links here";
  fs::create_directory_symlink("self", folder_ / "a/self");
  fs::create_directory_symlink(folder_ / "outside", folder_ / "a/z");
  fs::create_directory_symlink(folder_ / "outside", folder_ / "a/y");
  fs::create_symlink(folder_ / "nowhere", folder_ / "a/dangling.png");
  Write("a/locked/stone.png", "");
  fs::permissions(folder_ / "a/locked", fs::perms::none);
  const FileIndex index({folder_ / "a"});
  fs::permissions(folder_ / "a/locked", fs::perms::owner_all);
  EXPECT_EQ(PathsOf(index, "wall"), std::vector<std::string>{"deep/wall.png"});
  EXPECT_EQ(PathsOf(index, "brick"), std::vector<std::string>{"y/brick.png"}) << "one of two links, always the same";
  EXPECT_TRUE(PathsOf(index, "dangling").empty());
}

TEST_F(FileIndexTest, SearchPathsAreSplitAndCleaned) {
  fs::create_directories(folder_ / "one");
  fs::create_directories(folder_ / "two");
  const std::string base = folder_.string();
  const SearchFolders folders =
      SplitSearchPath(" " + base + "/one/;;" + base + "\\two;\"" + base + "/one\";" + base + "/none");
  EXPECT_EQ(folders.Existing, (std::vector<fs::path>{folder_ / "one", folder_ / "two"}));
  EXPECT_EQ(folders.Missing, std::vector<fs::path>{folder_ / "none"});
  EXPECT_TRUE(SplitSearchPath("").Existing.empty());
}

TEST_F(FileIndexTest, TheProgramsFilesLieBesideItInstalledOrInTheSourceTree) {
  const fs::path program = folder_ / "build/dev/bin/quarvel";
  EXPECT_TRUE(FindProgramData(program).empty());
  EXPECT_TRUE(FindProgramData({}).empty());
  for (const char* place : {"resources/data", "build/dev/share/quarvel", "build/dev/bin/data"}) {
    Write(fs::path(place) / "TheVisTeleporter.wrl", "");
    EXPECT_EQ(FindProgramData(program), folder_ / place);
  }
}

TEST(References, LoseClassAndQuotes) {
  const ResourceReference reference = ParseReference("Texture'Pack.Group.Wall 1'");
  EXPECT_EQ(reference.Name, "Wall 1");
  EXPECT_EQ(reference.Folders, (std::vector<std::string>{"Pack", "Group"}));
  EXPECT_EQ(reference.Text, "Pack.Group.Wall 1");
  EXPECT_EQ(ParseReference("O'Neil").Name, "O'Neil");
  EXPECT_EQ(ParseReference("Pack\\Crate").Folders, std::vector<std::string>{"Pack"});
  EXPECT_EQ(ParseReference("Pack.").Name, "");
  EXPECT_EQ(ParseReference("").Name, "");
  EXPECT_EQ(ReferencePath("StaticMesh."), "StaticMesh.");
  EXPECT_EQ(ReferenceName("ActionPause'myLevel.Manager0.ActionPause3'"), "ActionPause3");
}

TEST(Urls, HoldNothingThatEndsAnAttributeOrString) {
  EXPECT_EQ(EncodeUrlPath("a b\\c'&<\"#%?/\xC3\xA4.png"), "a%20b/c%27%26%3C%22%23%25%3F/%C3%A4.png");
  EXPECT_EQ(EncodeUrlPath("Oran-brick_floor~1.png"), "Oran-brick_floor~1.png");
  EXPECT_EQ(UrlPrefix(" http://example.org/a?b=c'&d "), "http://example.org/a?b=c%27%26d/");
  EXPECT_EQ(UrlPrefix("maps\\textures/"), "maps/textures/");
  EXPECT_EQ(UrlPrefix("  "), "");
}

} // namespace
} // namespace quarvel::test
