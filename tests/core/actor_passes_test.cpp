#include "base/ascii_text.h"
#include "core/batch.h"
#include "t3d/light_records.h"
#include "t3d/sound_records.h"
#include "t3d/trigger_records.h"
#include "tests/core/converted.h"
#include "tests/scene/scene_readers.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace quarvel {
namespace {

namespace fs = std::filesystem;
using test::Convert;
using test::Converted;
using test::ConvertIn;
using test::ReadFile;
using test::SampleSettings;
using Texts = std::vector<std::string>;

bool Holds(const std::string& text, const std::string& what) { return text.find(what) != std::string::npos; }

std::string Actor(const std::string& header, const std::string& keys) {
  return "Begin Actor Class=" + header + "\r\n" + keys + "\r\nEnd Actor\r\n";
}

/// A triangle at a place of the level, in the sky zone or not.
std::string Brush(const std::string& name, const std::string& location, bool inSky) {
  return Actor("Brush Name=" + name,
               std::string(inSky ? "    Region=(Zone=SkyZoneInfo'L.Sky0')\r\n" : "") +
                   "    CsgOper=CSG_Add\r\n    Location=" + location +
                   "\r\n    Begin Brush Name=M\r\n     Begin Polygon\r\n      Vertex 0,0,0\r\n      Vertex 5,5,0\r\n"
                   "      Vertex 0,9,9\r\n     End Polygon\r\n    End Brush");
}

ConversionSettings Everything() {
  ConversionSettings settings = SampleSettings();
  settings.TextScale = {"1", 1};
  settings.CheckOutputStaticLights = true;
  return settings;
}

const std::string skyLevel =
    Actor("LevelInfo Name=LevelInfo0",
          "    Title=\"A 'quoted' title\"\r\n    Author=\"Me & you\"\r\n    bDistanceFog=True\r\n"
          "    DistanceFogColor=(R=255,G=0,B=51)\r\n    DistanceFogEnd=400") +
    Actor("ZoneInfo Name=Z0", "    DistanceFogEnd=7") +
    Actor("SkyZoneInfo Name=Sky0", "    Location=(X=100,Y=200,Z=300)") + Brush("Ground", "(X=1)", false) +
    Brush("Cloud", "(X=101,Y=202,Z=303)", true) +
    Actor("Light Name=Sun", "    Location=(X=110,Y=220,Z=330)\r\n    Region=(Zone=SkyZoneInfo'L.Sky0')");

TEST(WorldNodes, TellTheTitleTheAuthorAndTheFog) {
  const Converted converted = Convert(skyLevel, Everything());
  EXPECT_TRUE(
      Holds(converted.Text, "WorldInfo { \r\ninfo [\"Author: Me _ you\"]\r\ntitle \"A `quoted` title\"\r\n}\r\n"));
  EXPECT_TRUE(Holds(converted.Text, "Fog {\r\n color 1 0 0.2\r\n visibilityRange 400\r\n}\r\n"));
  EXPECT_EQ(converted.Text.find("Fog {"), converted.Text.rfind("Fog {")) << "the zone has no distance fog";
  EXPECT_TRUE(Holds(converted.Document, "<Fog color='1 0 0.2' visibilityRange='400'/>"));
  EXPECT_FALSE(Holds(converted.Text, "Sky0World")) << "the sky zone is not asked for";
  EXPECT_TRUE(Holds(converted.Text, "DEF Cloud Transform"));
}

TEST(WorldNodes, PutTheSkyZoneIntoAScenesOfItsOwn) {
  const TemporaryFolder folder;
  ConversionSettings settings = Everything();
  settings.CheckSkyZone = settings.OptionFlux = true;
  settings.OptionVRML97 = false;
  const Converted world = ConvertIn(folder, skyLevel, settings);
  EXPECT_TRUE(Holds(world.Text,
                    "DEF WT_Sky0World Transform {\r\n translation 100 300.0 200.0\r\n children [\r\n  Inline {\r\n"
                    "   url [\"Sky0.wrl\"]\r\n  }\r\n ]\r\n}\r\n"));
  EXPECT_TRUE(Holds(
      world.Document,
      "<Transform DEF='Sky0World' translation='100 300.0 200.0'>\r\n    <Inline DEF='Sky0World' url='Sky0.x3d'/>"));
  EXPECT_TRUE(Holds(world.Text, "DEF Ground Transform"));
  EXPECT_FALSE(Holds(world.Text, "Cloud") || Holds(world.Document, "Cloud") || Holds(world.Text, "DEF Sun"));

  const std::string sky = ReadFile(folder.Path() / "Sky0.wrl"), skyDocument = ReadFile(folder.Path() / "Sky0.x3d");
  EXPECT_TRUE(sky.starts_with("#VRML V2.0 utf8\r\n")) << "whatever the encoding of the level's scene";
  EXPECT_TRUE(Holds(sky, "DEF Cloud Transform {\r\n  translation 1 3.0 2.0\r\n")) << "relative to the sky zone";
  EXPECT_TRUE(Holds(sky, " location 10 30.0 20.0\r\n"));
  EXPECT_TRUE(Holds(skyDocument, "<Transform DEF='Cloud'"));
  EXPECT_FALSE(Holds(sky, "Ground") || Holds(sky, "WorldInfo"));
  EXPECT_EQ(world.Result.FilesWritten.size(), 4U);
  EXPECT_EQ(world.Result.Brushes, 2);
}

TEST(WorldNodes, GiveTheSkyTwoNamesWhenConforming) {
  ConversionSettings settings = Everything();
  settings.CheckSkyZone = settings.CheckConforming = true;
  const Converted world = Convert(skyLevel, settings);
  EXPECT_TRUE(Holds(world.Document, "<Transform DEF='WT_Sky0World'"));
  EXPECT_TRUE(Holds(world.Document, "<Inline DEF='Sky0World' url='\"Sky0.x3d\"'/>"));
}

TEST(WorldNodes, LeaveTheSkyWhereItIsRatherThanOverwriteTheLevel) {
  const TemporaryFolder folder;
  folder.Write("in.t3d", skyLevel);
  ConversionSettings settings = Everything();
  settings.CheckSkyZone = true;
  MemoryStore store;
  RunMemory memory;
  RunInterface user;
  const RunResult result =
      ConvertFile(folder.Path() / "in.t3d", folder.Path() / "sky0.wrl", settings, store, memory, user);
  EXPECT_EQ(result.FilesWritten.size(), 2U);
  EXPECT_TRUE(Holds(ReadFile(folder.Path() / "sky0.wrl"), "DEF Cloud Transform"));
}

TEST(WorldNodes, NoSkyTakesThePlaceOfAnotherScene) {
  const TemporaryFolder folder;
  ConversionSettings settings = Everything();
  settings.CheckSkyZone = true;
  MemoryStore store;
  RunMemory memory;
  RunInterface user;
  /// How each level of a batch ends.
  const auto convert = [&](const Texts& names) {
    Texts inputs, ends;
    for (const std::string& name : names) {
      folder.Write(name + ".t3d", name == "Sky0" ? Actor("PlayerStart Name=P", "") : skyLevel);
      inputs.push_back((folder.Path() / (name + ".t3d")).string());
    }
    for (const RunResult& result : RunBatch(ListJobs(inputs, {}, settings), settings, store, memory, user))
      ends.push_back(result.Outcome == RunOutcome::Done ? "done" : result.Reason);
    return ends;
  };
  const std::string sky = (folder.Path() / "Sky0.wrl").string();
  const auto refusal = [&](const std::string& what, const char* owner) {
    return "is not converted: its " + what + " " + sky + " is an output of " + (folder.Path() / owner).string() +
           " already";
  };
  EXPECT_EQ(convert({"one"}), Texts{"done"});
  EXPECT_EQ(convert({"one", "two", "Sky0"}),
            (Texts{"done", refusal("sky scene", "one.t3d"), refusal("output", "one.t3d")}));
  EXPECT_TRUE(Holds(ReadFile(sky), "DEF Cloud Transform"));
  EXPECT_EQ(convert({"Sky0", "two"}), (Texts{"done", refusal("sky scene", "Sky0.t3d")}));
  EXPECT_FALSE(Holds(ReadFile(sky), "DEF Cloud Transform"));
}

/// What a scene holds, with the name that X3D has for a field of VRML97.
Texts DescribeAsX3D(const test::ReadScene& scene) {
  Texts lines = test::Describe(scene);
  for (std::string& line : lines)
    if (const std::size_t at = line.find(" collide "); at != line.npos) line.replace(at, 9, " enabled ");
  std::sort(lines.begin(), lines.end());
  return lines;
}

/// Expects two scenes to hold the same, and shows what only one of them has.
void ExpectSameScene(const test::ReadScene& text, const test::ReadScene& document) {
  const Texts a = DescribeAsX3D(text), b = DescribeAsX3D(document);
  Texts onlyInText, onlyInDocument;
  std::set_difference(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(onlyInText));
  std::set_difference(b.begin(), b.end(), a.begin(), a.end(), std::back_inserter(onlyInDocument));
  EXPECT_EQ(onlyInText, onlyInDocument);
}

/// How many nodes of each type a scene has, sensors of teleporters and movers left aside.
std::map<std::string, int> CountNodes(const test::ReadScene& scene) {
  std::map<std::string, int> counts;
  for (const test::ReadNode& node : scene.Nodes) {
    if (node.Use.empty() && node.Def.starts_with("Tele") && node.Type == "ProximitySensor") continue;
    if (node.Type.ends_with("Light"))
      ++counts["Light"];
    else if (node.Type == "ProximitySensor" || node.Type == "Sound" || node.Type == "WorldInfo")
      ++counts[node.Type];
  }
  return counts;
}

/// What the actors of a level should have become.
std::map<std::string, int> CountActors(const std::string& text) {
  std::map<std::string, int> counts;
  const T3DLevel level(text);
  for (const ActorBlock& actor : level.Actors) {
    const auto is = [&](ActorFamily family) { return IsOfFamily(actor.Class, family); };
    const TextBlock block(level.Text, actor.From, actor.To);
    const bool isLight = is(ActorFamily::Light) || is(ActorFamily::TriggerLight);
    const bool hasSound = !GetValueWord(block, "AmbientSound=").empty();
    if (isLight) ++counts["Light"];
    if (hasSound && (isLight || is(ActorFamily::AmbientSound))) ++counts["Sound"];
    if (is(ActorFamily::TriggeredAmbientSound)) ++counts["Sound"];
    for (int i = 0; is(ActorFamily::DynamicAmbientSound) && i < 17; ++i)
      counts["Sound"] += GetValueWord(block, "Sounds(" + std::to_string(i) + ")=").empty() ? 0 : 1;
    if (is(ActorFamily::Trigger) || is(ActorFamily::StochasticTrigger)) ++counts["ProximitySensor"];
    if (is(ActorFamily::Level)) counts["WorldInfo"] = 1;
  }
  std::erase_if(counts, [](const auto& count) { return count.second == 0; });
  return counts;
}

/// Expects of all three encodings what the level's actors ask for.
void ExpectCounts(const fs::path& path) {
  const std::string text = ReadFile(path);
  ConversionSettings settings = Everything();
  settings.CheckDoGeometry = settings.CheckMovers = settings.CheckDoTerrain = settings.CheckDoMeshes = false;
  settings.TextSearchPathTxt = settings.TextSearchPathSnd = QUARVEL_SAMPLES_DIR;
  settings.CheckConforming = true;
  for (const bool flux : {false, true}) {
    settings.OptionFlux = flux;
    settings.OptionVRML97 = !flux;
    const Converted converted = Convert(text, settings);
    ASSERT_EQ(converted.Result.Outcome, RunOutcome::Done) << converted.Result.Error;
    const test::ReadScene scene = test::ReadVrml(converted.Text), document = test::ReadX3D(converted.Document);
    EXPECT_EQ(scene.Faults, Texts());
    std::map<std::string, int> expected = CountActors(text);
    if (Holds(converted.Text, "DEF GlobalAmbientLight")) ++expected["Light"];
    EXPECT_EQ(CountNodes(scene), expected);
    EXPECT_EQ(CountNodes(document), expected);
    ExpectSameScene(scene, document);
  }
}

TEST(ActorPasses, ConvertEveryActorOfTheSample) { ExpectCounts(QUARVEL_SAMPLES_DIR "/harbour.t3d"); }

TEST(ActorPasses, ConvertEveryActorOfRealLevels) {
  if (!fs::exists(QUARVEL_LEVELS_DIR)) GTEST_SKIP() << "the folder of real levels is not here";
  for (const char* name : {"ut99-DM-Liandri", "ue1-WheelOfTime-crlf", "ue1-RotationTest", "ue2-DM_Amos",
                           "ue2-CanyonCrusade-terrain", "fragment-U1-LightSound", "fragment-U1-TriggerLight",
                           "fragment-U2-SunLight", "fragment-U1-DynamicAmbientSound"}) {
    SCOPED_TRACE(name);
    ExpectCounts(fs::path(QUARVEL_LEVELS_DIR) / (std::string(name) + ".t3d"));
  }
}

TEST(ActorPasses, RouteTriggersOutsideTheEnclosingTransform) {
  ConversionSettings settings = Everything();
  settings.CheckEnclose = settings.CheckShowTriggers = settings.CheckLightTransform = settings.CheckConforming = true;
  settings.CheckDoGeometry = settings.CheckMovers = false;
  const Converted converted = Convert(ReadFile(QUARVEL_SAMPLES_DIR "/harbour.t3d"), settings);
  const test::ReadScene scene = test::ReadVrml(converted.Text), document = test::ReadX3D(converted.Document);
  EXPECT_EQ(scene.Faults, Texts());
  const auto has = [&](const char* route) {
    return std::find(scene.Routes.begin(), scene.Routes.end(), route) != scene.Routes.end();
  };
  EXPECT_TRUE(has("Trigger1.isActive TO TriggerLight0.set_on"));
  EXPECT_TRUE(has("Trigger2.enterTime TO TriggeredAmbientSound0.startTime")) << "through a dispatcher without delay";
  ExpectSameScene(scene, document);
}

TEST(ActorPasses, TellWhatStrictViewersRefuseOfTheDefaultLayout) {
  ConversionSettings settings = Everything();
  settings.OptionFlux = true;
  settings.OptionVRML97 = false;
  const Converted converted = Convert(ReadFile(QUARVEL_SAMPLES_DIR "/harbour.t3d"), settings);
  const auto tells = [&](const char* part) {
    const std::vector<Finding>& findings = converted.Result.Findings.Findings();
    return std::any_of(findings.begin(), findings.end(),
                       [&](const Finding& finding) { return Holds(finding.Actor + finding.Reason, part); });
  };
  EXPECT_TRUE(tells("eventIn/eventOut/field"));
  EXPECT_TRUE(tells("(' & <)"));
  EXPECT_TRUE(tells("negative distances"));
}

} // namespace
} // namespace quarvel
