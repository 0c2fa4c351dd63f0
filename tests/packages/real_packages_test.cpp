#include "packages/level_export.h"
#include "packages/sound_object.h"
#include "packages/texture_object.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace quarvel {
namespace {

namespace fs = std::filesystem;

/// Packages of games' levels, which are not part of the project.
class RealPackages : public testing::Test {
 protected:
  void SetUp() override {
    if (!fs::exists(folder_)) GTEST_SKIP() << "no packages in " << folder_;
  }

  Package Open(const std::string& name) const {
    PackageResult result = OpenPackage(folder_ / name);
    EXPECT_TRUE(result) << result.Error;
    return std::move(*result.Value);
  }

  const fs::path folder_ = QUARVEL_PACKAGES_DIR;
};

TEST_F(RealPackages, HaveATextureOrSoundInEachObjectOfThese) {
  int textures = 0, sounds = 0;
  for (const std::string name :
       {"Checkers.utx", "BuildingGraphics.utx", "ConstructorTex.utx", "sgMedia.u", "LightPuzzle.unr"}) {
    const Package package = Open(name);
    for (std::size_t i = 0; i < package.Exports.size(); ++i) {
      EXPECT_TRUE(package.Exports[i].Intact) << name << " " << i;
      const std::string object = FullName(package, RefOfExport(i), package.Name);
      if (IsTextureClass(ClassName(package, RefOfExport(i)))) {
        ++textures;
        EXPECT_EQ(ReadTexturePicture({&package, i}).Error, "") << object;
      } else if (IsSoundClass(ClassName(package, RefOfExport(i)))) {
        ++sounds;
        const auto sound = ReadSound(package, package.Exports[i]);
        EXPECT_TRUE(sound && IsWave(sound->File) && WaveSeconds(sound->File) > 0.1) << object;
      }
    }
  }
  EXPECT_EQ(textures, 117);
  EXPECT_EQ(sounds, 17);
}

/// The lines of a text that tell actors, in their order, and the shapes of brushes.
std::vector<std::string> PlacementLines(std::istream&& in) {
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);)
    for (const std::string_view key : {"Begin Actor", "  Origin ", "  Normal ", "  TextureU ", "  TextureV ",
                                       "  Vertex ", "  Pan ", " Location=", " Rotation=", "Scale=", "CsgOper="})
      if (line.find(key) != line.npos) lines.push_back(line);
  return lines;
}

TEST_F(RealPackages, HaveTheLevelThatTheEditorShows) {
  const ExportedLevel level = ExportLevel(Open("LightPuzzle.unr"));
  EXPECT_EQ(level.Error, "");
  EXPECT_TRUE(level.Faults.empty());
  const auto lines = PlacementLines(std::istringstream(level.Text));
  EXPECT_GT(lines.size(), 2000U);
  EXPECT_EQ(lines, PlacementLines(std::ifstream(folder_ / "LightPuzzle.t3d", std::ios::binary)));
}

} // namespace
} // namespace quarvel
