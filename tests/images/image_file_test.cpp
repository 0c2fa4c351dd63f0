#include "images/image_file.h"
#include "images/image_size.h"
#include "tests/images/made_images.h"
#include "tests/temporary_folder.h"

#include <gtest/gtest.h>

namespace quarvel::test {
namespace {

constexpr Rgba Red{255, 0, 0, 255};
constexpr Rgba Green{0, 255, 0, 255};
constexpr Rgba Blue{0, 0, 255, 255};
constexpr Rgba White{255, 255, 255, 255};
constexpr Rgba Clear{0, 0, 0, 0};

/// The pixels of a file, row by row from the top; empty when it cannot be read.
std::vector<Rgba> PixelsOf(const Blob& file, const char* extension, Transparency transparency = Transparency::Kept) {
  ImageResult result = ReadImage(file, extension);
  return result ? test::PixelsOf(std::move(*result.Picture), transparency) : std::vector<Rgba>();
}

/// Red and green above blue and white.
Image FourColors() {
  Image image = MakeImage(2, 2, PixelFormat::Rgba8);
  image.Values = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, 255};
  return image;
}

const std::vector<Rgba> FourPixels{Red, Green, Blue, White};
const Blob FourColorPalette{0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 0, 255, 255, 255, 0}; // blue, green, red, unused

TEST(Bmp, IsReadInEveryDepthWithTheBottomRowFirst) {
  const std::vector<Rgba>& expected = FourPixels;
  EXPECT_EQ(PixelsOf(MadeBmp(2, 2, 4, FourColorPalette, {0x23, 0, 0, 0, 0x01, 0, 0, 0}), "bmp"), expected);
  EXPECT_EQ(PixelsOf(MadeBmp(2, 2, 8, FourColorPalette, {2, 3, 0, 0, 0, 1, 0, 0}), "bmp"), expected);
  EXPECT_EQ(PixelsOf(MadeBmp(2, -2, 8, FourColorPalette, {0, 1, 0, 0, 2, 3, 0, 0}), "bmp"), expected);
  const Blob rows16{0x1F, 0, 0xFF, 0x7F, 0, 0x7C, 0xE0, 3};
  EXPECT_EQ(PixelsOf(MadeBmp(2, 2, 16, {}, rows16), "bmp"), expected);
  const Blob rows24{255, 0, 0, 255, 255, 255, 0, 0, 0, 0, 255, 0, 255, 0, 0, 0};
  EXPECT_EQ(PixelsOf(MadeBmp(2, 2, 24, {}, rows24), "bmp"), expected);
  const Blob blackAndWhite{0, 0, 0, 0, 255, 255, 255, 0};
  EXPECT_EQ(PixelsOf(MadeBmp(2, 1, 1, blackAndWhite, {0x40, 0, 0, 0}), "bmp"),
            (std::vector<Rgba>{{0, 0, 0, 255}, White}));
}

TEST(Bmp, OfThirtyTwoBitsIsOpaqueWhenAllAlphaIsZero) {
  EXPECT_EQ(PixelsOf(MadeBmp(2, 1, 32, {}, {0, 0, 255, 0, 0, 255, 0, 0}), "bmp"), (std::vector<Rgba>{Red, Green}));
  EXPECT_EQ(PixelsOf(MadeBmp(2, 1, 32, {}, {0, 0, 255, 9, 0, 255, 0, 0}), "bmp"),
            (std::vector<Rgba>{{255, 0, 0, 9}, {0, 255, 0, 0}}));
}

TEST(Bmp, RunLengthCodeIsReadAndBounded) {
  const auto withCode = [](int bits, const Blob& code, int width = 2) {
    Blob file = MadeBmp(width, 4 / width, bits, FourColorPalette, code);
    file[30] = bits == 8 ? 1 : 2;
    return file;
  };
  EXPECT_EQ(PixelsOf(withCode(8, {1, 2, 1, 3, 0, 0, 1, 0, 1, 1, 0, 1}), "bmp"), FourPixels);
  EXPECT_EQ(PixelsOf(withCode(4, {2, 0x23, 0, 0, 2, 0x01, 0, 1}), "bmp"), FourPixels);
  EXPECT_EQ(PixelsOf(withCode(4, {0, 3, 0x23, 0x00, 1, 0x10, 0, 1}, 4), "bmp"),
            (std::vector<Rgba>{Blue, White, Red, Green}))
      << "pixels one by one";
  EXPECT_EQ(PixelsOf(withCode(8, {255, 1, 0, 0, 255, 0, 0, 0, 9, 9}), "bmp"),
            (std::vector<Rgba>{Red, Red, Green, Green}))
      << "a run past the end of its row";
  EXPECT_EQ(PixelsOf(withCode(8, {1, 2, 0, 2, 1, 0, 1, 1, 0, 1}, 4), "bmp"), (std::vector<Rgba>{Blue, Red, Green, Red}))
      << "pixels passed over";
  for (const Blob& cut : {Blob{1, 2}, Blob{0, 4, 1}})
    EXPECT_TRUE(PixelsOf(withCode(8, cut), "bmp").empty()) << "truncated";
}

TEST(Tga, IsReadPlainAndRunLengthEncoded) {
  const Blob fromBottom{255, 0, 0, 255, 255, 255, 0, 0, 255, 0, 255, 0};
  EXPECT_EQ(PixelsOf(MadeTga(2, 2, 2, 24, 0, fromBottom), "tga"), FourPixels);
  const Blob fromTop{0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255};
  EXPECT_EQ(PixelsOf(MadeTga(2, 2, 2, 24, 0x20, fromTop), "tga"), FourPixels);
  EXPECT_EQ(PixelsOf(MadeTga(10, 3, 1, 32, 0x28, {0x81, 0, 0, 255, 255, 0x00, 0, 255, 0, 7}), "tga"),
            (std::vector<Rgba>{Red, Red, {0, 255, 0, 7}}));
  EXPECT_EQ(PixelsOf(MadeTga(3, 2, 1, 8, 0, {255, 0}), "tga"), (std::vector<Rgba>{White, {0, 0, 0, 255}}));
  EXPECT_EQ(PixelsOf(MadeTga(2, 1, 1, 32, 8, {0, 0, 255, 0}), "tga"), std::vector<Rgba>{Red}) << "alpha never used";
  EXPECT_EQ(PixelsOf(MadeTga(2, 2, 1, 32, 0, {0, 0, 255, 9, 0, 255, 0, 0}), "tga"),
            (std::vector<Rgba>{{255, 0, 0, 9}, {0, 255, 0, 0}}))
      << "alpha that the header does not count";
  EXPECT_EQ(PixelsOf(MadeTga(2, 2, 1, 16, 1, {0, 0xFC, 0xE0, 3}), "tga"), (std::vector<Rgba>{Red, {0, 255, 0, 0}}));
  for (const Blob& cut : {Blob{0x81, 0, 0, 255, 0x01, 0}, Blob{0x81, 0, 0, 255, 0x81, 0}, Blob{0x81, 0, 0, 255}})
    EXPECT_TRUE(PixelsOf(MadeTga(10, 4, 1, 24, 0, cut), "tga").empty()) << "truncated";
}

TEST(Pcx, IsReadWithPaletteAndInPlanes) {
  Blob palette(768, 0);
  palette[3] = palette[7] = 255; // 1 is red, 2 green
  EXPECT_EQ(PixelsOf(MadePcx(2, 2, 1, {1, 2, 0xC2, 1}, palette), "pcx"), (std::vector<Rgba>{Red, Green, Red, Red}));
  EXPECT_EQ(PixelsOf(MadePcx(2, 1, 3, {0xC1, 0xFF, 0, 0, 0xC1, 0xFF, 0xC2, 0}, {}), "pcx"),
            (std::vector<Rgba>{Red, Green}));
  Blob plain = MadePcx(2, 1, 1, {0xC2, 2}, palette);
  plain[2] = 0; // no run-length code
  EXPECT_EQ(PixelsOf(plain, "pcx"), (std::vector<Rgba>{{0, 0, 0, 255}, Green}));
  Blob greys = MadePcx(2, 1, 1, {0, 0xC1, 0xFF}, {});
  EXPECT_TRUE(PixelsOf(greys, "pcx").empty()) << "without its palette";
  greys[68] = 2;
  EXPECT_EQ(PixelsOf(greys, "pcx"), (std::vector<Rgba>{{0, 0, 0, 255}, White}));
  EXPECT_TRUE(PixelsOf(MadePcx(2, 2, 3, {0xC4, 1, 1}, {}), "pcx").empty()) << "truncated";
}

TEST(Dds, BlocksAreDecoded) {
  // Red and blue as end points; the first row picks first, second, third, fourth.
  const Blob colors{0x00, 0xF8, 0x1F, 0x00, 0xE4, 0, 0, 0};
  const auto firstRow = [](std::vector<Rgba> pixels) {
    pixels.resize(4);
    return pixels;
  };
  EXPECT_EQ(firstRow(PixelsOf(MadeDds(4, 4, "DXT1", colors), "dds")),
            (std::vector<Rgba>{Red, Blue, {170, 0, 85, 255}, {85, 0, 170, 255}}));
  const Blob swapped{0x1F, 0x00, 0x00, 0xF8, 0xE4, 0, 0, 0};
  EXPECT_EQ(firstRow(PixelsOf(MadeDds(4, 4, "DXT1", swapped), "dds")),
            (std::vector<Rgba>{Blue, Red, {127, 0, 127, 255}, Clear}));
  const Blob alpha3 = FileBytes().U8(0xF0).U8(0x5A).Fill(6).Add(colors);
  EXPECT_EQ(firstRow(PixelsOf(MadeDds(4, 4, "DXT3", alpha3), "dds")),
            (std::vector<Rgba>{{255, 0, 0, 0}, Blue, {170, 0, 85, 170}, {85, 0, 170, 85}}));
  const Blob alpha5 = FileBytes().U8(200).U8(60).U8(0x88).U8(0x0E).Fill(4).Add(colors); // picks 0, 1, 2, 7
  EXPECT_EQ(firstRow(PixelsOf(MadeDds(4, 4, "DXT5", alpha5), "dds")),
            (std::vector<Rgba>{{255, 0, 0, 200}, {0, 0, 255, 60}, {170, 0, 85, 180}, {85, 0, 170, 80}}));
  const Blob ends5 = FileBytes().U8(60).U8(200).U8(0xAA).U8(0x0F).Fill(4).Add(colors); // picks 2, 5, 6, 7
  EXPECT_EQ(firstRow(PixelsOf(MadeDds(4, 4, "DXT5", ends5), "dds")),
            (std::vector<Rgba>{{255, 0, 0, 88}, {0, 0, 255, 172}, {170, 0, 85, 0}, {85, 0, 170, 255}}));
  EXPECT_EQ(PixelsOf(MadeDds(5, 1, "DXT1", FileBytes().Add(colors).Add(swapped)), "dds"),
            (std::vector<Rgba>{Red, Blue, {170, 0, 85, 255}, {85, 0, 170, 255}, Blue}))
      << "not a whole number of blocks";
}

TEST(Dds, UncompressedPixelsFollowTheirMasks) {
  Blob file = MadeDds(2, 1, "DXT1", {0, 0, 255, 255, 0, 255, 0, 0});
  const Blob format = FileBytes().U32(0x41).U32(0).U32(32).U32(0xFF0000).U32(0xFF00).U32(0xFF).U32(0xFF000000);
  std::copy(format.begin(), format.end(), file.begin() + 80);
  EXPECT_EQ(PixelsOf(file, "dds"), (std::vector<Rgba>{Red, {0, 255, 0, 0}}));
}

TEST(WrittenImages, AreReadBackTheSame) {
  for (const ImageType type : {ImageType::Png, ImageType::Bmp, ImageType::Tga}) {
    const std::string extension(ExtensionOf(type));
    EXPECT_TRUE(CanWriteImage(type));
    Image image = FourColors();
    EXPECT_EQ(PixelsOf(EncodeImage(image, type), extension.c_str()), FourPixels) << extension;
    image.Values[7] = 0;
    std::vector<Rgba> expected = FourPixels;
    expected[1][3] = 0;
    EXPECT_EQ(PixelsOf(EncodeImage(image, type), extension.c_str()), expected) << extension;
  }
  EXPECT_TRUE(EncodeImage(FourColors(), ImageType::Gif).empty());
}

TEST(WrittenImages, OfJpgAreCloseAndTruncatedOnesAreErrors) {
  Image image = MakeImage(16, 16, PixelFormat::Rgba8);
  for (std::size_t i = 0; i < image.Values.size(); i += 4)
    image.Values[i] = 200;
  const Blob file = EncodeImage(image, ImageType::Jpg);
  const auto pixels = PixelsOf(file, "jpg");
  ASSERT_EQ(pixels.size(), 256U);
  EXPECT_NEAR(pixels[100][0], 200, 4);
  EXPECT_EQ(pixels[100][3], 255);
  EXPECT_TRUE(PixelsOf(Blob(file.begin(), file.end() - 20), "jpg").empty());
  Blob lying = file;
  for (std::size_t i = 0; i + 8 < lying.size(); ++i)
    if (lying[i] == 0xFF && lying[i + 1] == 0xC0) lying[i + 5] = lying[i + 7] = 0x1F; // 7952 x 7952
  EXPECT_TRUE(PixelsOf(lying, "jpg").empty());
}

TEST(Masking, MakesPaletteIndexZeroTransparent) {
  const Blob bmp = MadeBmp(2, 1, 8, FourColorPalette, {0, 1, 0, 0});
  EXPECT_EQ(PixelsOf(bmp, "bmp", Transparency::Masked), (std::vector<Rgba>{{255, 0, 0, 0}, Green}));
  EXPECT_EQ(PixelsOf(bmp, "bmp", Transparency::Dropped), (std::vector<Rgba>{Red, Green}));
  const Blob tga = MadeTga(2, 2, 1, 32, 8, {0, 0, 255, 0, 0, 255, 0, 255});
  EXPECT_EQ(PixelsOf(tga, "tga", Transparency::Masked), (std::vector<Rgba>{{255, 0, 0, 0}, Green}));
  EXPECT_EQ(PixelsOf(tga, "tga", Transparency::Dropped), (std::vector<Rgba>{Red, Green}));
}

TEST(HeightmapReader, TakesSixteenBitSamplesAsTheyAre) {
  const auto map = ReadHeightmap(MadeBmp(2, 2, 16, {}, {3, 0, 4, 0, 0x34, 0x12, 0xFF, 0xFF}), "bmp").Map;
  ASSERT_TRUE(map);
  EXPECT_EQ(map->Samples, (std::vector<std::uint16_t>{0x1234, 0xFFFF, 3, 4})) << "the top row first";

  // A grey png of 2 x 1 samples.
  const Blob png{0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0,    0,    0,    0x0D, 0x49, 0x48,
                 0x44, 0x52, 0,    0,    0,    2,    0,    0,    0,    1,    0x10, 0,    0,    0,
                 0,    0x81, 0xD9, 0xFC, 0x15, 0,    0,    0,    0x0D, 0x49, 0x44, 0x41, 0x54, 0x78,
                 0xDA, 0x63, 0x10, 0x32, 0xF9, 0xCF, 0,    0,    2,    0xE7, 1,    0x46, 0xA0, 0xA5,
                 0x9E, 0x52, 0,    0,    0,    0,    0x49, 0x45, 0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82};
  const auto grey = ReadHeightmap(png, "png").Map;
  ASSERT_TRUE(grey);
  EXPECT_EQ(grey->Samples, (std::vector<std::uint16_t>{0x1234, 0xFF00}));
}

TEST(HeightmapReader, ScalesEightBitsSoThatTheMiddleStaysTheMiddle) {
  Blob greys;
  for (unsigned i = 0; i < 256; ++i)
    greys.insert(greys.end(),
                 {static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(i), 0});
  const auto map = ReadHeightmap(MadeBmp(4, 1, 8, greys, {0, 128, 255, 1}), "bmp").Map;
  ASSERT_TRUE(map);
  EXPECT_EQ(map->Samples, (std::vector<std::uint16_t>{0, 32768, 65280, 256}));
  EXPECT_FALSE(ReadHeightmap(MadeGif(4, 4), "gif").Map);
}

TEST(ImagesOfLevels, AreAllReadable) {
  const std::filesystem::path folder = std::filesystem::path(QUARVEL_LEVELS_DIR) / "textures";
  if (!std::filesystem::exists(folder)) GTEST_SKIP() << "no real levels here";
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const ImageResult result = ReadImageFile(entry.path());
    ASSERT_TRUE(result) << entry.path() << ": " << result.Error;
    EXPECT_EQ(ReadImageSize(entry.path()), (ImageSize{result.Picture->Width, result.Picture->Height})) << entry.path();
  }
}

