#include "core/sky_brushes.h"
#include "scene/carved_level.h"
#include "scene/merged_level.h"
#include "tests/core/converted.h"
#include "tests/csg/made_brushes.h"
#include "tests/made_actors.h"
#include "tests/scene/scene_fixture.h"
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
  std::string level = "Begin Map\n" + room;
  for (const auto& [low, high] :
       {std::pair(Vector3{500, 2100, 0}, Vector3{600, 2200, 90}),
        std::pair(Vector3{1050, 500, 0}, Vector3{1150, 600, 90}), std::pair(Vector3{500, -100, 0}, Vector3{600, 0, 90}),
        std::pair(Vector3{-100, 500, 0}, Vector3{0, 600, 90})})
    level += BoxActor("Niche", test::SubtractBox(low, high), " CsgOper=CSG_Subtract");
  const test::ReadScene scene = test::ReadVrml(test::Convert(level + "End Map\n", Carving()).Text);
  EXPECT_EQ(OpenEdgesOfFans(scene), 0);
  EXPECT_NEAR(AreaOf(scene, "CarvedLevel0", Carving().TextScale),
              2 * (1050 * 2100 + 3150 * 525) + 4 * 2 * (100 * 100 + 100 * 90), 1);
  // Light maps end within the walls.
  ConversionSettings baking = Carving();
  baking.CheckBakeLight = true;
  baking.TextLightMapSize = {"64", 64};
  level += "Begin Actor Class=Light Name=Lamp\n Location=(X=500,Y=1000,Z=300)\nEnd Actor\nEnd Map\n";
  const test::Converted baked = test::Convert(level, baking);
  EXPECT_GT(baked.Result.Light.Pages, 4U);
  EXPECT_EQ(OpenEdgesOfFans(test::ReadVrml(baked.Text)), 0);
}

TEST(Carving, DoesNothingWhereThereIsNoRoomAndSaysSo) {
  ConversionSettings builder = Carving(), plain = Carving();
  builder.CheckBuildBrush = true;
  plain.CheckCarve = false;
  const std::string lists = "Begin PolyList\n Begin Polygon\n  Vertex 1,2,3\n End Polygon\nEnd PolyList\n";
  for (const auto& [level, settings] :
       {std::pair(block, Carving()), std::pair(room, builder), std::pair(lists, Carving())})
    EXPECT_TRUE(test::Reports(test::Convert(level, settings).Result.Findings, "", "nothing"));
  EXPECT_EQ(test::Convert(block, Carving()).Text, test::Convert(block, plain).Text);
}

TEST(Carving, GivesTheSkyWhatLiesInItsRoom) {
  const std::string world = " Region=(Zone=LevelInfo'L.LevelInfo0')\n", add = " CsgOper=CSG_Add\n";
  const std::string sky =
      BoxActor("SkyRoom", test::SubtractBox({4000, 4000, 4000}, {6000, 6000, 6000}), " CsgOper=CSG_Subtract") +
      BoxActor("Hill", test::AddBox({4000, 4000, 4000}, {4900, 4900, 4900}), add);
  const auto around = [&](const std::string& keys) {
    return BoxActor("Around", test::AddBox({4500, 4500, 4500}, {5500, 5500, 5500}), add + keys);
  };
  CsgBrush gap = test::SubtractBox({4500, 4500, 4500}, {5500, 5500, 5500});
  gap.Polygons.pop_back();
  const std::pair<std::string, std::string> cases[] = {
      {"", "SkyRoom Hill "},
      {around(" PolyFlags=8"), "SkyRoom Hill Around "},
      {around(""), ""}, // the zone stands in the rock
      {BoxActor("Gap", gap, " CsgOper=CSG_Subtract"), "SkyRoom Hill Gap "},
      {BoxActor("Out", test::AddBox({3000, 4500, 4500}, {4500, 4900, 4900}), add), "SkyRoom Hill "},
      {test::Actor("PlayerStart Name=P", world + " Location=(X=5000,Y=5000,Z=5500)"), ""}, // it is more than a sky
      {test::Actor("PlayerStart Name=P", world + " Location=(X=7000,Y=5000,Z=5500)"), "SkyRoom Hill "},
  };
  for (const auto& [more, brushes] : cases) {
    const std::string text = room + sky + more;
    const T3DLevel level(text);
    NumberCheck check;
    std::string found;
    for (const ActorBlock* actor : FindSkyBrushes(level, {5000, 5000, 5000}))
      found += ReadBrush(level, *actor, check).Header.Name + " ";
    EXPECT_EQ(found, brushes);
  }
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
