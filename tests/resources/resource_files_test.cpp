#include "resources/resource_files.h"
#include "tests/resources/made_images.h"
#include "tests/resources/temp_folder.h"

#include <gtest/gtest.h>

namespace quarvel::test {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

class ResourceFilesTest : public TempFolder {
 protected:
  void SetUp() override {
    TempFolder::SetUp();
    for (const char* name : {"lib", "out", "in"})
      fs::create_directories(folder_ / name);
    settings_.TextSearchPathTxt = (folder_ / "lib").string();
    settings_.TextSearchPathSnd = settings_.TextSearchPathTxt;
    settings_.TextSearchPathMesh = settings_.TextSearchPathTxt;
  }
  ResourceFiles Run() { return ResourceFiles(settings_, folder_ / "in/level.t3d", folder_ / "out/level.wrl", report_); }
  /// Every file below the output folder, sorted.
  Names Output() const {
    Names names;
    for (const auto& entry : fs::recursive_directory_iterator(folder_ / "out"))
      if (entry.is_regular_file()) names.push_back(entry.path().lexically_relative(folder_ / "out").generic_string());
    std::sort(names.begin(), names.end());
    return names;
  }

  ConversionSettings settings_;
  Report report_;
};

TEST_F(ResourceFilesTest, ATextureIsFoundWhateverItsCaseAndForm) {
  Write("lib/Walls/Deep/BRICK.PNG", MadePngHead(64, 32));
  ResourceFiles files = Run();
  for (const char* reference :
       {"Brick", "Pack.brick", "Pack.Group.BRICK", "Texture'Pack.Group.Brick'", "\"Pack.Brick\""}) {
    const TextureFile& texture = files.FindTexture(reference, TextureUse::Ordinary);
    EXPECT_TRUE(texture.Found) << reference;
    EXPECT_EQ(texture.Width, 64);
    EXPECT_EQ(texture.Height, 32);
    EXPECT_EQ(texture.Url, "BRICK.PNG");
  }
  EXPECT_EQ(Output(), Names{"BRICK.PNG"});
  EXPECT_EQ(files.FilesCopied(), 1);
  EXPECT_EQ(files.UsedTextureUrls(), Names{"BRICK.PNG"});
  EXPECT_TRUE(files.MissingTextures().empty());
}

TEST_F(ResourceFilesTest, MissingTexturesAreListedOnceAndStillHaveANameToWaitFor) {
  settings_.ListMaskedBMtypeOut = "jpg";
  ResourceFiles files = Run();
  const TextureFile& texture = files.FindTexture("Pack.Some Wall", TextureUse::Ordinary);
  EXPECT_FALSE(texture.Found);
  EXPECT_EQ(texture.Url, "Some%20Wall.png");
  EXPECT_EQ(files.FindTexture("pack.some wall", TextureUse::Masked).Url, "some%20wall.jpg");
  files.FindTexture("Alpha", TextureUse::Ordinary);
  files.FindTexture("None", TextureUse::Ordinary);
  EXPECT_EQ(files.FindTexture("", TextureUse::Ordinary).Url, "");
  EXPECT_EQ(files.MissingTextures(), (Names{"Alpha", "Pack.Some Wall"}));
}

TEST_F(ResourceFilesTest, NearestFolderThenWantedTypeThenPathDecide) {
  settings_.TextureDest.DestDoCopy = false;
  Write("lib/b/wall.bmp", PlainBmp24(1, 1));
  Write("lib/z/wall.jpg", MadeJpgHead(2, 2, 4));
  Write("lib/a/wall.tga", MadeTga(2, 3, 3, 24, 0, Blob(27)));
  Write("lib/Pack/sub/wall.pcx", MadePcx(4, 4, 1, Blob(16), Blob(768)));
  Write("lib/Other/Group/wall.gif", MadeGif(5, 5));
  Write("lib/Pack/Group/wall.dds", MadeDds(8, 8, "DXT1", Blob(32)));
  const auto width = [&](const char* reference) {
    Report report;
    ResourceFiles files(settings_, folder_ / "in/level.t3d", folder_ / "out/level.wrl", report);
    return files.FindTexture(reference, TextureUse::Ordinary).Width;
  };
  EXPECT_EQ(width("wall"), 2) << "jpg comes before the others when there is no png";
  settings_.ListBMtypeOut = "TGA";
  EXPECT_EQ(width("wall"), 3) << "the wanted type";
  EXPECT_EQ(width("Nowhere.wall"), 3) << "a package that no folder is named like";
  EXPECT_EQ(width("PACK.wall"), 8) << "in the folder's tree, the nearer one";
  EXPECT_EQ(width("Pack.Group.wall"), 8) << "both parts beat one";
  EXPECT_EQ(width("Foreign.Group.wall"), 5) << "of two equally near, by type";
  Write("lib/c/wall.tga", MadeTga(2, 6, 6, 24, 0, Blob(108)));
  EXPECT_EQ(width("wall"), 3) << "ties go by path";
}

} // namespace
} // namespace quarvel::test