/// A file of each readable type, small, with all features of its reader.
std::vector<std::pair<const char*, Blob>> OneOfEachType() {
  Image image = MakeImage(9, 7, PixelFormat::Rgba8);
  for (std::size_t i = 0; i < image.Values.size(); ++i)
    image.Values[i] = static_cast<std::uint8_t>(i * 37);
  Blob rle = MadeBmp(9, 7, 8, FourColorPalette, {9, 1, 0, 0, 0, 3, 1, 2, 3, 0, 0, 2, 1, 1, 4, 2, 0, 1});
  rle[30] = 1;
  return {{"png", EncodeImage(image, ImageType::Png)},
          {"jpg", EncodeImage(image, ImageType::Jpg)},
          {"bmp", EncodeImage(image, ImageType::Bmp)},
          {"bmp", rle},
          {"bmp", MadeBmp(9, 7, 4, FourColorPalette, Blob(56, 0x31))},
          {"tga", EncodeImage(image, ImageType::Tga)},
          {"tga", MadeTga(10, 9, 7, 24, 0, Blob(44, 0x85))},
          {"pcx", MadePcx(9, 7, 1, Blob(63, 5), Blob(768, 9))},
          {"dds", MadeDds(9, 7, "DXT5", Blob(96, 0x5A))},
          {"gif", MadeGif(9, 7)}};
}

