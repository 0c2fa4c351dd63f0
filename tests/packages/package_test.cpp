#include "packages/level_export.h"
#include "packages/package.h"
#include "packages/properties.h"
#include "packages/sound_object.h"
#include "packages/texture_object.h"
#include "tests/packages/made_package.h"
#include "tests/temporary_folder.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace quarvel {
namespace {

using test::Blob;
using test::MadePackage;
using test::ObjectBytes;

/// The object of a package with this full name; the test fails when there is none.
PackageObject Find(const Package& package, std::string_view name) {
  for (std::size_t i = 0; i < package.Exports.size(); ++i)
    if (FullName(package, RefOfExport(i), "") == name) return {&package, i};
  ADD_FAILURE() << "no object " << name;
  return {};
}

std::vector<Rgba> Pixels(const Package& package, std::string_view name, Transparency transparency) {
  TexturePicture picture = ReadTexturePicture(Find(package, name));
  EXPECT_TRUE(picture) << name << ": " << picture.Error;
  return picture ? test::PixelsOf(std::move(*picture.Picture), transparency) : std::vector<Rgba>();
}

class EveryVersion : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Packages, EveryVersion, testing::Range(FirstPackageVersion, LastPackageVersion + 1));

TEST_P(EveryVersion, HasItsTexturesAndSounds) {
  const Blob file = test::MadeTextures(GetParam());
  const PackageResult read = ReadPackage(file, "Castle");
  ASSERT_TRUE(read) << read.Error;
  const Package& package = *read.Value;
  EXPECT_EQ(FullName(package, 3, package.Name), "Castle.Walls.Brick");
  EXPECT_EQ(ClassName(package, 3), "Texture");
  EXPECT_EQ(Pixels(package, "Walls.Brick", Transparency::Masked)[7], (Rgba{255, 0, 7, 255}));
  const PackageObject sound = Find(package, "Walls.Hum");
  const auto hum = ReadSound(package, package.Exports[sound.Export]);
  ASSERT_TRUE(hum);
  EXPECT_EQ(hum->Kind, "wav");
  EXPECT_DOUBLE_EQ(WaveSeconds(hum->File), 0.5);
}

TEST_P(EveryVersion, HasTheSameLevel) {
  const Blob file = test::MadeLevel(GetParam()), newest = test::MadeLevel();
  const ExportedLevel level = ExportLevel(*ReadPackage(file, "Level").Value);
  EXPECT_EQ(level.Text, ExportLevel(*ReadPackage(newest, "Level").Value).Text);
  EXPECT_TRUE(level.Faults.empty());
}

TEST(Package, IsRefusedInOneSentence) {
  const Blob later = test::MadeTextures(70), earlier = test::MadeTextures(60), text{'B', 'e', 'g', 'i', 'n'};
  EXPECT_EQ(ReadPackage(later, "").Error, "is a package of version 70; versions 61 to 69 can be read");
  EXPECT_EQ(ReadPackage(earlier, "").Error, "is a package of version 60; versions 61 to 69 can be read");
  EXPECT_EQ(ReadPackage(text, "").Error, "is no package");
  EXPECT_EQ(OpenPackage("/nowhere/Castle.utx").Error, "cannot be read");
  TemporaryFolder folder;
  folder.Write("Empty.utx", "");
  EXPECT_EQ(OpenPackage(folder.Path() / "Empty.utx").Error, "is no package");
  EXPECT_EQ(OpenPackage(folder.Path()).Value, std::nullopt) << "a folder";
}

