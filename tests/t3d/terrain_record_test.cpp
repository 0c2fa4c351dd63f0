#include "t3d/terrain_record.h"

#include <gtest/gtest.h>

namespace quarvel {
namespace {

TerrainRecord Read(const std::string& keys) {
  const std::string text = "Begin Actor Class=TerrainInfo Name=TerrainInfo0\n" + keys + "\nEnd Actor\n";
  const T3DLevel level(text);
  return ReadTerrain(level, level.Actors.at(0));
}

TEST(TerrainRecord, CleansTheMapAndFillsScales) {
  EXPECT_EQ(Read("    TerrainMap=Texture'Pkg.Heights'").TerrainMap, "Pkg.Heights");
  const TerrainRecord terrain = Read("    TerrainMap=Heights\n    TerrainScale=(X=250.0,Y=200.0)");
  EXPECT_EQ(terrain.TerrainMap, "Heights");
  EXPECT_EQ(terrain.TerrainScale, (Vector3{250, 200, 1}));
}

TEST(TerrainRecord, ReadsEachLayerFromItsOwnLine) {
  const TerrainRecord terrain = Read("    DecoLayers(1)=(Texture=Texture'Wrong.One',UScale=1.0)\n"
                                     "    Layers(0)=(Texture=Texture'Pkg.Sand')\n"
                                     "    Layers(2)=(Texture=Texture'Pkg.Rock',AlphaMap=Texture'Pkg.Mask',UScale=4.0,"
                                     "TerrainMatrix=(XPlane=(X=0.5),WPlane=(W=1,X=-2.5,Z=-1.#IND00)),VScale=8.0)");
  EXPECT_EQ(terrain.Layers[0].Texture, "Pkg.Sand");
  EXPECT_EQ(terrain.Layers[0].UScale, 0);
  EXPECT_EQ(terrain.Layers[1].Texture, "");
  const TerrainLayer& layer = terrain.Layers[2];
  EXPECT_EQ(layer.Texture, "Pkg.Rock");
  EXPECT_EQ(layer.AlphaMap, "Texture'Pkg.Mask'");
  EXPECT_EQ(layer.UScale, 4);
  EXPECT_EQ(layer.VScale, 8) << "the last item ends at the parenthesis";
  EXPECT_EQ(layer.XPlane.X, 0.5);
  EXPECT_EQ(layer.WPlane.W, 1);
  EXPECT_EQ(layer.WPlane.X, -2.5);
  EXPECT_EQ(layer.WPlane.Z, -1);
}

TEST(TerrainRecord, ReadsWhichSquaresAreShown) {
  EXPECT_TRUE(Read("    TerrainMap=Heights").QuadVisibilityBitmap.empty());
  const TerrainRecord terrain = Read("    OldQuadVisibilityBitmap(7)=1\n"
                                     "    QuadVisibilityBitmap(3)=-2\n    QuadVisibilityBitmap(0)=2147483647\n"
                                     "    QuadVisibilityBitmap(99999999)=5\n    QuadVisibilityBitmap(-1)=5");
  EXPECT_EQ(terrain.QuadVisibilityBitmap, (std::vector<std::uint32_t>{0x7FFFFFFFU, 0, 0, 0xFFFFFFFEU}));
}

} // namespace
} // namespace quarvel
