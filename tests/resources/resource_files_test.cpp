#include "images/image_file.h"
#include "tests/images/made_images.h"
#include "tests/resources/resource_test.h"

#include <gtest/gtest.h>

namespace quarvel::test {
namespace {

namespace fs = std::filesystem;

class ResourceFilesTest : public ResourceTest {};

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
  fs::rename(folder_ / "out/BRICK.PNG", folder_ / "out/Brick.png");
  EXPECT_EQ(Run().FindTexture("Brick", TextureUse::Ordinary).Url, "BRICK.PNG");
  EXPECT_EQ(Output(), Names{"BRICK.PNG"}) << "a copy has the letter case by which the scene calls it";
  EXPECT_EQ(files.FilesCopied(), 1);
  EXPECT_EQ(files.UsedTextureUrls(), Names{"BRICK.PNG"});
  EXPECT_TRUE(files.Missing()[ResourceKind::Texture].empty());
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
  EXPECT_EQ(files.Missing()[ResourceKind::Texture], (Names{"Alpha", "Pack.Some Wall"}));
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
    return RunWith(report).FindTexture(reference, TextureUse::Ordinary).Width;
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
  Write("lib/Attic/wall.tga", MadeTga(2, 7, 7, 24, 0, Blob(147)));
  Write("lib/Tower/wall.tga", MadeTga(2, 9, 9, 24, 0, Blob(243)));
  EXPECT_EQ(width("Tower.Attic.wall"), 9) << "the package's folder, not one that is named like the group";
  Write("Roof/wall.tga", MadeTga(2, 1, 1, 24, 0, Blob(3)));
  settings_.TextSearchPathTxt += ";" + (folder_ / "Roof").string();
  EXPECT_EQ(width("Roof.wall"), 1) << "the library itself is the package's folder";
}

TEST_F(ResourceFilesTest, EditorQualifiedNamesAreAnOption) {
  Write("lib/Pack.Group.wall.png", MadePngHead(3, 3));
  Write("lib/x/wall.png", MadePngHead(1, 1));
  EXPECT_EQ(Run().FindTexture("Pack.Group.wall", TextureUse::Ordinary).Width, 1);
  settings_.TextureDest.UEd3Behavior = true;
  ResourceFiles files = Run();
  EXPECT_EQ(files.FindTexture("Pack.Group.wall", TextureUse::Ordinary).Width, 3);
  EXPECT_EQ(files.FindTexture("Other.wall", TextureUse::Ordinary).Width, 1) << "then any";
  Write("lib/Group/stone.png", MadePngHead(5, 5));
  Write("lib/x/Pack.stone.png", MadePngHead(4, 4));
  EXPECT_EQ(Run().FindTexture("Pack.Group.stone", TextureUse::Ordinary).Width, 4) << "even before the group's folder";
}

TEST_F(ResourceFilesTest, AnEmptyOrMissingSearchPathMeansTheInputsFolder) {
  Write("in/sub/wall.png", MadePngHead(5, 5));
  settings_.TextSearchPathTxt = "";
  EXPECT_EQ(Run().FindTexture("wall", TextureUse::Ordinary).Width, 5);
  settings_.TextSearchPathTxt = "d:\\data\\none;" + (folder_ / "nowhere").string();
  EXPECT_EQ(Run().FindTexture("wall", TextureUse::Ordinary).Width, 5);
  EXPECT_EQ(report_.Findings().size(), 2U);
}

TEST_F(ResourceFilesTest, AnUnknownSizeIsReportedOnce) {
  Write("lib/wall.png", "not a png");
  ResourceFiles files = Run();
  EXPECT_EQ(files.FindTexture("wall", TextureUse::Ordinary).Width, 0);
  EXPECT_TRUE(files.FindTexture("Pack.wall", TextureUse::Masked).Found);
  EXPECT_EQ(report_.Findings().size(), 1U);
}

/// An 8-bit bitmap of two pixels, of which the first has index 0.
Blob PaletteBmp() { return MadeBmp(2, 1, 8, {0, 0, 255, 0, 0, 255, 0, 0}, {0, 1, 0, 0}); }

Image PictureIn(const fs::path& file) {
  ImageResult result = ReadImageFile(file);
  return result ? ToRgba(std::move(*result.Picture), Transparency::Kept) : Image();
}

TEST_F(ResourceFilesTest, OtherTypesAreConvertedWhereTheWantedOneCanBeWritten) {
  Write("lib/wall.bmp", PaletteBmp());
  Write("lib/stone.tga", MadeTga(2, 2, 1, 24, 0, Blob(6, 9)));
  Write("lib/web.gif", MadeGif(3, 3));
  Write("lib/bad.tga", MadeTga(10, 2, 1, 24, 0, {0x01, 1, 1, 1, 1, 1}));
  ResourceFiles files = Run();
  EXPECT_EQ(files.FindTexture("wall", TextureUse::Ordinary).Url, "wall.png");
  EXPECT_EQ(PictureIn(folder_ / "out/wall.png").Values, (std::vector<std::uint8_t>{255, 0, 0, 255, 0, 255, 0, 255}));
  EXPECT_EQ(files.FindTexture("web", TextureUse::Ordinary).Url, "web.gif");
  EXPECT_EQ(files.FindTexture("bad", TextureUse::Ordinary).Url, "bad.tga") << "what cannot be read is copied as it is";
  settings_.ListBMtypeOut = "dds";
  EXPECT_EQ(Run().FindTexture("stone", TextureUse::Ordinary).Url, "stone.tga");
  EXPECT_EQ(Output(), (Names{"bad.tga", "stone.tga", "wall.png", "web.gif"}));
  EXPECT_TRUE(files.Errors().empty());
}

TEST_F(ResourceFilesTest, MaskedTexturesGetTheirHolesAndAreToldApartFromTheSolidOnes) {
  Write("lib/grate.bmp", PaletteBmp());
  const std::vector<std::uint8_t> masked{255, 0, 0, 0, 0, 255, 0, 255};
  ResourceFiles files = Run();
  EXPECT_EQ(files.FindTexture("grate", TextureUse::Masked).Url, "grate.png");
  EXPECT_EQ(PictureIn(folder_ / "out/grate.png").Values, masked);
  EXPECT_EQ(files.FindTexture("grate", TextureUse::Ordinary).Url, "grate_opaque.png");
  EXPECT_EQ(PictureIn(folder_ / "out/grate_opaque.png").Values[3], 255);

  settings_.ListMaskedBMtypeOut = "bmp";
  EXPECT_EQ(Run().FindTexture("grate", TextureUse::Masked).Url, "grate.bmp") << "written anew, with an alpha channel";
  EXPECT_EQ(PictureIn(folder_ / "out/grate.bmp").Values, masked);
}

TEST_F(ResourceFilesTest, ALibraryInTheScenesFolderIsNeverOverwrittenAndASecondRunChangesNothing) {
  settings_.TextSearchPathTxt = (folder_ / "out").string();
  settings_.ListMaskedBMtypeOut = "bmp";
  Write("out/GRATE.BMP", PaletteBmp());
  Write("out/Pack/wall.tga", MadeTga(2, 2, 1, 32, 0, {1, 2, 3, 0, 4, 5, 6, 255}));
  const auto convert = [&](int& copied) {
    ResourceFiles files = Run();
    Names urls;
    for (const char* reference : {"grate", "Pack.wall", "Other.wall"})
      for (const TextureUse use : {TextureUse::Ordinary, TextureUse::Masked, TextureUse::Terrain})
        urls.push_back(files.FindTexture(reference, use).Url);
    copied = files.FilesCopied();
    return urls;
  };
  int copied = 0;
  const Names first = convert(copied);
  EXPECT_EQ(copied, 4);
  EXPECT_EQ(first, (Names{"GRATE.png", "GRATE_masked.bmp", "GRATE.png", "wall.png", "wall.bmp", "wall.png", "wall.png",
                          "wall.bmp", "wall.png"}));
  EXPECT_EQ(Read("out/GRATE.BMP").size(), PaletteBmp().size());
  EXPECT_EQ(convert(copied), first);
  EXPECT_EQ(copied, 0);

  settings_.ListMaskedBMtypeOut = "png"; // now solid and masked images of one file have one type
  const Names third = convert(copied);
  EXPECT_EQ(third[4], "wall_masked.png");
  EXPECT_EQ(convert(copied), third);
  EXPECT_EQ(copied, 0);
}

TEST_F(ResourceFilesTest, TwoFilesOfOneNameBothArrive) {
  Write("lib/A/wall.png", MadePngHead(1, 1));
  Write("lib/B/wall.png", MadePngHead(2, 2));
  Write("lib/C/wall.png", MadePngHead(1, 1));
  ResourceFiles files = Run();
  EXPECT_EQ(files.FindTexture("B.wall", TextureUse::Ordinary).Url, "wall.png");
  EXPECT_EQ(files.FindTexture("A.wall", TextureUse::Ordinary).Url, "A.wall.png");
  EXPECT_EQ(files.FindTexture("C.wall", TextureUse::Ordinary).Url, "C.wall.png");
  EXPECT_EQ(files.FindTexture("wall", TextureUse::Ordinary).Url, "A.wall.png") << "the file that this name finds";
  EXPECT_EQ(Output(), (Names{"A.wall.png", "C.wall.png", "wall.png"}));
}

TEST_F(ResourceFilesTest, DestinationOptionsDecideFolderAndUrl) {
  Write("lib/My Pack/wall.png", MadePngHead(1, 1));
  const auto url = [&] { return Run().FindTexture("wall", TextureUse::Ordinary).Url; };
  settings_.TextureDest.DestPathBehavior = 1;
  EXPECT_EQ(url(), "textures/wall.png");
  settings_.TextureDest.DestPathBehavior = 2;
  EXPECT_EQ(url(), "My%20Pack/wall.png");
  settings_.TextureDest.DestPrependPath = "http://example.org/x";
  EXPECT_EQ(url(), "http://example.org/x/My%20Pack/wall.png");
  EXPECT_EQ(Output(), (Names{"My Pack/wall.png", "textures/wall.png"}));

  settings_.TextureDest.DestDoCopy = false;
  EXPECT_EQ(url(), "http://example.org/x/My%20Pack/wall.png");
  settings_.TextureDest.DestPrependPath = "";
  EXPECT_EQ(url(), "../lib/My%20Pack/wall.png");
  EXPECT_EQ(Output().size(), 2U);
}

TEST_F(ResourceFilesTest, AFileThatIsThereStaysUnlessOverwritingIsAskedFor) {
  Write("lib/wall.png", MadePngHead(1, 1));
  Write("out/WALL.png", "mine");
  EXPECT_EQ(Run().FindTexture("wall", TextureUse::Ordinary).Url, "lib.wall.png");
  EXPECT_EQ(Read("out/WALL.png"), "mine");
  EXPECT_EQ(report_.Findings().size(), 1U) << "it is another file";
  fs::remove(folder_ / "out/lib.wall.png");
  fs::remove(folder_ / "out" / CopyList::FileName);
  settings_.TextureDest.DestOverwrite = true;
  ResourceFiles files = Run();
  EXPECT_EQ(files.FindTexture("wall", TextureUse::Ordinary).Url, "wall.png");
  files.FindTexture("Pack.wall", TextureUse::Masked);
  EXPECT_EQ(Read("out/wall.png"), Read("lib/wall.png"));
  EXPECT_EQ(files.FilesCopied(), 1);
}

/// Two pixels, red and green or the other way round: bitmaps of one size, of which the first pixel is masked.
Blob TwoColors(bool swapped) {
  const std::uint8_t one = swapped ? 255 : 0, other = swapped ? 0 : 255;
  return MadeBmp(2, 1, 8, {0, one, other, 0, 0, other, one, 0}, {0, 1, 0, 0});
}

TEST_F(ResourceFilesTest, LevelsThatShareAFolderKeepTheirOwnCopies) {
  Write("lib/wall.bmp", TwoColors(false));
  Write("lib2/wall.bmp", TwoColors(true));
  int copied = 0;
  const auto url = [&](const char* library, TextureUse use, OutputFolders* batch) {
    settings_.TextSearchPathTxt = (folder_ / library).string();
    ResourceFiles files = RunWith(report_, batch);
    const std::string found = files.FindTexture("wall", use).Url;
    copied += files.FilesCopied();
    return found;
  };
  OutputFolders batch;
  EXPECT_EQ(url("lib", TextureUse::Ordinary, &batch), "wall.png");
  EXPECT_EQ(url("lib2", TextureUse::Ordinary, &batch), "lib2.wall.png");
  EXPECT_EQ(url("lib", TextureUse::Masked, &batch), "wall_masked.png");
  EXPECT_NE(PictureIn(folder_ / "out/wall.png").Values, PictureIn(folder_ / "out/lib2.wall.png").Values);

  Write("out/lib2.wall.png", "retouched");
  copied = 0;
  EXPECT_EQ(url("lib2", TextureUse::Ordinary, nullptr), "lib2.wall.png") << "whatever comes first this time";
  EXPECT_EQ(url("lib", TextureUse::Masked, nullptr), "wall_masked.png");
  EXPECT_EQ(url("lib", TextureUse::Ordinary, nullptr), "wall.png");
  EXPECT_EQ(Read("out/lib2.wall.png"), "retouched");
  EXPECT_EQ(copied, 0);

  Write("lib/wall.bmp", TwoColors(true));
  EXPECT_NE(url("lib", TextureUse::Ordinary, nullptr), "wall.png") << "the library has another picture now";
}

TEST_F(ResourceFilesTest, InALibraryThatIsTheScenesFolderEachNameShowsItsOwnPicture) {
  settings_.TextSearchPathTxt = (folder_ / "out").string();
  settings_.TextureDest.DestOverwrite = true;
  for (const bool subFirst : {true, false}) {
    for (const auto& entry : fs::directory_iterator(folder_ / "out"))
      fs::remove_all(entry);
    Write("out/brick.bmp", TwoColors(false));
    Write("out/sub/brick.bmp", TwoColors(true));
    Write("out/stone.png", MadePngHead(1, 1));
    Write("out/sub/stone.png", MadePngHead(2, 2));
    ResourceFiles files = Run();
    const auto url = [&](const char* name) { return files.FindTexture(name, TextureUse::Ordinary).Url; };
    if (subFirst) url("sub.brick"), url("sub.stone");
    EXPECT_EQ(url("brick"), "brick.png");
    EXPECT_EQ(url("sub.brick"), "sub.brick.png");
    EXPECT_EQ(url("stone"), "stone.png");
    EXPECT_EQ(url("sub.stone"), "sub.stone.png");
    EXPECT_EQ(PictureIn(folder_ / "out/brick.png").Values[0], 255);
    EXPECT_EQ(Read("out/sub.stone.png"), Read("out/sub/stone.png"));
    const Blob stone = MadePngHead(1, 1);
    EXPECT_EQ(Read("out/stone.png"), std::string(stone.begin(), stone.end()));
  }
}

TEST_F(ResourceFilesTest, OverwritingSparesScenesInputsAndWhatLinksLeadTo) {
  settings_.MeshDest.DestOverwrite = settings_.TextureDest.DestOverwrite = true;
  Write("lib/other.wrl", "mesh");
  Write("lib/input.wrl", "mesh");
  Write("lib/wall.png", MadePngHead(1, 1));
  Write("out/other.wrl", "#VRML V2.0 utf8\r\n# Converted by Quarvel VRML converter\r\n");
  Write("out/input.wrl", "input");
  Write("victim", "mine");
  fs::create_symlink("../victim", folder_ / "out/wall.png");
  fs::create_symlink("../victim", folder_ / "out" / CopyList::FileName);
  OutputFolders batch;
  batch.Reserve(folder_ / "out/../out/input.wrl");
  {
    ResourceFiles files = RunWith(report_, &batch);
    EXPECT_EQ(files.FindMesh("other", true).Wrl.Url, "lib.other.wrl");
    EXPECT_EQ(files.FindMesh("input", true).Wrl.Url, "lib.input.wrl");
    EXPECT_EQ(files.FindTexture("wall", TextureUse::Ordinary).Url, "lib.wall.png");
  }
  EXPECT_EQ(Read("out/input.wrl"), "input");
  EXPECT_EQ(Read("victim"), "mine");
  EXPECT_FALSE(fs::is_symlink(folder_ / "out" / CopyList::FileName));
}

TEST_F(ResourceFilesTest, AListOfCopiesLeadsNowhereElse) {
  Write("lib/wall.png", MadePngHead(1, 1));
  const std::string bytes = Read("lib/wall.png");
  Write(std::string("out/") + CopyList::FileName, "../wall.png\t-\t" + HashOf(bytes) +
                                                      "\twall.png\r\n/tmp/wall.png\t-\t" + HashOf(bytes) +
                                                      "\twall.png\r\nbroken line\r\n");
  EXPECT_EQ(Run().FindTexture("wall", TextureUse::Ordinary).Url, "wall.png");
  EXPECT_EQ(Output(), Names{"wall.png"});
  EXPECT_FALSE(fs::exists(folder_ / "wall.png"));
}

TEST_F(ResourceFilesTest, ASourceThatVanishedIsMissing) {
  Write("lib/wall.png", MadePngHead(1, 1));
  Write("lib/stone.bmp", TwoColors(false));
  ResourceFiles files = Run();
  files.FindTexture("first", TextureUse::Ordinary);
  fs::remove(folder_ / "lib/wall.png");
  fs::remove(folder_ / "lib/stone.bmp");
  EXPECT_FALSE(files.FindTexture("wall", TextureUse::Ordinary).Found);
  EXPECT_FALSE(files.FindTexture("stone", TextureUse::Ordinary).Found);
  EXPECT_EQ(files.Missing()[ResourceKind::Texture], (Names{"first", "stone", "wall"}));
  EXPECT_EQ(files.Errors(), Names{}) << "no destination is to blame";
  ASSERT_EQ(report_.Findings().size(), 2U);
  EXPECT_EQ(report_.Findings()[0].Reason, "cannot be read: No such file or directory");
}

TEST_F(ResourceFilesTest, ManyTexturesOfOneNameAreToldApartInLinearTime) {
  constexpr int count = 300;
  for (int i = 0; i < count; ++i) {
    Blob bitmap = TwoColors(false);
    bitmap[54] = static_cast<std::uint8_t>(i % 251); // a colour of the palette
    bitmap[55] = static_cast<std::uint8_t>(i / 251);
    Write("lib/Pack/G" + std::to_string(i) + "/wall.bmp", bitmap);
  }
  ResourceFiles files = Run();
  std::set<std::string> urls;
  for (int i = 0; i < count; ++i)
    urls.insert(files.FindTexture("Pack.G" + std::to_string(i) + ".wall", TextureUse::Masked).Url);
  EXPECT_EQ(urls.size(), static_cast<std::size_t>(count));
  EXPECT_EQ(files.FilesCopied(), count);
}

TEST_F(ResourceFilesTest, ACopyThatFailsIsAnError) {
  Write("lib/wall.png", MadePngHead(1, 1));
  Write("lib/stone.bmp", PaletteBmp());
  Write("out/textures", "a file where the folder should be");
  settings_.TextureDest.DestPathBehavior = 1;
  ResourceFiles files = Run();
  EXPECT_EQ(files.FindTexture("wall", TextureUse::Ordinary).Url, "textures/wall.png");
  EXPECT_EQ(files.FindTexture("stone", TextureUse::Ordinary).Url, "textures/stone.png");
  EXPECT_EQ(files.Errors().size(), 2U);
}

TEST_F(ResourceFilesTest, SoundsAtTheDestinationAreKeptAndOthersFetched) {
  Write("out/HUM60.WAV", "mine");
  Write("lib/Looping/hum60.wav", "library");
  Write("lib/Other/Fire.WAV", "other");
  Write("lib/Ambient/fire.wav", "fire");
  ResourceFiles files = Run();
  EXPECT_EQ(files.FindSound("hum60.wav").Url, "hum60.wav");
  EXPECT_EQ(Read("out/hum60.wav"), "mine");
  EXPECT_TRUE(files.FindSound("Fire.wav", "Sound'Ambient.Looping.Fire'").Found);
  EXPECT_EQ(Read("out/Fire.wav"), "fire");
  const ResourceFile& missing = files.FindSound("no such.wav");
  EXPECT_FALSE(missing.Found);
  EXPECT_EQ(missing.Url, "no%20such.wav");
  EXPECT_EQ(files.Missing()[ResourceKind::Sound], Names{(folder_ / "out/no such.wav").string()});
  EXPECT_EQ(Output(), (Names{"Fire.wav", "hum60.wav"}));
  settings_.SoundDest.DestOverwrite = true;
  Write("out/own.wav", "mine");
  EXPECT_TRUE(Run().FindSound("own.wav").Found) << "nothing to overwrite it with";
  EXPECT_EQ(Run().FindSound("hum60.wav").Url, "hum60.wav");
  EXPECT_EQ(Read("out/hum60.wav"), "library");
  settings_.SoundDest.DestDoCopy = false;
  ResourceFiles inLibrary = Run();
  EXPECT_TRUE(inLibrary.FindSound("hum60.wav").Found);
  EXPECT_EQ(inLibrary.FindSound("hum60.wav").Url, "../lib/Looping/hum60.wav");
}

TEST_F(ResourceFilesTest, MeshesAreFoundInTheLibraryAndBesideTheSceneButNeverTheSceneItself) {
  Write("lib/Base/Crate-.wrl", "a");
  Write("lib/Other/crate-.wrl", "b");
  Write("lib/Other/Crate-.x3d", "c");
  Write("lib/Base/Crate-.x3d", "f");
  Write("lib/Base/Single.wrl", "g");
  Write("lib/Other/Single.x3d", "h");
  Write("lib/Level.wrl", "d");
  Write("out/Torch.x3d", "e");
  Write("out/level.wrl", "the scene");
  ResourceFiles files = Run();
  const MeshFiles& crate = files.FindMesh("Base.Crate-", true);
  EXPECT_EQ(crate.Wrl.Url, "Crate-.wrl");
  EXPECT_EQ(crate.X3d.Url, "Crate-.x3d");
  EXPECT_EQ(Read("out/Crate-.wrl") + Read("out/Crate-.x3d"), "af");
  EXPECT_FALSE(files.FindMesh("Base.Single", true).X3d.Found) << "the mesh of another package";
  EXPECT_TRUE(files.FindMesh("Third.Single", true).X3d.Found) << "a package without folders of its own";
  EXPECT_EQ(files.FindMesh("Pack.Level", true).Wrl.Url, "Pack.Level.wrl");
  EXPECT_EQ(Read("out/level.wrl"), "the scene");
  EXPECT_TRUE(files.HasMesh("TORCH"));
  EXPECT_EQ(files.MeshNames(), (Names{"crate-", "level", "single", "torch"}));
  EXPECT_FALSE(files.FindMesh("Base.None", false).Found());
  EXPECT_TRUE(files.Missing()[ResourceKind::Mesh].empty());
  files.FindMesh("Base.None", true);
  EXPECT_EQ(files.Missing()[ResourceKind::Mesh], Names{"Base.None"});

  settings_.CheckInlineWRL = false;
  ResourceFiles onlyX3d = Run();
  EXPECT_FALSE(onlyX3d.FindMesh("Crate-", true).Wrl.Found);
  EXPECT_TRUE(onlyX3d.FindMesh("Crate-", true).X3d.Found);
  settings_.CheckInlineX3D = false;
  EXPECT_TRUE(Run().MeshNames().empty());
}

TEST_F(ResourceFilesTest, FilesThatNameEachOtherGoBesideTheScene) {
  settings_.MeshDest.DestPathBehavior = 1;
  Write("lib/models/thevisteleporter.wrl", "model");
  Write("own/TheVisTeleporter.wrl", "the program's");
  Write("own/Spare.wrl", "spare");
  ResourceFiles files = RunWith(report_, nullptr, folder_ / "own");
  EXPECT_TRUE(files.FindAndCopyFile("TheVisTeleporter.wrl", ResourceKind::Mesh).Found);
  EXPECT_FALSE(files.FindAndCopyFile("TheVisTeleporter.x3d", ResourceKind::Mesh).Found);
  EXPECT_EQ(Read("out/TheVisTeleporter.wrl"), "model");
  EXPECT_EQ(files.Missing()[ResourceKind::Mesh], Names{"TheVisTeleporter.x3d"});
  settings_.MeshDest.DestDoCopy = false;
  EXPECT_TRUE(RunWith(report_, nullptr, folder_ / "own").FindAndCopyFile("Spare.wrl", ResourceKind::Mesh).Found);
  EXPECT_EQ(Read("out/Spare.wrl"), "spare") << "nobody else has it";
}

TEST_F(ResourceFilesTest, HeightmapsAreReadWhereTheyLie) {
  const fs::path map = Write("lib/terrain.bmp", MadeBmp(2, 2, 16, {}, Blob(8, 1)));
  ResourceFiles files = Run();
  EXPECT_EQ(files.FindTextureSource("Texture'Pack.Terrain'"), map);
  EXPECT_EQ(files.FindTextureSource("Gone"), std::nullopt);
  EXPECT_EQ(files.FindTextureSource("None"), std::nullopt);
  EXPECT_EQ(files.Missing()[ResourceKind::Texture], Names{"Gone"});
  EXPECT_TRUE(Output().empty());
}

} // namespace
} // namespace quarvel::test
