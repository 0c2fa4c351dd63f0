#include "packages/level_export.h"
#include "packages/sound_object.h"
#include "packages/texture_object.h"
#include "tests/packages/made_package.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <sstream>

namespace quarvel {
namespace {

namespace fs = std::filesystem;
using test::Blob;

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

  static std::string ReadText(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  static constexpr const char* names_[] = {"Checkers.utx", "BuildingGraphics.utx", "ConstructorTex.utx", "sgMedia.u",
                                           "LightPuzzle.unr"};
  const fs::path folder_ = QUARVEL_PACKAGES_DIR;
};

TEST_F(RealPackages, HaveATextureOrSoundInEachObjectOfThese) {
  int textures = 0, sounds = 0;
  for (const std::string name : names_) {
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
std::vector<std::string> PlacementLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
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
  const auto lines = PlacementLines(level.Text);
  EXPECT_GT(lines.size(), 2000U);
  EXPECT_EQ(lines, PlacementLines(ReadText(folder_ / "LightPuzzle.t3d")));
}

/// Changes a few bytes, a number, or the length of a file; mostly in its tables, which lie at its ends.
void Damage(Blob& file, std::mt19937& random) {
  const auto below = [&](std::size_t count) { return random() % std::max<std::size_t>(count, 1); };
  const std::size_t tail = file.size() - std::min<std::size_t>(file.size(), 6000);
  for (std::size_t i = below(4) + 1; i > 0; --i) {
    const std::size_t where = below(3);
    const std::size_t at = where == 0 ? below(64) : where == 1 ? tail + below(file.size() - tail) : below(file.size());
    if (at + 4 > file.size()) continue;
    if (below(2) == 0)
      file[at] = static_cast<std::uint8_t>(random());
    else
      for (std::size_t byte = 0; byte < 4; ++byte)
        file[at + byte] = static_cast<std::uint8_t>(below(2) ? 0xFF : random());
  }
  if (below(5) == 0) file.resize(below(file.size()));
}

/// QUARVEL_DAMAGED_COPIES sets how many copies are read; 10000 takes minutes.
TEST_F(RealPackages, MayBeDamaged) {
  const char* wanted = std::getenv("QUARVEL_DAMAGED_COPIES");
  const int copies = wanted ? std::atoi(wanted) : 40;
  std::mt19937 random(20);
  for (int i = 0; i < copies; ++i) {
    const std::string text = ReadText(folder_ / names_[static_cast<std::size_t>(i) % std::size(names_)]);
    Blob file(text.begin(), text.end());
    Damage(file, random);
    const PackageResult read = ReadPackage(file, "Damaged");
    EXPECT_NE(read.Error.empty(), !read);
    if (read) test::ReadEverything(*read.Value);
  }
}

} // namespace
} // namespace quarvel
