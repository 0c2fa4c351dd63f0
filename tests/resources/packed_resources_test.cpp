#include "images/image_file.h"
#include "tests/packages/made_package.h"
#include "tests/resources/resource_test.h"

#include <gtest/gtest.h>

namespace quarvel::test {
namespace {

namespace fs = std::filesystem;

class PackedResources : public ResourceTest {
 protected:
  PackedResources() {
    Write("lib/deep/Castle.utx", MadeTextures());
    Write("in/level.unr", MadeLevel());
  }
  int AlphaOfFirst(const std::string& name) const {
    const ImageResult image = ReadImageFile(folder_ / "out" / name);
    return image ? image.Picture->Values[3] : -1;
  }
  bool Tells(std::string_view actor, std::string_view reason) const {
    return std::any_of(report_.Findings().begin(), report_.Findings().end(), [&](const Finding& finding) {
      return finding.Actor == actor && finding.Reason.find(reason) != std::string::npos;
    });
  }
};

TEST_F(PackedResources, TexturesComeOutAsImagesWithTheirSize) {
  ResourceFiles files = Run();
  const TextureFile& brick = files.FindTexture("Castle.Walls.Brick", TextureUse::Ordinary);
  EXPECT_TRUE(brick.Found);
  EXPECT_EQ(brick.Width, 4);
  EXPECT_EQ(brick.Height, 2);
  EXPECT_EQ(brick.Url, "Brick.png");
  EXPECT_EQ(brick.Source, folder_ / "out/Brick.png");
  EXPECT_EQ(AlphaOfFirst("Brick.png"), 255);
  EXPECT_TRUE(files.FindTexture("MyLevel.Moss", TextureUse::Ordinary).Found) << "out of the level of the same name";
  EXPECT_FALSE(files.FindTexture("Castle.Sky", TextureUse::Ordinary).Found);
  EXPECT_EQ(files.Missing()[ResourceKind::Texture], Names{"Castle.Sky"});
  EXPECT_EQ(Output(), (Names{"Brick.png", "Moss.png"}));
  Write("lib/brick.png", EncodeImage(MakeImage(16, 16, PixelFormat::Rgba8), ImageType::Png));
  EXPECT_EQ(Run().FindTexture("Castle.Walls.Brick", TextureUse::Ordinary).Width, 16) << "an image file wins";
}

TEST_F(PackedResources, MaskedOnesHaveHolesByTheFaceOrByThemselves) {
  ResourceFiles files = Run();
  EXPECT_EQ(files.FindTexture("Brick", TextureUse::Masked).Url, "Brick.png");
  EXPECT_EQ(files.FindTexture("Brick", TextureUse::Ordinary).Url, "Brick_opaque.png");
  EXPECT_EQ(files.FindTexture("Fence", TextureUse::Masked).Url, "Fence.png");
  EXPECT_EQ(files.FindTexture("Fence", TextureUse::Ordinary).Url, "Fence.png");
  EXPECT_EQ(AlphaOfFirst("Brick.png"), 0);
  EXPECT_EQ(AlphaOfFirst("Brick_opaque.png"), 255);
  EXPECT_EQ(AlphaOfFirst("Fence.png"), 0);
}

TEST_F(PackedResources, KeepToTheOptionsOfCopies) {
  settings_.ListBMtypeOut = "bmp";
  Run().FindTexture("Brick", TextureUse::Ordinary);
  EXPECT_EQ(Output(), Names{"Brick.bmp"});
  Write("out/Brick.bmp", "another one's");
  settings_.TextureDest.DestOverwrite = false;
  Run().FindTexture("Brick", TextureUse::Ordinary);
  EXPECT_EQ(Read("out/Brick.bmp"), "another one's");
  settings_.TextureDest.DestOverwrite = true;
  EXPECT_EQ(Run().FindTexture("Brick", TextureUse::Ordinary).Url, "Brick.bmp");
  EXPECT_TRUE(Read("out/Brick.bmp").starts_with("BM"));
  fs::remove(folder_ / "out/Brick.bmp");
  settings_.TextureDest.DestDoCopy = settings_.SoundDest.DestDoCopy = false;
  ResourceFiles files = Run();
  EXPECT_FALSE(files.FindTexture("Castle.Brick", TextureUse::Ordinary).Found);
  EXPECT_FALSE(files.FindSound("Hum.wav", "Sound'Castle.Walls.Hum'").Found);
  EXPECT_EQ(files.Missing()[ResourceKind::Texture], Names{"Castle.Brick"});
  EXPECT_TRUE(Tells("Castle.Brick", "is in the package Castle.utx, from where only copying brings it out"));
  EXPECT_TRUE(Tells("Castle.Walls.Hum", "is in the package Castle.utx, from where only copying brings it out"));
  EXPECT_EQ(Output(), Names());
}

TEST_F(PackedResources, SoundsComeOutAsTheyAre) {
  ResourceFiles files = Run();
  const ResourceFile& hum = files.FindSound("hum.wav", "Sound'Castle.Walls.Hum'");
  EXPECT_TRUE(hum.Found);
  const Blob wave = WaveBytes(4000);
  EXPECT_EQ(Read("out/" + hum.Url), std::string(wave.begin(), wave.end()));
  EXPECT_FALSE(files.FindSound("gong.wav", "Sound'Castle.Walls.Gong'").Found);
}

TEST_F(PackedResources, TellWhatIsNotAsInTheEngine) {
  ResourceFiles files = Run();
  for (const char* name : {"Torch", "Ice", "Leaf"})
    EXPECT_TRUE(files.FindTexture(name, TextureUse::Ordinary).Found) << name;
  EXPECT_TRUE(Tells("Torch", "a still made of its palette"));
  EXPECT_TRUE(Tells("Ice", "the picture that it moves"));
  EXPECT_TRUE(Tells("Leaf", "is shown in greys"));
  EXPECT_TRUE(report_.Details().empty());
  Write("lib/Other.utx", MadeTextures());
  const auto details = [&](const std::map<std::string, std::string>& known) {
    Report report;
    ResourceFiles second = RunWith(report);
    second.KnowTextures(known);
    second.FindTexture("Brick", TextureUse::Ordinary);
    return report.Details();
  };
  ASSERT_EQ(details({}).size(), 1U);
  EXPECT_EQ(details({})[0].Reason, "was taken from Other.utx; also in Castle.utx");
  EXPECT_TRUE(details({{"brick", "Castle.Walls.Brick"}}).empty()) << "the level's package says which it is";
}

} // namespace
} // namespace quarvel::test