TEST(Package, IsReadAsFarAsItGoes) {
  for (const Blob& whole : {test::MadeTextures(63), test::MadeTextures(), test::MadeLevel()}) {
    for (std::size_t at = 0; at < whole.size(); ++at) {
      Blob file = whole;
      file[at] ^= at % 2 == 0 ? 0xFF : 0x80;
      if (const PackageResult read = ReadPackage(file, "Damaged")) test::ReadEverything(*read.Value);
    }
    for (std::size_t size = 0; size <= whole.size(); ++size) {
      const Blob file(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
      const PackageResult read = ReadPackage(file, "Cut");
      EXPECT_EQ(read.Error.empty(), size == whole.size()) << "the table of objects is last";
      if (read) test::ReadEverything(*read.Value);
    }
  }
}

TEST(Package, EndsWhereGroupsLeadBack) {
  MadePackage made;
  const ObjectRef first = made.Export("Package", "A");
  made.SetOuter(first, made.Export("Package", "B", {}, first));
  made.Export("Texture", "Lost", {}, 99);
  const Blob file = made.Build();
  const Package package = *ReadPackage(file, "Loop").Value;
  EXPECT_TRUE(ObjectPath(package, first).empty());
  EXPECT_TRUE(ObjectPath(package, 3).empty()) << "in a group that is not there";
}

TEST(Package, DoesNotReadObjectsThatOverlap) {
  Blob file = test::MadeTextures();
  const Package whole = *ReadPackage(file, "Castle").Value;
  const PackageObject brick = Find(whole, "Walls.Brick");
  ASSERT_TRUE(ReadTexturePicture(brick));
  const PackageExport& object = whole.Exports[brick.Export];
  const Blob entry = test::FileBytes()
                         .Add(test::CompactIndex(static_cast<int>(object.Size)))
                         .Add(test::CompactIndex(static_cast<int>(object.Offset)));
  *std::search(file.begin(), file.end(), entry.begin(), entry.end()) |= 0x3FU; // a size that reaches over others
  const Package package = *ReadPackage(file, "Castle").Value;
  EXPECT_FALSE(ReadTexturePicture(Find(package, "Walls.Brick")));
  EXPECT_TRUE(ReadTexturePicture(Find(package, "Walls.Fence")));
}

TEST(Properties, AreReadInAllTheirForms) {
  MadePackage made;
  const Blob wideText = [] {
    test::FileBytes bytes;
    bytes.Add(test::CompactIndex(-4)).U16('h').U16(0xE9).U16(0x20AC).U16(0);
    return Blob(bytes);
  }();
  ObjectBytes object(made);
  object.Int("Small", -5).NameOf("Far", "There", 300).Struct("Long", "Mystery", Blob(300, 1));
  object.Struct("Longest", "Mystery", Blob(70000, 1)).Float("Half", 0.5F).Bool("bYes", true).Byte("Kind", 200);
  object.String("Title", "Hall").None().U32(77);
  const Blob bytes = object;
  made.Export("Thing", "Thing0", bytes);
  const Blob file = made.Build();
  const Package package = *ReadPackage(file, "P").Value;
  ObjectReader reader = ReadObject(package, package.Exports[0]);
  const auto properties = ReadProperties(package, reader);
  ASSERT_TRUE(properties);
  ASSERT_EQ(properties->size(), 8U);
  EXPECT_EQ(IntOr(*properties, "SMALL", 0), -5) << "whatever the case";
  EXPECT_EQ((*properties)[1].ArrayIndex, 300);
  EXPECT_EQ(NameValue(package, (*properties)[1]), "There");
  EXPECT_EQ((*properties)[3].Value.size(), 70000U);
  EXPECT_EQ(FloatValue(*FindProperty(*properties, "Half")), 0.5F);
  EXPECT_TRUE(BoolOr(*properties, "bYes", false));
  EXPECT_EQ(IntOr(*properties, "Kind", 0), 200);
  EXPECT_EQ(StringValue(*FindProperty(*properties, "Title")), "Hall");
  EXPECT_EQ(reader.U32(), 77U) << "behind None";
  EXPECT_EQ(StringValue({"Title", PropertyType::String, {}, 0, false, wideText}), "h\xC3\xA9\xE2\x82\xAC");
}

TEST(CompactIndex, GoesThereAndBack) {
  for (const int value : {0, 1, -1, 63, 64, -64, 8191, 8192, 1 << 20, 1 << 27, 0x7FFFFFFF, -0x7FFFFFFF}) {
    const Blob bytes = test::CompactIndex(value);
    ObjectReader reader(bytes, 0, bytes.size());
    EXPECT_EQ(reader.Index(), value);
    EXPECT_TRUE(!reader.Failed() && reader.Left() == 0) << value;
  }
  const Blob endless(8, 0xFF), large{0x7F, 0xFF, 0xFF, 0xFF, 0x7F};
  for (const Blob& bytes : {endless, large}) {
    ObjectReader reader(bytes, 0, bytes.size());
    reader.Index();
    EXPECT_TRUE(reader.Failed());
  }
}

class Textures : public testing::Test {
 protected:
  const Blob file_ = test::MadeTextures();
  const Package package_ = *ReadPackage(file_, "Castle").Value;
};

TEST_F(Textures, HaveThePixelsOfTheirFormat) {
  EXPECT_EQ(Pixels(package_, "Walls.Brick", Transparency::Kept)[0], (Rgba{0, 255, 7, 255}));
  EXPECT_TRUE(ReadTexturePicture(Find(package_, "Walls.Fence")).Masked);
  EXPECT_EQ(Pixels(package_, "Walls.Fence", Transparency::Masked)[0][3], 0);
  EXPECT_EQ(Pixels(package_, "Glass", Transparency::Kept), (std::vector<Rgba>{{1, 2, 3, 255}, {5, 6, 7, 9}}));
  EXPECT_EQ(Pixels(package_, "Stripe", Transparency::Kept), std::vector<Rgba>(16, Rgba{255, 0, 0, 255}));
  EXPECT_EQ(Pixels(package_, "Packed", Transparency::Kept), std::vector<Rgba>(16, Rgba{255, 0, 0, 255}));
  const auto facts = ReadTextureFacts(Find(package_, "Walls.Brick"));
  EXPECT_TRUE(facts && facts->Width == 4 && facts->Height == 2 && !facts->Masked);
}

TEST_F(Textures, WithoutPixelsGetAPicture) {
  const TexturePicture ice = ReadTexturePicture(Find(package_, "Ice"));
  EXPECT_EQ(ice.Kind, PictureKind::Source);
  EXPECT_EQ(Pixels(package_, "Ice", Transparency::Kept), Pixels(package_, "Walls.Brick", Transparency::Kept));
  for (const std::string_view name : {"Torch", "Pool"}) {
    const TexturePicture still = ReadTexturePicture(Find(package_, name));
    ASSERT_TRUE(still) << name;
    EXPECT_EQ(still.Kind, PictureKind::Still);
    const auto [least, most] = std::minmax_element(still.Picture->Values.begin(), still.Picture->Values.end());
    EXPECT_GT(*most - *least, 100) << name << " is no picture";
    EXPECT_EQ(Pixels(package_, name, Transparency::Kept), Pixels(package_, name, Transparency::Kept));
  }
  const TexturePicture leaf = ReadTexturePicture(Find(package_, "Leaf"));
  EXPECT_EQ(leaf.MissingPalette, "Elsewhere.Autumn");
  EXPECT_EQ(leaf.Picture->Palette[9], (Rgba{9, 9, 9, 255}));
}

TEST(DamagedTextures, SayWhatIsWrong) {
  MadePackage made;
  const ObjectRef palette = made.Export("Palette", "P", test::PaletteBytes(made));
  const ObjectRef few = made.Export("Palette", "Few", ObjectBytes(made).None().Index(2).Add({1, 2, 3, 0, 4, 5, 6, 0}));
  const ObjectRef none = made.Export("Palette", "None", ObjectBytes(made).None().Index(0));
  const auto texture = [&] { return ObjectBytes(made).Object("Palette", palette); };
  const std::vector<std::pair<Blob, const char*>> cases{
      {texture().None().Index(1).Mip({1, 2, 3}, 2, 2), "it has too few pixels"},
      {texture().None().Index(1).Mip({1}, 0x7FFFFFFF, 1), "its size is not believable"},
      {texture().Byte("Format", 77).None().Index(1).Mip({1}, 1, 1), "its pixel format 77 is not known"},
      {texture().None().Index(1).U32(0).Index(1000), "its pixels reach beyond it"},
      {texture().None().Index(1 << 27), "its pixels reach beyond it"},
      {texture().None().Index(0), "it has no pixels"},
      {ObjectBytes(made).None().Index(1).Mip({1}, 1, 1), "it has no palette"},
      {ObjectBytes(made).Object("Palette", none).None().Index(1).Mip({1}, 1, 1), "its palette is damaged"},
      {texture(), "its properties are damaged"},
      {texture().Index(999).U8(1).U8(0).None().Index(1).Mip({1}, 1, 1), "its properties are damaged"},
  };
  for (std::size_t i = 0; i < cases.size(); ++i)
    made.Export("Texture", "Case" + std::to_string(i), cases[i].first);
  const ObjectRef painted =
      made.Export("Texture", "Painted",
                  ObjectBytes(made).Object("Palette", few).Bool("bMasked", true).None().Index(1).Mip({1, 2}, 2, 1));
  made.Export("IceTexture", "Veil", texture().Object("SourceTexture", painted).None().Index(0));
  const ObjectRef loop = made.Export("IceTexture", "Loop");
  made.SetData(loop, texture().Object("SourceTexture", loop).None().Index(0));
  const Blob file = made.Build();
  const Package package = *ReadPackage(file, "Bad").Value;
  const auto error = [&](const std::string& name) { return ReadTexturePicture(Find(package, name)).Error; };
  for (std::size_t i = 0; i < cases.size(); ++i)
    EXPECT_EQ(error("Case" + std::to_string(i)), cases[i].second);
  EXPECT_EQ(error("Loop"), "the textures that it shows lead back to itself");
  EXPECT_EQ(Pixels(package, "Painted", Transparency::Kept), (std::vector<Rgba>{{4, 5, 6, 255}, {0, 0, 0, 255}}))
      << "a colour that the palette does not have";
  EXPECT_TRUE(ReadTexturePicture(Find(package, "Veil")).Masked) << "as what it shows";
}

} // namespace
} // namespace quarvel
