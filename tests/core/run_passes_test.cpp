#include "core/conversion_run.h"
#include "settings/settings_store.h"
#include "tests/images/made_images.h"
#include "tests/made_actors.h"
#include "tests/temporary_folder.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

namespace quarvel::test {
namespace {

class SurroundingsTest : public testing::Test {
 protected:
  SurroundingsTest() {
    settings_.TextSearchPathTxt = settings_.TextSearchPathMesh = (folder_.Path() / "lib").string();
    folder_.Write("lib/readme.txt", "");
    folder_.Write("out/readme.txt", "");
  }

  void ConvertFileAt(const std::filesystem::path& level) {
    MemoryStore store;
    RunMemory memory;
    RunInterface user;
    result_ = ConvertFile(level, folder_.Path() / "out/level.wrl", settings_, store, memory, user);
    ASSERT_EQ(result_.Outcome, RunOutcome::Done) << result_.Error;
    text_ = folder_.Read(settings_.OptionFlux ? "out/level.x3dv" : "out/level.wrl");
    document_.load_string(folder_.Read("out/level.x3d").c_str());
  }
  void Convert(const std::string& actors) {
    folder_.Write("level.t3d", "Begin Map\n" + actors + "End Map\n");
    ConvertFileAt(folder_.Path() / "level.t3d");
  }

  std::size_t Count(const std::string& path) const { return document_.select_nodes(path.c_str()).size(); }
  std::string Value(const std::string& path) const { return document_.select_node(path.c_str()).attribute().value(); }

  TemporaryFolder folder_;
  ConversionSettings settings_;
  RunResult result_;
  std::string text_;
  pugi::xml_document document_;
};

TEST_F(SurroundingsTest, OlderLevelsInlineClassesThatHaveAMeshFile) {
  folder_.Write("lib/Trees/PALM.wrl", "");
  folder_.Write("lib/StaticMeshActor.wrl", "");
  Convert(Actor("Light Name=Light0") + Actor("Palm Name=Palm0", "    Location=(X=105.0)\n    DrawScale=2.0\n") +
          Actor("UnrealI.Palm Name=Palm1") + Actor("PalmTrunk Name=Trunk0"));
  EXPECT_EQ(Count("//Transform[@DEF='MSHT_Palm0'][@scale='2 2 2'][@translation='2.0 0 0']/Inline[@url='PALM.wrl']"), 1U)
      << text_;
  EXPECT_EQ(Count("//Transform[@DEF='MSHT_Palm1']/Inline[@USE]"), 1U);
  EXPECT_EQ(Count("//Inline"), 2U);
  EXPECT_TRUE(result_.Missing[ResourceKind::Mesh].empty());
}

TEST_F(SurroundingsTest, TheLevelsPanSpeedComesBeforeThatOfItsZones) {
  const auto image = MadePngHead(70, 70);
  folder_.Write("lib/water.png", image);
  const std::string zones = Actor("LavaZone Name=Zone0", "    TexUPanSpeed=4.0\n    TexVPanSpeed=4.0\n") +
                            Actor("ZoneInfo Name=Zone1", "    TexUPanSpeed=8.0\n") +
                            TriangleActor("Brush Name=B", " CsgOper=CSG_Add", 1, "Texture=water Flags=512") +
                            TriangleActor("Brush Name=C", " CsgOper=CSG_Add", 1, "Texture=water Flags=1024");
  settings_.TextTexPanScale = {"0.5", 0.5};
  Convert(zones + Actor("LevelInfo Name=Info", "    TexVPanSpeed=0.5\n"));
  EXPECT_EQ(Value("//TimeSensor[@DEF='TIMERUPAN']/@cycleInterval"), "1");
  EXPECT_EQ(Value("//TimeSensor[@DEF='TIMERVPAN']/@cycleInterval"), "8");
  EXPECT_EQ(Count("//ROUTE"), 4U);
}

} // namespace
} // namespace quarvel::test
