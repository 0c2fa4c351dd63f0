#include "images/image_size.h"
#include "tests/images/made_images.h"
#include "tests/temporary_folder.h"

#include <gtest/gtest.h>

namespace quarvel::test {
namespace {

using Size = std::optional<ImageSize>;

TEST(ImageSize, IsReadFromEveryFormat) {
  EXPECT_EQ(ReadImageSize(MadePngHead(300, 7), "png"), Size({300, 7}));
  EXPECT_EQ(ReadImageSize(MadeJpgHead(640, 480, 5000), "jpg"), Size({640, 480}));
  const Blob tables = FileBytes().BigU16(0xFFD8).BigU16(0xFF01).BigU16(0xFFC4).BigU16(8).Fill(6, 1);
  const Blob head = MadeJpgHead(640, 480, 10);
  EXPECT_EQ(ReadImageSize(FileBytes().Add(tables).Add({head.begin() + 2, head.end()}).Get(), "jpg"), Size({640, 480}))
      << "behind a marker without length, and a table";
  EXPECT_EQ(ReadImageSize(MadeGif(33, 44), "gif"), Size({33, 44}));
  EXPECT_EQ(ReadImageSize(PlainBmp24(5, 3), "bmp"), Size({5, 3}));
  EXPECT_EQ(ReadImageSize(MadeBmp(2, -2, 24, {}, Blob(16)), "bmp"), Size({2, 2})) << "rows from the top";
  EXPECT_EQ(ReadImageSize(MadeTga(2, 4, 2, 32, 8, Blob(32)), "tga"), Size({4, 2}));
  EXPECT_EQ(ReadImageSize(MadePcx(4, 2, 1, {0xC4, 1, 0xC4, 2}, Blob(768)), "pcx"), Size({4, 2}));
  EXPECT_EQ(ReadImageSize(MadeDds(8, 4, "DXT1", Blob(16)), "dds"), Size({8, 4}));
}

TEST(ImageSize, ContentGoesBeforeTheExtension) {
  Blob older = MadeGif(33, 44);
  EXPECT_EQ(ReadImageSize(older, "png"), Size({33, 44}));
  older[4] = '7';
  EXPECT_EQ(ReadImageSize(older, "png"), Size({33, 44})) << "GIF87a";
  EXPECT_EQ(ReadImageSize(Blob{'h', 'e', 'l', 'l', 'o'}, "png"), Size());
  EXPECT_EQ(ReadImageSize(MadeTga(2, 4, 2, 32, 8, Blob(32)), "dat"), Size()) << "tga has no signature";
}

TEST(ImageSize, LyingHeadersAreNotBelieved) {
  EXPECT_EQ(ReadImageSize(MadePngHead(0, 7), "png"), Size());
  EXPECT_EQ(ReadImageSize(MadePngHead(0x80000001U, 7), "png"), Size());
  EXPECT_EQ(ReadImageSize(MadePngHead(60000, 60000), "png"), Size()) << "more than deflate can pack into the file";
  EXPECT_EQ(ReadImageSize(MadePngHead(8, 8, 16, 3), "png"), Size()) << "no 16-bit palettes";
  EXPECT_EQ(ReadImageSize(MadeJpgHead(640, 0, 10), "jpg"), Size());
  EXPECT_EQ(ReadImageSize(MadeBmp(4, 4, 2, Blob(16), Blob(64)), "bmp"), Size()) << "no bitmap has two bits a pixel";
  EXPECT_EQ(ReadImageSize(MadeBmp(4000, 4000, 24, {}, Blob(64)), "bmp"), Size());
  EXPECT_EQ(ReadImageSize(MadeBmp(-4, 4, 24, {}, Blob(64)), "bmp"), Size());
  EXPECT_EQ(ReadImageSize(MadeTga(10, 30000, 30000, 24, 0, Blob(64)), "tga"), Size());
  EXPECT_EQ(ReadImageSize(MadeDds(4096, 4096, "DXT5", Blob(64)), "dds"), Size());
  EXPECT_EQ(ReadImageSize(MadePcx(2000, 2000, 3, Blob(64), {}), "pcx"), Size());
  Blob damaged = MadePngHead(300, 7);
  damaged[19] ^= 4;
  EXPECT_EQ(ReadImageSize(damaged, "png"), Size()) << "the checksum of the header chunk";
}

TEST(ImageSize, JpgWithoutFrameEndsInTime) {
  EXPECT_EQ(ReadImageSize(FileBytes().BigU16(0xFFD8).Fill(1'000'000, 0xFF).Get(), "jpg"), Size());
  FileBytes segments;
  segments.BigU16(0xFFD8);
  for (int i = 0; i < 100'000; ++i)
    segments.BigU16(0xFFE1).BigU16(2);
  EXPECT_EQ(ReadImageSize(segments.Get(), "jpg"), Size());
}

class ImageSizeOfFile : public TempFolder {};

TEST_F(ImageSizeOfFile, EqualsTheOneInMemory) {
  EXPECT_EQ(ReadImageSize(Write("a.jpg", MadeJpgHead(640, 480, 60000))), Size({640, 480}));
  EXPECT_EQ(ReadImageSize(Write("b.TGA", MadeTga(3, 4, 2, 8, 0, Blob(8)))), Size({4, 2}));
  EXPECT_EQ(ReadImageSize(Write("empty.png", "")), Size());
  EXPECT_EQ(ReadImageSize(folder_ / "none.png"), Size());
  EXPECT_EQ(ReadImageSize(folder_), Size());
}

} // namespace
} // namespace quarvel::test