/// A reader may accept or refuse a damaged file; it must come back, within memory, with a picture as large as it says.
bool ReadDamaged(const Blob& file, const char* extension) {
  const ImageResult result = ReadImage(file, extension);
  if (result) {
    const auto pixels =
        static_cast<std::size_t>(result.Picture->Width) * static_cast<std::size_t>(result.Picture->Height);
    const std::size_t perPixel = result.Picture->Format == PixelFormat::Rgba8 ? 4 : 1;
    EXPECT_EQ(result.Picture->Values.size(), pixels * perPixel);
  }
  ReadImageSize(file, extension);
  ReadHeightmap(file, extension);
  return static_cast<bool>(result);
}

TEST(DamagedImages, CutAnywhereAndWithAnyByteChangedAreSurvived) {
  for (const auto& [extension, whole] : OneOfEachType()) {
    const bool isRead = std::string_view(extension) != "gif";
    EXPECT_EQ(ReadDamaged(whole, extension), isRead);
    for (std::size_t length = 0; length < whole.size(); ++length) {
      const bool read =
          ReadDamaged(Blob(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)), extension);
      EXPECT_FALSE(read && length <= whole.size() / 2) << extension << " without half of its pixels";
    }
    for (std::size_t at = 0; at < whole.size(); ++at)
      for (const std::uint8_t change : {0xFF, 0x80, 0x01}) {
        Blob damaged = whole;
        damaged[at] ^= change;
        ReadDamaged(damaged, extension);
      }
  }
}

} // namespace
} // namespace quarvel::test
