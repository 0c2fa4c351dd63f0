#include "terrain/terrain.h"
#include "tests/scene/scene_fixture.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

namespace quarvel::test {
namespace {

std::vector<double> Numbers(std::string list) {
  std::replace(list.begin(), list.end(), ',', ' ');
  std::istringstream in(list);
  std::vector<double> numbers;
  for (double number = 0; in >> number;)
    numbers.push_back(number);
  return numbers;
}

using Surface = std::map<std::array<long, 2>, std::array<double, 3>>; ///< height, U, V by place, in hundredths

class TerrainTest : public SceneFixture {
 protected:
  TerrainTest() {
    terrain_.Header.Name = "TerrainInfo0";
    terrain_.Header.Class = "TerrainInfo";
    terrain_.TerrainMap = "Pkg.Hills";
    terrain_.TerrainScale = {64, 32, 16};
    terrain_.Location = {100, 200, 300};
    terrain_.Layers[1].Texture = "Pkg.Grass";
    terrain_.Layers[1].UScale = 8;
    terrain_.Layers[1].VScale = 4;
    WriteImage("Grass.png", MadePngHead(64, 64));
  }
  void WriteHills(int width, int height) {
    FileBytes rows;
    for (int y = height - 1; y >= 0; --y) {
      for (int x = 0; x < width; ++x)
        rows.U16(static_cast<unsigned>(30000 + 37 * x + 501 * y));
      rows.Fill(width % 2 == 0 ? 0 : 2);
    }
    WriteImage("hills.bmp", MadeBmp(width, height, 16, {}, rows));
  }
  bool Write() {
    Begin();
    return TerrainWriter(*context_).Write(terrain_);
  }
  void Add(Surface& surface, double x, double z, const std::array<double, 3>& value) {
    const auto [at, isNew] = surface.try_emplace({std::lround(x * 100), std::lround(z * 100)}, value);
    EXPECT_TRUE(isNew || at->second == value) << "patches meet in the same points";
  }
  Surface GridSurface() {
    const pugi::xml_node grid = Element("//ElevationGrid");
    const std::vector<double> heights = Numbers(grid.attribute("height").value());
    const std::vector<double> texture = Numbers(grid.child("TextureCoordinate").attribute("point").value());
    const std::size_t width = grid.attribute("xDimension").as_uint();
    EXPECT_EQ(heights.size(), width * grid.attribute("zDimension").as_uint());
    EXPECT_EQ(texture.size(), heights.size() * 2);
    Surface surface;
    for (std::size_t i = 0; i < heights.size() && texture.size() == heights.size() * 2; ++i)
      Add(surface, static_cast<double>(i % width) * grid.attribute("xSpacing").as_double(),
          static_cast<double>(i / width) * grid.attribute("zSpacing").as_double(),
          {heights[i], texture[2 * i], texture[2 * i + 1]});
    return surface;
  }
  Surface FaceSetSurface() {
    Surface surface;
    for (const pugi::xpath_node& at : context_->Scene.SceneDocument().select_nodes("//IndexedFaceSet")) {
      const std::vector<double> points = Numbers(at.node().child("Coordinate").attribute("point").value());
      const std::vector<double> texture = Numbers(at.node().child("TextureCoordinate").attribute("point").value());
      EXPECT_EQ(points.size() / 3, texture.size() / 2);
      for (std::size_t i = 0; i < points.size() / 3 && i < texture.size() / 2; ++i)
        Add(surface, points[3 * i], points[3 * i + 2], {points[3 * i + 1], texture[2 * i], texture[2 * i + 1]});
    }
    return surface;
  }

  TerrainRecord terrain_;
};

TEST_F(TerrainTest, BothFormsShowTheSameSurface) {
  settings_.TextScale = {"0.5", 0.5};
  WriteHills(131, 67);
  ASSERT_TRUE(Write());
  EXPECT_STREQ(Element("//Transform[@DEF='TerrainInfo0']").attribute("translation").value(), "-2046 150.0 -436.0");
  EXPECT_STREQ(Element("//ElevationGrid").attribute("solid").value(), "false");
  EXPECT_STREQ(Element("//ImageTexture").attribute("url").value(), "Grass.png");
  const Surface grid = GridSurface();
  EXPECT_EQ(grid.size(), 131U * 67);
  EXPECT_EQ(CountOf(Text(), "height [\n"), 1U);

  settings_.OptionTerrainIFS = true;
  settings_.OptionTerrainEG = false;
  ASSERT_TRUE(Write());
  EXPECT_EQ(FaceSetSurface(), grid);
  EXPECT_EQ(CountElements("//IndexedFaceSet"), 6U) << "3 x 2 patches";
  EXPECT_TRUE(Element("//Coordinate[@DEF='C_TerrainCoords']"));
  EXPECT_TRUE(Element("//Coordinate[@DEF='C_TerrainCoords_6']"));
  EXPECT_EQ(CountElements("//Appearance[@USE]"), 5U);
  EXPECT_TRUE(report_.Findings().empty());
}

TEST_F(TerrainTest, SixteenShapesAreWrittenAndNoMore) {
  WriteHills(70, 5);
  Begin();
  TerrainWriter writer(*context_);
  int written = 0;
  for (int i = 0; i < 20; ++i, ++terrain_.TerrainScale.Z) // another shape each
    written += writer.Write(terrain_);
  EXPECT_EQ(written, 16);
  EXPECT_EQ(report_.Findings().size(), 1U);
}

TEST_F(TerrainTest, ATerrainWithoutAUsableHeightmapIsLeftOut) {
  EXPECT_FALSE(Write());
  EXPECT_EQ(resources_->Missing()[ResourceKind::Texture], std::vector<std::string>{"Pkg.Hills"});
  WriteImage("Hills.png", MadePngHead(5000, 16));
  EXPECT_FALSE(Write());
  terrain_.TerrainMap.clear();
  EXPECT_FALSE(Write());
  EXPECT_EQ(report_.Findings().size(), 3U);
  EXPECT_EQ(context_->Scene.SceneText(), "");
  EXPECT_EQ(CountElements("//Group/*"), 0U);
}

} // namespace
} // namespace quarvel::test
