#include "core/conversion_run.h"
#include "settings/settings_store.h"
#include "tests/images/made_images.h"
#include "tests/temporary_folder.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>
#include <set>

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

std::string Actor(const std::string& className, const std::string& name, const std::string& keys) {
  return "Begin Actor Class=" + className + " Name=" + name + "\n" + keys + "End Actor\n";
}

/// A brush or mover of one triangle.
std::string Brush(const std::string& className, const std::string& name, const std::string& flags) {
  return Actor(className, name,
               "    CsgOper=CSG_Add\n    Begin Brush Name=Model\n       Begin PolyList\n"
               "          Begin Polygon Texture=water Flags=" +
                   flags +
                   "\n"
                   "             Origin   +00000.000000,+00000.000000,+00000.000000\n"
                   "             TextureU +00001.000000,+00000.000000,+00000.000000\n"
                   "             TextureV +00000.000000,+00001.000000,+00000.000000\n"
                   "             Vertex   +00000.000000,+00000.000000,+00000.000000\n"
                   "             Vertex   +00064.000000,+00000.000000,+00000.000000\n"
                   "             Vertex   +00064.000000,+00064.000000,+00000.000000\n"
                   "          End Polygon\n       End PolyList\n    End Brush\n");
}

const std::string newer = "    PhysicsVolume=DefaultPhysicsVolume'a.b'\n";

TEST_F(SurroundingsTest, OlderLevelsInlineClassesThatHaveAMeshFile) {
  folder_.Write("lib/Trees/PALM.wrl", "");
  folder_.Write("lib/StaticMeshActor.wrl", "");
  Convert(Actor("Light", "Light0", "") + Actor("Palm", "Palm0", "    Location=(X=105.0)\n    DrawScale=2.0\n") +
          Actor("UnrealI.Palm", "Palm1", "") + Actor("PalmTrunk", "Trunk0", ""));
  EXPECT_EQ(Count("//Transform[@DEF='MSHT_Palm0'][@scale='2 2 2'][@translation='2.0 0 0']/Inline[@url='PALM.wrl']"), 1U)
      << text_;
  EXPECT_EQ(Count("//Transform[@DEF='MSHT_Palm1']/Inline[@USE]"), 1U);
  EXPECT_EQ(Count("//Inline"), 2U);
  EXPECT_TRUE(result_.Missing[ResourceKind::Mesh].empty());
}

TEST_F(SurroundingsTest, NewerLevelsInlineStaticMeshesAndThoseOfMovers) {
  folder_.Write("lib/Gate.x3d", "");
  folder_.Write("lib/Palm.x3d", "");
  const std::string gate = "    StaticMesh=StaticMesh'Pkg.Props.Gate'\n";
  const std::string level = Actor("Engine.StaticMeshActor", "Placed", newer + gate) + Actor("Palm", "Palm0", "") +
                            Actor("StaticMeshActor", "Bare", "") + Actor("Mover", "Door", gate) +
                            Actor("LiftMover", "Lift", gate);
  Convert(level);
  EXPECT_EQ(Count("//Inline"), 3U);
  EXPECT_EQ(Count("//Transform[@DEF='MSHT_Placed']/Inline[@DEF='MSH_Gate']"), 1U);
  EXPECT_EQ(Count("//Transform[starts-with(@DEF,'Mover_')]/Inline[@USE='MSH_Gate']"), 1U);
  EXPECT_EQ(Count("//Transform[starts-with(@DEF,'LiftMover_')]/Inline[@USE='MSH_Gate']"), 1U);
  EXPECT_EQ(result_.Findings.Counts().at("static mesh actors left out that name no mesh").Count, 1);
  settings_.CheckDoMeshes = false;
  Convert(level + Actor("PlayerStart", "Start", ""));
  EXPECT_EQ(Count("//Inline"), 0U);
}

TEST_F(SurroundingsTest, MeshesOfOtherClassesAreShownUnlessTheGameDoesNot) {
  folder_.Write("lib/Gate.x3d", "");
  const std::string gate = "    StaticMesh=StaticMesh'Pkg.Props.Gate'\n";
  Convert(Actor("KVehicle", "Cart", newer + gate + "    Location=(X=105.0)\n") +
          Actor("KVehicle", "Hidden", gate + "    bHidden=True\n") +
          Actor("Decoration", "Sprite", gate + "    DrawType=DT_Sprite\n") +
          Actor("Decoration", "None", "    StaticMesh=None\n"));
  EXPECT_EQ(Count("//Inline"), 1U);
  EXPECT_EQ(Count("//Transform[@DEF='MSHT_Cart'][@translation='2.0 0 0']/Inline[@DEF='MSH_Gate']"), 1U);
  const auto& counts = result_.Findings.Counts();
  EXPECT_EQ(counts.at("actors of class KVehicle of which only the mesh is shown").Count, 1);
  EXPECT_EQ(counts.at("meshes of actors of class Decoration left out as the game does not draw them").Count, 1);
}

