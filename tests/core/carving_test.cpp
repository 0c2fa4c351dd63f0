#include "scene/carved_level.h"
#include "scene/merged_level.h"
#include "tests/core/converted.h"
#include "tests/csg/made_brushes.h"
#include "tests/made_actors.h"
#include "tests/scene/scene_readers.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

namespace quarvel {
namespace {

using test::BoxActor;

namespace fs = std::filesystem;

const std::string room = BoxActor("Room", test::SubtractBox({0, 0, 0}, {1050, 2100, 525}), " CsgOper=CSG_Subtract");
const std::string block = BoxActor("Block", test::AddBox({105, 105, 0}, {210, 210, 105}), " CsgOper=CSG_Add", "crate");

ConversionSettings Carving() {
  ConversionSettings settings = test::SampleSettings();
  settings.CheckCarve = settings.CheckConforming = true;
  return settings;
}

std::vector<double> Numbers(const std::string& text) {
  std::istringstream words(text);
  std::vector<double> numbers;
  for (double number = 0; words >> number;)
    numbers.push_back(number);
  return numbers;
}

/// The area of a face set, in square Unreal units.
double AreaOf(const test::ReadScene& scene, const std::string& piece, double scale) {
  const std::vector<double> points = Numbers(scene.Find("C_" + piece)->Fields.at("point"));
  double area = 0;
  std::vector<Vector3> face;
  for (const double index : Numbers(scene.Find("F_" + piece)->Fields.at("coordIndex"))) {
    if (index < 0) {
      area += AreaOfPolygon(face);
      face.clear();
      continue;
    }
    const auto at = static_cast<std::size_t>(index) * 3;
    face.push_back(ScaleVector({points[at], points[at + 1], points[at + 2]}, 1 / scale));
  }
  return area;
}

std::size_t CountOf(const test::ReadScene& scene, const std::string& type) {
  return static_cast<std::size_t>(
      std::count_if(scene.Nodes.begin(), scene.Nodes.end(), [&](const auto& node) { return node.Type == type; }));
}

bool Found(const RunResult& result, FindingCode code) {
  const auto& findings = result.Findings.Findings();
  return std::any_of(findings.begin(), findings.end(), [&](const Finding& finding) { return finding.Code == code; });
}

TEST(Carving, WritesTheRoomAsOneTransform) {
  const test::Converted converted = test::Convert("Begin Map\n" + room + block + "End Map\n", Carving());
  const test::ReadScene scene = test::ReadVrml(converted.Text);
  EXPECT_EQ(scene.Faults, std::vector<std::string>());
  EXPECT_EQ(CountOf(scene, "Transform"), 1U);
  ASSERT_NE(scene.Find("CarvedLevel"), nullptr);
  ASSERT_EQ(CountOf(scene, "Shape"), 2U);
  EXPECT_NEAR(AreaOf(scene, "CarvedLevel0", Carving().TextScale), 2 * (1050 * 2100 + 3150 * 525) - 105 * 105, 1);
  EXPECT_NEAR(AreaOf(scene, "CarvedLevel1", Carving().TextScale), 5 * 105 * 105, 1);
  EXPECT_EQ(scene.Find("F_CarvedLevel0")->Fields.at("solid"), "TRUE");
  const CarvingResult& carving = converted.Result.Carving;
  EXPECT_EQ(carving.Added, 1);
  EXPECT_EQ(carving.Subtracted, 1);
  EXPECT_EQ(carving.OpenEdges, 0);
  EXPECT_NEAR(carving.EmptyVolume, 20 * 40 * 10 - 2 * 2 * 2, 1e-3);
  EXPECT_EQ(converted.Result.Findings.Counts().size(), 0U) << "no brush is left out";
}

TEST(Carving, KeepsLinksAndPassableSurfacesApart) {
  const std::string link = BoxActor("Link", test::AddBox({400, 400, 0}, {500, 500, 90}),
                                    " CsgOper=CSG_Add\n url=http---example--org", "crate");
  const std::string water =
      BoxActor("Water", test::AddBox({0, 0, 0}, {1050, 2100, 60}), " CsgOper=CSG_Add\n PolyFlags=67108864", "crate");
  const std::string hidden =
      BoxActor("Hidden", test::AddBox({700, 700, 0}, {800, 800, 90}), " CsgOper=CSG_Add\n PolyFlags=1");
  const test::ReadScene scene =
      test::ReadVrml(test::Convert("Begin Map\n" + room + block + link + water + hidden + "End Map\n", Carving()).Text);
  EXPECT_EQ(scene.Faults, std::vector<std::string>());
  EXPECT_EQ(CountOf(scene, "Anchor"), 1U);
  EXPECT_EQ(CountOf(scene, "Collision"), 1U);
  const double scale = Carving().TextScale;
  EXPECT_NEAR(AreaOf(scene, "CarvedLevel0", scale), 2 * (1050 * 2100 + 3150 * 525) - 2 * 100 * 100 - 105 * 105, 1)
      << "the hidden block carves and is not written";
  EXPECT_NEAR(AreaOf(scene, "CarvedLevel2", scale), 100 * 100 + 4 * 100 * 90, 1) << "the link";
  EXPECT_NEAR(AreaOf(scene, "CarvedLevel3", scale), 1050 * 2100 - 105 * 105 - 2 * 100 * 100, 1)
      << "the water, but in walls and blocks";
}

TEST(Carving, DoesNothingWhereThereIsNoRoomAndSaysSo) {
  const auto found = [](const std::string& level, ConversionSettings settings) {
    return Found(test::Convert(level, settings).Result, FindingCode::NothingCarved);
  };
  ConversionSettings builder = Carving();
  builder.CheckBuildBrush = true;
  const std::string lists = "Begin PolyList\n Begin Polygon\n  Vertex 1,2,3\n End Polygon\nEnd PolyList\n";
  EXPECT_TRUE(found("Begin Map\n" + block + "End Map\n", Carving()));
  EXPECT_TRUE(found("Begin Map\n" + room + "End Map\n", builder));
  EXPECT_TRUE(found(lists, Carving()));
  ConversionSettings plain = Carving();
  plain.CheckCarve = false;
  EXPECT_EQ(test::Convert("Begin Map\n" + block + "End Map\n", Carving()).Text,
            test::Convert("Begin Map\n" + block + "End Map\n", plain).Text);
}

TEST(Carving, BrushesThatCannotBeCarvedAreWrittenAsBefore) {
  CsgBrush far = test::AddBox({0, 0, 0}, {100, 100, 2e7});
  CsgBrush gap = test::SubtractBox({0, 0, 0}, {100, 100, 100});
  gap.Polygons.pop_back();
  const test::Converted converted = test::Convert("Begin Map\n" + room + BoxActor("Far", far, " CsgOper=CSG_Add") +
                                                      BoxActor("Gap", gap, " CsgOper=CSG_Subtract") + "End Map\n",
                                                  Carving());
  EXPECT_TRUE(Found(converted.Result, FindingCode::BlockNotCarved));
  EXPECT_TRUE(Found(converted.Result, FindingCode::RoomNotCarved));
  EXPECT_NE(test::ReadVrml(converted.Text).Find("Far"), nullptr);
}

TEST(Carving, MergesWithoutCarving) {
  ConversionSettings settings = Carving();
  settings.CheckCarve = false;
  settings.CheckMergeLevel = true;
  const std::string mirrored = BoxActor("Mirrored", test::AddBox({0, 0, 0}, {100, 100, 100}),
                                        " CsgOper=CSG_Add\n MainScale=(Scale=(X=-1.000000))", "crate");
  std::string odd = room;
  odd.replace(odd.find("Origin 0,0,0"), 12, "Origin 1e9,0,0");
  const test::Converted converted = test::Convert("Begin Map\n" + odd + block + mirrored + "End Map\n", settings);
  const std::string message = "Input file contains badly formatted numbers: 1 place, the first in Room";
  EXPECT_EQ(converted.Result.Messages, std::vector<std::string>{message});
  const test::ReadScene scene = test::ReadVrml(converted.Text);
  EXPECT_EQ(scene.Faults, std::vector<std::string>());
  EXPECT_EQ(CountOf(scene, "Shape"), 1U);
  EXPECT_NEAR(AreaOf(scene, "CarvedLevel0", settings.TextScale), 6 * 105 * 105 + 6 * 100 * 100, 1);
  EXPECT_EQ(Numbers(scene.Find("C_CarvedLevel0")->Fields.at("point")).size(), 3 * 16U) << "positions are shared";
  EXPECT_FALSE(converted.Result.Carving.Done);
}

/// The triangles of all faces as a viewer makes them: a fan from the first corner, without those that have no area.
/// Returns how many of their edges are not run through as often there as back.
int OpenEdgesOfFans(const test::ReadScene& scene) {
  std::map<std::pair<std::vector<double>, std::vector<double>>, int> balance;
  for (const test::ReadNode& set : scene.Nodes) {
    if (set.Type != "IndexedFaceSet") continue;
    const std::vector<double> points = Numbers(scene.Find("C_" + set.Def.substr(2))->Fields.at("point"));
    std::vector<std::vector<double>> face;
    const auto at = [&](std::size_t i) { return Vector3{face[i][0], face[i][1], face[i][2]}; };
    for (const double index : Numbers(set.Fields.at("coordIndex"))) {
      const auto first = points.begin() + static_cast<std::ptrdiff_t>(index) * 3;
      if (index >= 0) face.emplace_back(first, first + 3);
      for (std::size_t i = 1; index < 0 && i + 1 < face.size(); ++i) {
        if (AreaOfPolygon(std::vector{at(0), at(i), at(i + 1)}) < 1e-9) continue;
        for (const auto& [from, to] : {std::pair(0UL, i), std::pair(i, i + 1), std::pair(i + 1, 0UL)}) {
          const bool upward = face[from] < face[to];
          balance[upward ? std::pair(face[from], face[to]) : std::pair(face[to], face[from])] += upward ? 1 : -1;
        }
      }
      if (index < 0) face.clear();
    }
  }
  return static_cast<int>(std::count_if(balance.begin(), balance.end(), [](const auto& edge) { return edge.second; }));
}

TEST(Carving, LeavesNoCrackBetweenAViewersTriangles) {
  // Each wall has a niche down to the floor, whose corners are on the floor's side: two on every side.
  const std::string niches =
      BoxActor("N", test::SubtractBox({500, 2100, 0}, {600, 2200, 90}), " CsgOper=CSG_Subtract") +
      BoxActor("E", test::SubtractBox({1050, 500, 0}, {1150, 600, 90}), " CsgOper=CSG_Subtract") +
      BoxActor("S", test::SubtractBox({500, -100, 0}, {600, 0, 90}), " CsgOper=CSG_Subtract") +
      BoxActor("W", test::SubtractBox({-100, 500, 0}, {0, 600, 90}), " CsgOper=CSG_Subtract");
  const test::ReadScene scene =
      test::ReadVrml(test::Convert("Begin Map\n" + room + niches + "End Map\n", Carving()).Text);
  EXPECT_EQ(OpenEdgesOfFans(scene), 0);
  EXPECT_NEAR(AreaOf(scene, "CarvedLevel0", Carving().TextScale),
              2 * (1050 * 2100 + 3150 * 525) + 4 * 2 * (100 * 100 + 100 * 90), 1);
}

TEST(Carving, LeavesNoCrackWhereLightMapsEnd) {
  ConversionSettings settings = Carving();
  settings.CheckBakeLight = true;
  settings.TextLightMapSize = {"64", 64};
  const std::string lamp = "Begin Actor Class=Light Name=Lamp\n Location=(X=500,Y=1000,Z=300)\nEnd Actor\n";
  const test::Converted converted = test::Convert("Begin Map\n" + room + block + lamp + "End Map\n", settings);
  EXPECT_GT(converted.Result.Light.Pages, 4U);
  EXPECT_GT(converted.Result.Faces, 11) << "the surfaces are cut";
  const test::ReadScene scene = test::ReadVrml(converted.Text);
  EXPECT_EQ(scene.Faults, std::vector<std::string>());
  EXPECT_EQ(OpenEdgesOfFans(scene), 0);
}

TEST(Carving, CarvesTheSkyOutOfItsOwnBrushes) {
  // The pivot of the sky's room stands in the rock, as the editor leaves it, so that the level knows it in no zone.
  const std::string sky = "Region=(Zone=SkyZoneInfo'L.Sky')\n", world = "Region=(Zone=LevelInfo'L.LevelInfo0')\n";
  const std::string zone =
      "Begin Actor Class=SkyZoneInfo Name=Sky\n Location=(X=5000,Y=5000,Z=5000)\n" + sky + "End Actor\n";
  const std::string skyRoom =
      BoxActor("SkyRoom", test::SubtractBox({4790, 4790, 4790}, {5210, 5210, 5210}), world + " CsgOper=CSG_Subtract");
  const std::string moon =
      BoxActor("Moon", test::AddBox({5000, 5000, 5105}, {5105, 5105, 5210}), sky + " CsgOper=CSG_Add", "crate");
  const std::string hill =
      BoxActor("Hill", test::AddBox({4790, 4790, 4790}, {4895, 4895, 4895}), world + " CsgOper=CSG_Add", "crate");
  ConversionSettings settings = Carving();
  settings.CheckSkyZone = true;
  const TemporaryFolder folder;
  const auto convert = [&](const std::string& more) {
    return test::ConvertIn(folder, "Begin Map\n" + room + block + zone + skyRoom + moon + hill + more + "End Map\n",
                           settings);
  };
  const test::Converted converted = convert("");
  const test::ReadScene level = test::ReadVrml(converted.Text),
                        above = test::ReadVrml(test::ReadFile(folder.Path() / "Sky.wrl"));
  EXPECT_EQ(level.Faults, std::vector<std::string>());
  EXPECT_EQ(above.Faults, std::vector<std::string>());
  const double scale = settings.TextScale;
  EXPECT_NEAR(AreaOf(level, "CarvedLevel0", scale), 2 * (1050 * 2100 + 3150 * 525) - 105 * 105, 1);
  EXPECT_NEAR(AreaOf(above, "CarvedLevel0", scale), 6 * 420 * 420 - 4 * 105 * 105, 1)
      << "moon and hill stand at its sides";
  EXPECT_NEAR(AreaOf(above, "CarvedLevel1", scale), (5 + 3) * 105 * 105, 1);
  EXPECT_TRUE(above.Find("C_CarvedLevel0")->Fields.at("point").find("-4.0") != std::string::npos) << "around the zone";
  EXPECT_EQ(converted.Result.Carving.Subtracted, 2);
  EXPECT_NEAR(converted.Result.Carving.EmptyVolume, 20 * 40 * 10 - 8 + 8 * 8 * 8 - 16, 1e-3);
  EXPECT_FALSE(Found(converted.Result, FindingCode::NothingCarved));
  // A room in which a visitor starts is more than a sky.
  convert("Begin Actor Class=PlayerStart Name=P\n Location=(X=5000,Y=5000,Z=4900)\n" + world + "End Actor\n");
  EXPECT_EQ(test::ReadVrml(test::ReadFile(folder.Path() / "Sky.wrl")).Find("C_CarvedLevel0"), nullptr);
}

TEST(Carving, CutsLargeShapesInPieces) {
  std::vector<LevelSurface> surfaces;
  for (int i = 0; i < 100; ++i) {
    const double x = (i * 37) % 100;
    surfaces.emplace_back().Points = {{x, 0, 0}, {x + 1, 0, 0}, {x + 1, 1, 0}, {x, 1, 0}};
  }
  const std::vector<SurfaceGroup> groups = GroupSurfaces(surfaces, 100);
  ASSERT_EQ(groups.size(), 4U);
  double reached = -1;
  for (const SurfaceGroup& group : groups)
    for (const LevelSurface* surface : group.Surfaces) {
      EXPECT_GT(surface->Points[0].X, reached) << "along the longest side";
      reached = surface->Points[0].X;
    }
  surfaces[5].LightPage = 1;
  EXPECT_EQ(GroupSurfaces(surfaces).size(), 2U);
}

/// The brushes of a real level.
std::vector<LevelBrush> BrushesOf(const T3DLevel& level) {
  std::vector<LevelBrush> brushes;
  NumberCheck check;
  for (const ActorBlock* actor : level.ActorsOf(ActorFamily::Brush)) {
    BrushRecord brush = ReadBrush(level, *actor, check);
    if (IsAdditive(brush) || brush.CsgOper == "CSG_Subtract") brushes.push_back(MakeLevelBrush(std::move(brush)));
  }
  return brushes;
}

CarvedLevel CarveAll(const std::vector<LevelBrush>& brushes) {
  std::vector<CsgBrush> made;
  for (const LevelBrush& brush : brushes)
    made.push_back(MakeCsgBrush(brush));
  return CarveLevel(made);
}

void ExpectAreas(const std::map<std::string, double>& areas, const nlohmann::json& compiled) {
  EXPECT_EQ(areas.size(), compiled.size());
  for (const auto& [name, area] : areas)
    EXPECT_NEAR(area / compiled.value(name, 0.0), 1, 1e-4) << name;
}

TEST(CarvingRealLevels, GivesWhatTheEngineCompiled) {
  const fs::path folder = QUARVEL_PACKAGES_DIR;
  if (!fs::exists(folder)) GTEST_SKIP() << "no levels in " << folder;
  const auto compiled = nlohmann::json::parse(std::ifstream(folder / "compiled-areas.json"));
  for (const char* name : {"LightPuzzle", "CheckerMap"}) {
    const std::string text = test::ReadFile(folder / (std::string(name) + ".t3d"));
    const T3DLevel level(text);
    const std::vector<LevelBrush> brushes = BrushesOf(level);
    const CarvedLevel carved = CarveAll(brushes);
    EXPECT_TRUE(carved.OpenEdges.empty());
    std::map<std::string, double> byBrush, byTexture, written;
    for (std::size_t i = 0; i < carved.Faces.size(); ++i) {
      const LevelBrush& brush = brushes[static_cast<std::size_t>(carved.Faces[i].Brush)];
      const auto polygon = static_cast<std::size_t>(carved.Faces[i].Polygon);
      byBrush[brush.Name] += test::AreaOf(carved, i);
      byTexture[std::string(brush.Polygons[polygon].Texture)] += test::AreaOf(carved, i);
    }
    ExpectAreas(byBrush, compiled[name]["brush"]);
    ExpectAreas(byTexture, compiled[name]["texture"]);
    // In the scene, each texture has one shape.
    const test::ReadScene scene = test::ReadVrml(test::Convert(text, Carving()).Text);
    const std::size_t shapes = compiled[name]["texture"].size();
    for (std::size_t i = 0; i < shapes; ++i) {
      const std::string piece = "CarvedLevel" + std::to_string(i);
      const auto shape = static_cast<std::size_t>(scene.Find("F_" + piece)->Parent);
      for (const test::ReadNode& node : scene.Nodes)
        if (node.Type == "Appearance" && node.Parent == static_cast<int>(shape))
          written[(node.Def.empty() ? node.Use : node.Def).substr(2)] += AreaOf(scene, piece, Carving().TextScale);
    }
    ExpectAreas(written, compiled[name]["texture"]);
  }
}

TEST(CarvingRealLevels, LosesNoBrushAndLeavesNoEdgeOpen) {
  const fs::path folder = QUARVEL_LEVELS_DIR;
  if (!fs::exists(folder)) GTEST_SKIP() << "no levels in " << folder;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() != ".t3d") continue;
    SCOPED_TRACE(entry.path().stem().string());
    const std::string text = test::ReadFile(entry.path());
    const std::vector<LevelBrush> brushes = BrushesOf(T3DLevel(text));
    const CarvedLevel carved = CarveAll(brushes);
    EXPECT_EQ(carved.Refused.size(), 0U);
    EXPECT_EQ(carved.OpenEdges.size(), 0U);
    const CarveCounts& counts = carved.Counts;
    EXPECT_EQ(static_cast<std::size_t>(counts.Added + counts.Subtracted + counts.Semisolid + counts.NonSolid +
                                       counts.Portals + counts.Sheets),
              brushes.size());
  }
}

} // namespace
} // namespace quarvel
