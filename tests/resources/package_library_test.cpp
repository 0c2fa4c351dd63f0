#include "resources/package_library.h"
#include "tests/packages/made_package.h"
#include "tests/temporary_folder.h"

#include <gtest/gtest.h>

namespace quarvel {
namespace {

using test::Blob;
using test::MadePackage;

class PackageLibraryTest : public test::TempFolder {
 protected:
  /// A package with textures of these names; "Group.Name" lies in a group.
  static Blob Textures(const std::vector<std::string>& names) {
    MadePackage made;
    for (const std::string& name : names) {
      const std::size_t point = name.find('.');
      const ObjectRef group = point == name.npos ? 0 : made.Export("Package", name.substr(0, point));
      made.Export("Texture", point == name.npos ? name : name.substr(point + 1), {}, group);
    }
    return made.Build();
  }

  void Load(const std::vector<std::string>& roots) {
    std::vector<std::filesystem::path> folders;
    for (const std::string& root : roots)
      folders.push_back(folder_ / root);
    library_.AddFolders(FileIndex(folders), report_);
    library_.Sort();
  }

  /// Where a reference leads: the package's file, the object's full name, and what else fits.
  std::string Found(std::string_view reference) const {
    const auto match = library_.Find(ParseReference(reference), PackageLibrary::Kind::Texture);
    if (!match) return "nothing";
    std::string found = library_.PathOf(*match.Object.In).lexically_relative(folder_).string() + " " +
                        FullName(*match.Object.In, RefOfExport(match.Object.Export), "");
    for (const std::string& other : match.Others)
      found += " or " + other;
    return found;
  }

  Report report_;
  PackageLibrary library_;
};

TEST_F(PackageLibraryTest, ThePackageThatIsNamedWinsThenTheOrderOfThePath) {
  Write("second/Alps.utx", Textures({"Rock", "Snow"}));
  Write("first/Cave.utx", Textures({"Rock", "Wet.Rock", "Dry.Rock"}));
  Write("first/Beach.u", Textures({"Rock", "Sand"}));
  Load({"first", "second"});
  EXPECT_EQ(Found("ALPS.rock"), "second/Alps.utx Rock");
  EXPECT_EQ(Found("Rock"), "first/Beach.u Rock or Cave.utx or Alps.utx");
  EXPECT_EQ(Found("Texture'Cave.Wet.Rock'"), "first/Cave.utx Wet.Rock");
  EXPECT_EQ(Found("Elsewhere.Dry.Rock"), "first/Cave.utx Dry.Rock");
  EXPECT_EQ(Found("Cave.Damp.Rock"), "first/Cave.utx Rock") << "one of three in the same package";
  EXPECT_EQ(Found("Snow"), "second/Alps.utx Snow");
  EXPECT_EQ(Found("Sky"), "nothing");
}

TEST_F(PackageLibraryTest, TheLevelsOwnPackageIsMyLevels) {
  Write("maps/Other.unr", Textures({"Moss"}));
  Write("maps/Rooms.unr", Textures({"Moss"}));
  library_.AddFolders(FileIndex({folder_ / "maps"}), report_);
  library_.AddOwn(folder_ / "maps/Rooms.unr", report_);
  library_.Sort();
  EXPECT_EQ(library_.Packages(), 2U);
  EXPECT_EQ(Found("MyLevel.Moss"), "maps/Rooms.unr Moss");
  EXPECT_EQ(Found("Moss"), "maps/Other.unr Moss or Rooms.unr");
}

TEST_F(PackageLibraryTest, WhatCannotBeReadIsToldAndPassedOver) {
  Write("Later.utx", test::MadeTextures(128));
  Write("Page.u", "<p>");
  Write("Good.utx", test::MadeTextures());
  Load({"."});
  EXPECT_EQ(library_.Packages(), 1U);
  ASSERT_EQ(report_.Findings().size(), 2U);
  EXPECT_EQ(report_.Findings()[0].Actor, "Later.utx");
  EXPECT_EQ(report_.Findings()[0].Reason,
            "was passed over: it is a package of version 128; versions 61 to 69 can be read");
}

TEST_F(PackageLibraryTest, PalettesAreFoundAcrossPackages) {
  Write("Castle.utx", test::MadeTextures());
  MadePackage made;
  made.Export("Palette", "Autumn", test::PaletteBytes(made));
  Write("Elsewhere.utx", made.Build());
  Load({"."});
  const PackageObject leaf = library_.Find(ParseReference("Leaf"), PackageLibrary::Kind::Texture).Object;
  ASSERT_TRUE(leaf);
  EXPECT_EQ(ReadTexturePicture(leaf, library_.Imports()).MissingPalette, "");
  EXPECT_NE(ReadTexturePicture(leaf).MissingPalette, "");
}

} // namespace
} // namespace quarvel