TEST_F(SurroundingsTest, TheLevelsPanSpeedComesBeforeThatOfItsZones) {
  const auto image = MadePngHead(70, 70);
  folder_.Write("lib/water.png", std::string(image.begin(), image.end()));
  const std::string zones = Actor("LavaZone", "Zone0", "    TexUPanSpeed=4.0\n    TexVPanSpeed=4.0\n") +
                            Actor("ZoneInfo", "Zone1", "    TexUPanSpeed=8.0\n") + Brush("Brush", "B", "512") +
                            Brush("Brush", "C", "1024");
  settings_.TextTexPanScale = {"0.5", 0.5};
  Convert(zones + Actor("LevelInfo", "Info", "    TexVPanSpeed=0.5\n"));
  EXPECT_EQ(Value("//TimeSensor[@DEF='TIMERUPAN']/@cycleInterval"), "1");
  EXPECT_EQ(Value("//TimeSensor[@DEF='TIMERVPAN']/@cycleInterval"), "8");
  EXPECT_EQ(Count("//ROUTE"), 4U);
}

TEST_F(SurroundingsTest, ThePassesKeepTheirOrder) {
  const auto image = MadePngHead(64, 64);
  folder_.Write("lib/water.png", std::string(image.begin(), image.end()));
  const Blob hills = MadeBmp(2, 2, 16, {}, Blob(8, 100));
  folder_.Write("lib/hills.bmp", std::string(hills.begin(), hills.end()));
  folder_.Write("lib/Urn.wrl", "");
  settings_.OptionFlux = true;
  settings_.OptionVRML97 = false;
  Convert(Actor("TerrainInfo", "Hills", newer + "    TerrainMap=Texture'Pkg.Hills'\n") + Brush("Mover", "M", "0") +
          Brush("Brush", "B", "1536") + Actor("StaticMeshActor", "Urn", "    StaticMesh=StaticMesh'Pkg.Urn'\n"));
  std::vector<std::string> order;
  for (const pugi::xml_node node : document_.select_node("//Group").node().children())
    order.push_back(std::string(node.name()) + ":" + node.attribute("DEF").value());
  const std::vector<std::string> expected{
      "Transform:MSHT_Urn",       "Transform:B",     "Transform:Mover_2",     "TimeSensor:Mover_2TIMER",
      "ProximitySensor:TriggerM", "Transform:Hills", "TimeSensor:TIMERUVPAN", "PositionInterpolator2D:POSINT2DUVPAN"};
  EXPECT_EQ(order, expected);
  std::size_t at = 0;
  for (const char* piece : {"DEF MSHT_Urn ", "DEF B Transform", "DEF Mover_2 ", "DEF Hills ", "DEF TIMERUVPAN ",
                            "DEF POSINT2DUVPAN ", "ROUTE POSINT2DUVPAN"}) {
    at = text_.find(piece, at);
    ASSERT_NE(at, text_.npos) << piece;
  }
}

TEST_F(SurroundingsTest, RealLevelsPlaceEveryActorWithAMesh) {
  const std::pair<const char*, std::size_t> levels[] = {
      {"ue2-CanyonCrusade-terrain", 62}, {"ue2-DM_Amos", 123}, {"ue2-map-static-meshes", 0}};
  for (const char* mesh : {"LightFixture", "WallNodeBeam", "Plakmunition", "lampet01"})
    folder_.Write(std::string("lib/") + mesh + ".wrl", "");
  for (const auto& [name, placed] : levels) {
    const std::filesystem::path level = std::filesystem::path(QUARVEL_LEVELS_DIR) / (std::string(name) + ".t3d");
    if (!std::filesystem::exists(level)) GTEST_SKIP() << "the folder of real levels is not here";
    ConvertFileAt(level);
    EXPECT_EQ(Count("//Transform[starts-with(@DEF,'MSHT_')]"), placed) << name;
    std::set<std::string> defined;
    for (const pugi::xpath_node& at : document_.select_nodes("//Inline")) {
      const std::string used = at.node().attribute("USE").value();
      if (used.empty())
        EXPECT_TRUE(defined.insert(at.node().attribute("DEF").value()).second);
      else
        EXPECT_TRUE(defined.contains(used)) << used;
    }
    EXPECT_EQ(defined.size(), placed == 0 ? 0U : 2U);
  }
}

} // namespace
} // namespace quarvel::test
