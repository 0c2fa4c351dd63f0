#include "core/conversion_run.h"
#include "t3d/level.h"
#include "tests/core/converted.h"
#include "tests/made_actors.h"
#include "tests/scene/scene_readers.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace quarvel {
namespace {

namespace fs = std::filesystem;
using test::Convert;
using test::Converted;
using test::ConvertIn;
using test::SampleSettings;
using Texts = std::vector<std::string>;
using namespace std::string_literals;

const std::string golden = test::ReadFile(QUARVEL_TEST_DATA_DIR "/golden.t3d");

bool Holds(const std::string& text, const std::string& what) { return text.find(what) != std::string::npos; }

std::string Brush(const std::string& name, const std::string& keys, int triangles = 1) {
  return test::TriangleActor("Brush Name=" + name, keys, triangles);
}

TEST(ConversionRun, LineEndsDoNotMatter) {
  std::string text = golden;
  std::erase(text, '\r');
  EXPECT_EQ(Convert(text).Text, Convert(golden).Text);
}

TEST(ConversionRun, ChoosesBrushesAndFaces) {
  const std::string level = Brush("Built", "") + Brush("Built2", "") + Brush("Added", " CsgOper=CSG_Add\n", 3);
  ConversionSettings settings = SampleSettings();
  const auto names = [&] {
    Texts defs;
    for (const test::ReadNode& node : test::ReadVrml(Convert(level, settings).Text).Nodes)
      if (node.Type == "Transform") defs.push_back(node.Def);
    return defs;
  };
  EXPECT_EQ(names(), Texts{"Added"});
  settings.CheckBuildBrush = true;
  EXPECT_EQ(names(), Texts{"Built"}) << "the pass ends behind the builder brush";
  settings.CheckBuildBrush = false;
  settings.CheckIgnore = true;
  settings.TextStartAtPoly = {"2", 2};
  const Converted cut = Convert(level, settings);
  EXPECT_EQ(cut.Result.Faces, 1);
  EXPECT_EQ(cut.Result.Findings.Counts().at("faces left out that stand before TextStartAtPoly").Count, 2);
  settings.CheckDoGeometry = false;
  EXPECT_EQ(names(), Texts());
}

TEST(ConversionRun, ABuilderBrushMayBreakUp) {
  const auto triangle = [](const std::string& x, const std::string& top) {
    return " Begin Polygon\n  Vertex " + x + "0,0,0\n  Vertex " + x + "1,0,0\n  Vertex " + top + ",4,4\n End Polygon\n";
  };
  const std::string polygons = triangle("1", "4") + triangle("8", "82") + triangle("2", "4");
  const std::string list = "Begin PolyList\n" + polygons + "End PolyList\n";
  const std::string actor = test::Actor("Brush Name=BuildBrush", " Begin Brush\n" + polygons + " End Brush");
  ConversionSettings settings = SampleSettings();
  const auto shapes = [&](const std::string& level) {
    const test::ReadScene scene = test::ReadVrml(Convert(level, settings).Text);
    EXPECT_NE(scene.Find("BuildBrush"), nullptr);
    return std::count_if(scene.Nodes.begin(), scene.Nodes.end(),
                         [](const test::ReadNode& node) { return node.Type == "Shape"; });
  };
  EXPECT_EQ(shapes(list), 1);
  settings.CheckBuildBrush = true;
  EXPECT_EQ(shapes(list), 1);
  settings.CheckBreakUpBB = true;
  for (const std::string& level : {list, actor})
    EXPECT_EQ(shapes(level), 2) << "the pieces that share a corner stay together";
}

/// Notes what a run shows, and pauses or stops it at the n-th look.
class Watcher : public RunInterface {
 public:
  void ShowPass(std::string_view text) override { Passes.emplace_back(text); }
  void ShowItem(std::string_view text, long number) override {
    Items.push_back(std::string(text) + (number < 0 ? "" : std::to_string(number)));
  }
  bool RunActive() override { return --looksUntilActive_ < 0; }
  bool StopRequested() override { return looksUntilStop_ > 0 && ++looks_ >= looksUntilStop_; }

