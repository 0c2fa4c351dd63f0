#include "app/cli/command_line.h"
#include "images/image_file.h"
#include "tests/packages/made_package.h"
#include "tests/temporary_folder.h"

#include <gtest/gtest.h>
#include <sstream>

namespace quarvel {
namespace {

namespace fs = std::filesystem;

class PackageCommands : public test::TempFolder {
 protected:
  PackageCommands() {
    Write("Castle.utx", test::MadeTextures());
    Write("Rooms.unr", test::MadeLevel());
  }

  int Run(std::vector<std::string> arguments) {
    std::vector<const char*> argv{"quarvel"};
    for (const std::string& argument : arguments)
      argv.push_back(argument.c_str());
    out_.str("");
    err_.str("");
    return static_cast<int>(RunCommandLine(static_cast<int>(argv.size()), argv.data(), {out_, err_, false, {}}));
  }

  std::string Path(const std::string& name) const { return (folder_ / name).string(); }
  bool Prints(std::string_view text) const { return out_.str().find(text) != std::string::npos; }

  std::ostringstream out_, err_;
};

TEST_F(PackageCommands, ListWhatAPackageHolds) {
  EXPECT_EQ(Run({"--list-package", Path("Castle.utx")}), 0) << err_.str();
  EXPECT_TRUE(Prints("Texture          Castle.Walls.Fence  ")) << out_.str();
  EXPECT_TRUE(Prints(" bytes  4x2 masked\n")) << out_.str();
  EXPECT_TRUE(Prints(" bytes  0.50 s\n")) << out_.str();
  EXPECT_EQ(Run({"--list-package", Path("none.utx")}), 1);
  EXPECT_EQ(err_.str(), "quarvel: " + Path("none.utx") + " cannot be read\n");
}

TEST_F(PackageCommands, KeepNamesOffTheTerminalThatWouldSteerIt) {
  test::MadePackage made;
  made.Export("Texture\x1B[2J", "Na\x07me\x1B]0;x");
  Write("Bad.utx", made.Build());
  EXPECT_EQ(Run({"--list-package", Path("Bad.utx")}), 0);
  EXPECT_EQ(out_.str(), "Texture?[2J      Bad.Na?me?]0;x  0 bytes\n");
}

TEST_F(PackageCommands, ExtractAllOrWhatIsNamed) {
  EXPECT_EQ(Run({"--extract", Path("all"), Path("Castle.utx")}), 0) << err_.str();
  EXPECT_TRUE(Prints("10 files written to ")) << out_.str();
  EXPECT_TRUE(Prints("Castle.Torch has no pixels: a still was made from its palette\n"));
  const auto fence = ReadImageFile(folder_ / "all/Fence.png");
  ASSERT_TRUE(fence);
  EXPECT_EQ(fence.Picture->Values[3], 0) << "masked";
  EXPECT_EQ(fence.Picture->Values[7], 255);
  EXPECT_TRUE(Read("all/Hum.wav").starts_with("RIFF"));

  EXPECT_EQ(Run({"--extract", Path("some"), Path("Castle.utx"), "BRICK", "castle.walls.hum", "nothing.wrl"}), 1);
  EXPECT_EQ(err_.str(), "quarvel: Castle holds no texture or sound nothing.wrl\n");
  EXPECT_TRUE(fs::exists(folder_ / "some/Brick.png"));
  EXPECT_TRUE(fs::exists(folder_ / "some/Hum.wav"));
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_ / "some"), {}), 2);
}

TEST_F(PackageCommands, ExtractOnlyIntoTheirFolder) {
  test::MadePackage made;
  test::ObjectBytes hum(made), page(made);
  made.Export("Sound", "../../hum", hum.None().Index(made.Name("../x")).Data(test::WaveBytes(10)));
  made.Export("Sound", "..:..hum", hum);
  made.Export("Sound", "page", page.None().Index(made.Name("html")).Data({'<', 'h', 't', 'm', 'l', '>'}));
  Write("Bad.uax", made.Build());
  EXPECT_EQ(Run({"--extract", Path("deep/in"), Path("Bad.uax")}), 1);
  EXPECT_EQ(err_.str(), "quarvel: Bad.page is no WAVE sound\n");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_ / "deep/in"), {}), 2);
  EXPECT_EQ(std::distance(fs::recursive_directory_iterator(folder_ / "deep"), {}), 3);
}

TEST_F(PackageCommands, ConvertALevelAndKeepItsText) {
  EXPECT_EQ(Run({Path("Rooms.unr"), "--write-t3d", Path("kept.t3d")}), 0) << err_.str();
  EXPECT_TRUE(fs::exists(folder_ / "Rooms.wrl"));
  EXPECT_TRUE(Prints("1 brush, 3 faces")) << out_.str();
  EXPECT_TRUE(Read("kept.t3d").starts_with("Begin Map\r\nBegin Actor Class=LevelInfo"));
  EXPECT_EQ(Run({Path("kept.t3d"), Path("again.wrl")}), 0);
  EXPECT_EQ(Read("again.wrl"), Read("Rooms.wrl"));

  EXPECT_EQ(Run({Path("Rooms.unr"), "--write-t3d", Path("Rooms.unr")}), 2);
  EXPECT_FALSE(Read("Rooms.unr").starts_with("Begin"));
  EXPECT_EQ(Run({Path("*.unr"), Path("kept.t3d"), "--write-t3d", Path("x.t3d")}), 2);
  EXPECT_EQ(Run({Path("Castle.utx"), Path("x.wrl")}), 1);
  EXPECT_EQ(err_.str(), "quarvel: " + Path("Castle.utx") + " holds no level\n");
}

} // namespace
} // namespace quarvel