  Watcher& Pause(int looks) {
    looksUntilActive_ = looks;
    return *this;
  }
  Watcher& StopAt(int look) {
    looksUntilStop_ = look;
    return *this;
  }

  void ShowFraction(double done) override { Fractions.push_back(done); }
  void ShowMessage(const std::string& text) override { Messages.push_back(text); }

  Texts Passes, Items, Messages;
  std::vector<double> Fractions;

 private:
  int looksUntilActive_ = 0, looksUntilStop_ = 0, looks_ = 0;
};

TEST(ConversionRun, ShowsWhatItDoes) {
  Watcher user;
  Convert(Brush("A", "") + Brush("B", " CsgOper=CSG_Add\n"), SampleSettings(), &user);
  ASSERT_GE(user.Passes.size(), 6U);
  EXPECT_EQ(Texts(user.Passes.begin(), user.Passes.begin() + 4),
            (Texts{"Reading file", "Pre-scan", "Scanning ambience", "getting triggers"}));
  const auto place = [&](const char* pass) { return std::find(user.Passes.begin(), user.Passes.end(), pass); };
  EXPECT_LT(place("Processing Brushes"), place("Processing Movers"));
  EXPECT_LT(place("Processing Movers"), place("Processing non-geo"));
  EXPECT_EQ(user.Passes.back(), "Done");
  const Texts brushes{"getting brush", "on brush 1", "skipping brush",      "getting brush",
                      "on brush 1",    "on face 0",  "converting vertices", "processing texture"};
  EXPECT_EQ(Texts(user.Items.begin(), user.Items.begin() + 8), brushes);
  EXPECT_TRUE(user.Items.back().starts_with("Box: 0 0 0 to 0.0952")) << user.Items.back();
}

TEST(ConversionRun, PausesBeforeABrushAndGoesOn) {
  Watcher user;
  user.Pause(3);
  EXPECT_EQ(Convert(golden, SampleSettings(), &user).Result.Outcome, RunOutcome::Done);
  EXPECT_EQ(std::count(user.Items.begin(), user.Items.end(), "Paused"), 3);
}

TEST(ConversionRun, StopsWithTheSceneAsFarAsItIs) {
  Watcher whilePaused, whileReading, afterABrush;
  for (Watcher* user : {&whilePaused.Pause(1000).StopAt(5), &afterABrush.StopAt(4)}) {
    const TemporaryFolder folder;
    const Converted converted = ConvertIn(folder, golden, SampleSettings(), user);
    EXPECT_EQ(converted.Result.Outcome, RunOutcome::Stopped);
    EXPECT_TRUE(converted.Text.starts_with("#VRML"));
    EXPECT_FALSE(fs::exists(folder.Path() / "level.x3d"));
    EXPECT_FALSE(fs::exists(folder.Path() / "levelMissingTextures.txt"));
  }
  const TemporaryFolder folder;
  EXPECT_EQ(ConvertIn(folder, golden, SampleSettings(), &whileReading.StopAt(1)).Result.Outcome, RunOutcome::Stopped);
  EXPECT_FALSE(fs::exists(folder.Path() / "level.wrl"));
}

TEST(ConversionRun, UsesTheTextInMemoryWhenAskedTo) {
  const TemporaryFolder folder;
  folder.Write("a.t3d", Brush("A", " CsgOper=CSG_Add\n"));
  RunInterface user;
  MemoryStore store;
  RunMemory memory;
  ConversionSettings settings = SampleSettings();
  const auto convert = [&](const char* level) {
    const RunResult result = ConvertFile(level[0] ? folder.Path() / level : fs::path(), folder.Path() / "out.x3dv",
                                         settings, store, memory, user);
    EXPECT_EQ(result.Outcome, RunOutcome::Done) << result.Error;
    return folder.Read("out.wrl");
  };
  const std::string scene = convert("a.t3d");
  EXPECT_TRUE(memory.LoadedFileName.ends_with("a.t3d"));
  settings.CheckRescanFile = false;
  EXPECT_EQ(convert("none.t3d"), scene);
  fs::remove(folder.Path() / "out.wrl");
  EXPECT_EQ(convert(""), "") << "no name, no effect";
}

TEST(ConversionRun, RefusesWhatIsNoLevelInOneSentence) {
  const std::pair<std::string, const char*> cases[] = {
      {"", "no actor"},
      {std::string(1000, '\0'), "no actor"},
      {std::string("\xff\xfe") + "B\0e\0"s, "UTF-16"},
      {"Begin Actor Class=Brush_0 Archetype=Brush'Engine.Default__Brush'\nEnd Actor", "newer generation"},
      {"Begin StaticMesh Name=X\nEnd StaticMesh", "static mesh"},
      {"Begin Actor Class=Tree Name=T\nEnd Actor", "holds no brush"},
      {Brush("Gone", "CsgOper=CSG_Add\n PolyFlags=1\n"), "these options; it holds 1 Brush"},
      {Brush("Cut", "CsgOper=CSG_Subtract\n") + "Begin Actor Class=SpecialEvent Name=S\nEnd Actor\n",
       "it holds 1 Brush, 1 SpecialEvent; brushes left out as subtractive: 1"},
      {"Begin Actor Class=Brush Name=Cut\n Begin Brush\n", ""},
  };
  for (const auto& [text, why] : cases) {
    const TemporaryFolder folder;
    const Converted converted = ConvertIn(folder, text);
    if (*why == '\0') continue; // cut off: whatever comes out, it must not crash
    EXPECT_EQ(converted.Result.Outcome, RunOutcome::Failed);
    EXPECT_TRUE(Holds(converted.Result.Error, why)) << converted.Result.Error;
    EXPECT_FALSE(fs::exists(folder.Path() / "level.wrl") || fs::exists(folder.Path() / "level.x3d"));
  }
}

TEST(ConversionRun, ReportsFilesThatCannotBeReadOrWritten) {
  const TemporaryFolder folder;
  folder.Write("a.t3d", Brush("A", " CsgOper=CSG_Add\n"));
  fs::create_directories(folder.Path() / "taken.x3d");
  RunInterface user;
  MemoryStore store;
  RunMemory memory;
  const auto convert = [&](const char* level, const char* scene) {
    return ConvertFile(folder.Path() / level, folder.Path() / scene, SampleSettings(), store, memory, user);
  };
  EXPECT_TRUE(Holds(convert("none.t3d", "a.wrl").Error, "does not exist"));
  EXPECT_TRUE(Holds(convert("taken.x3d", "a.wrl").Error, "is a folder"));
  EXPECT_TRUE(Holds(convert("a.t3d", "taken.wrl").Error, "taken.x3d cannot be written: Is a directory"));
  EXPECT_EQ(convert("a.t3d", "taken.wrl").Reason, "taken.x3d cannot be written: Is a directory");
  EXPECT_TRUE(Holds(convert("a.t3d", "a.t3d/b.wrl").Error, "b.wrl cannot be written: its folder cannot be made: "));
  EXPECT_EQ(convert("a.t3d", "new/folders/a.wrl").Outcome, RunOutcome::Done);
  ConversionSettings baking = SampleSettings();
  baking.CheckBakeLight = true;
  fs::create_directories(folder.Path() / "levelLight0.png");
  const std::string lit = Brush("A", " CsgOper=CSG_Add\n") + test::Actor("Light Name=Lamp", " Location=(Z=9)");
  EXPECT_TRUE(Holds(ConvertIn(folder, lit, baking).Result.Error, "levelLight0.png cannot be written: Is a directory"));
  EXPECT_FALSE(fs::exists(folder.Path() / "taken.wrl")) << "refused before any pass";
  fs::create_symlink("/dev/full", folder.Path() / "full.wrl");
  memory.TypedOutput = folder.Path() / "full.wrl";
  EXPECT_TRUE(Holds(convert("a.t3d", "full.wrl").Error, "full.wrl cannot be written: No space left on device"));
  fs::create_directories(folder.Path() / "levelMissingTextures.txt");
  const std::string lost = test::TriangleActor("Brush Name=A", " CsgOper=CSG_Add", 1, "Texture=none1");
  const std::string error = ConvertIn(folder, lost).Result.Error;
  EXPECT_TRUE(Holds(error, "levelMissingTextures.txt cannot be written")) << error;
}

TEST(ConversionRun, TellsOnceOfNumbersThatNoLevelHasAndOfPolygonsThatAreNone) {
  const std::string add = " CsgOper=CSG_Add", far = "Texture=brick\n   Origin 1e9,0,0";
  std::string level =
      test::Actor("SkyZoneInfo Name=Sky") +
      test::TriangleActor("Brush Name=Star", add + "\n Region=(Zone=SkyZoneInfo'MyLevel.Sky')", 2, far) +
      test::TriangleActor("Mover Name=Door", add, 1, far) + test::TriangleActor("Brush Name=Line", add, 1, far);
  level.erase(level.rfind("   Vertex"), 17);
  ConversionSettings settings = SampleSettings();
  settings.CheckSkyZone = true;
  const std::string message = "Input file contains badly formatted numbers: 4 places, the first in Line";
  Watcher user;
  const RunResult result = Convert(level, settings, &user).Result;
  EXPECT_EQ(std::count(user.Messages.begin(), user.Messages.end(), message), 1);
  EXPECT_EQ(std::count(result.Messages.begin(), result.Messages.end(), message), 1);
  EXPECT_TRUE(
      std::any_of(result.Findings.Findings().begin(), result.Findings.Findings().end(), [](const Finding& finding) {
        return finding.Actor == "Line" && finding.Reason == "1 of its polygons have fewer than three vertices";
      }));
  EXPECT_TRUE(std::is_sorted(user.Fractions.begin(), user.Fractions.end())) << "the sky begins anew";
  EXPECT_EQ(std::count(user.Items.begin(), user.Items.end(), ""), 0);
  const auto mover = std::find(user.Items.begin(), user.Items.end(), "on mover 2");
  ASSERT_NE(mover, user.Items.end());
  EXPECT_EQ(*(mover - 1), "getting mover");
  settings.CheckMergeLevel = true;
  EXPECT_EQ(Convert(level, settings).Result.Messages.front(), message);
}

TEST(LevelCheck, TellsTheGenerationsApart) {
  EXPECT_TRUE(T3DLevel("Begin Actor").LegacyFormat);
  EXPECT_TRUE(T3DLevel(" Texture=Wall Link=0.5\n Texture=A.B").LegacyFormat);
  EXPECT_FALSE(T3DLevel(" Texture=Pack.Wall\n").LegacyFormat);
  EXPECT_FALSE(T3DLevel(" Texture=Wall\n PhysicsVolume=X").LegacyFormat);
}

ConversionSettings PageSettingsIn(const TemporaryFolder& folder) {
  ConversionSettings settings = SampleSettings();
  settings.CheckMakePage = true;
  settings.TextViewer = test::WriteViewer(folder).string();
  return settings;
}

TEST(ConversionRun, WritesThePageBesideTheScenesOrAlone) {
  const TemporaryFolder both, alone;
  ConversionSettings settings = PageSettingsIn(both);
  settings.TextureDest.DestDoCopy = false;
  const RunResult beside = ConvertIn(both, golden, settings).Result;
  EXPECT_EQ(beside.Error, "");
  EXPECT_EQ(beside.Page, both.Path() / "level.html");
  EXPECT_TRUE(fs::exists(both.Path() / "level.x3d"));
  EXPECT_FALSE(fs::exists(both.Path() / "brick.png")) << "the page needs no copies beside it";
  settings.CheckPageOnly = true;
  const fs::path before = fs::current_path();
  fs::current_path(alone.Path());
  const RunResult only = ConvertIn(alone, golden, settings).Result;
  fs::current_path(before);
  EXPECT_EQ(std::distance(fs::directory_iterator(alone.Path()), {}), 3) << "nothing but the level, its page and a list";
  EXPECT_EQ(only.FilesWritten,
            (std::vector<fs::path>{alone.Path() / "level.html", alone.Path() / "levelMissingTextures.txt"}));
  EXPECT_FALSE(fs::exists(alone.Path() / "level.x3d"));
  EXPECT_EQ(only.Faces, beside.Faces);
  EXPECT_EQ(both.Read("level.html"), alone.Read("level.html"));
}

TEST(ConversionRun, APageAloneListsWhatIsMissingBesideItself) {
  const TemporaryFolder folder;
  ConversionSettings settings = PageSettingsIn(folder);
  settings.CheckPageOnly = true;
  const std::string level = "Begin Actor Class=AmbientSound Name=Hum\r\n AmbientSound=Sound'P.hum'\r\nEnd Actor\r\n";
  EXPECT_EQ(ConvertIn(folder, level, settings).Result.Missing[ResourceKind::Sound],
            std::vector<std::string>{(folder.Path() / "hum.wav").string()});
}

TEST(ConversionRun, APageHasTheImagesOfMeshesFromTheTexturesToo) {
  const TemporaryFolder folder, textures;
  ConversionSettings settings = PageSettingsIn(folder);
  settings.TextSearchPathTxt = textures.Path().string();
  settings.TextSearchPathMesh = folder.Path().string();
  folder.Write("Barrel.x3d",
               "<X3D><Scene><Shape><Appearance><ImageTexture url='\"rust.png\"'/></Appearance><Box/></Shape>"
               "</Scene></X3D>");
  fs::copy_file(QUARVEL_SAMPLES_DIR "/textures/brick.png", textures.Path() / "Rust.PNG");
  const RunResult result = ConvertIn(folder,
                                     "Begin Actor Class=StaticMeshActor Name=S\n StaticMesh=StaticMesh'Barrel'\n"
                                     " PhysicsVolume=X\nEnd Actor\n",
                                     settings)
                               .Result;
  EXPECT_EQ(result.Error, "");
  EXPECT_NE(folder.Read("level.html").find("data-kind=\"image\""), std::string::npos);
}

TEST(ConversionRun, WritesNothingWhenThePageCannotBeMade) {
  const TemporaryFolder folder;
  ConversionSettings settings = PageSettingsIn(folder);
  settings.TextViewer += ".not";
  EXPECT_TRUE(Holds(ConvertIn(folder, golden, settings).Result.Error, "x_ite.min.js.not cannot be read"));
  EXPECT_FALSE(fs::exists(folder.Path() / "level.html"));
  EXPECT_FALSE(fs::exists(folder.Path() / "level.wrl"));
}

TEST(ConversionRun, TextsTakeNoNamesFromThePackageBeforeThem) {
  const TemporaryFolder folder;
  folder.Write("in.t3d", "Begin Map\n" + test::TriangleActor("Brush Name=B", "CsgOper=CSG_Add", 1, "Texture=none1") +
                             "End Map\n");
  MemoryStore store;
  RunInterface user;
  RunMemory memory;
  memory.TextureNames = {{"none1", "Pkg.Group.none1"}};
  const RunResult result = ConvertFile(folder.Path() / "in.t3d", folder.Path() / "out.wrl", {}, store, memory, user);
  EXPECT_EQ(result.Missing[ResourceKind::Texture], std::vector<std::string>{"none1"});
}

/// The level's folder is the library where none is named, and the scene's folder, too.
TEST(ConversionRun, OverwritingSparesMeshesOfTheUser) {
  const TemporaryFolder folder;
  const std::string own = "#VRML V2.0 utf8\n# the user's own\n";
  folder.Write("lamp.wrl", own);
  folder.Write("P/lamp.wrl", "#VRML V2.0 utf8\n# of the package\n");
  ConversionSettings settings;
  settings.MeshDest.DestOverwrite = true;
  test::ConvertIn(
      folder,
      test::Actor("StaticMeshActor Name=S",
                  "StaticMesh=StaticMesh'P.lamp'\nPhysicsVolume=DefaultPhysicsVolume'myLevel.V'\nName=\"S\""),
      settings);
  EXPECT_EQ(test::ReadFile(folder.Path() / "lamp.wrl"), own);
}

} // namespace
} // namespace quarvel
