#include "core/run_report.h"
#include "images/image_png.h"
#include "tests/core/converted.h"
#include "tests/csg/made_brushes.h"
#include "tests/made_actors.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <pugixml.hpp>

namespace quarvel {
namespace {

const std::string room =
    test::BoxActor("Room", test::SubtractBox({0, 0, 0}, {1050, 2100, 525}), " CsgOper=CSG_Subtract");
const std::string lamp = "Begin Actor Class=Light Name=Lamp\n Location=(X=500,Y=500,Z=300)\nEnd Actor\n";

std::string Map(const std::string& actors) { return "Begin Map\n" + actors + "End Map\n"; }

class BakedLevelTest : public testing::Test {
 protected:
  BakedLevelTest() { settings_.CheckBakeLight = settings_.CheckCarve = settings_.CheckConforming = true; }

  void Convert(const std::string& actors) {
    converted_ = test::ConvertIn(folder_, Map(actors), settings_);
    ASSERT_EQ(converted_.Result.Outcome, RunOutcome::Done) << converted_.Result.Error;
    document_.load_string(converted_.Document.c_str());
  }
  std::size_t Count(const std::string& path) const { return document_.select_nodes(path.c_str()).size(); }

  /// The red of all texels, the darkest first.
  std::vector<int> LightOfMaps() const {
    const std::string png = folder_.Read("levelLight0.png");
    const auto page = ReadPng({reinterpret_cast<const std::uint8_t*>(png.data()), png.size()});
    std::vector<int> light;
    for (std::size_t i = 0; page && i < page.Picture->Values.size(); i += 4)
      light.push_back(page.Picture->Values[i]);
    std::sort(light.begin(), light.end());
    return light;
  }
  /// The darkest of those that are not between the rectangles.
  int DarkestLight() const {
    const std::vector<int> light = LightOfMaps();
    const auto lit = std::upper_bound(light.begin(), light.end(), 0);
    return lit == light.end() ? 0 : *lit;
  }
  bool Found(FindingCode code) const {
    const auto& findings = converted_.Result.Findings.Findings();
    return std::any_of(findings.begin(), findings.end(), [&](const Finding& found) { return found.Code == code; });
  }

  const TemporaryFolder folder_;
  ConversionSettings settings_ = test::SampleSettings();
  test::Converted converted_;
  pugi::xml_document document_;
};

TEST_F(BakedLevelTest, WhatChangesStaysALight) {
  settings_.CheckOutputStaticLights = true;
  Convert(room + lamp +
          "Begin Actor Class=Light Name=Flame\n LightEffect=LT_FLICKER\nEnd Actor\n"
          "Begin Actor Class=Light Name=Moving\n bDynamicLight=True\nEnd Actor\n"
          "Begin Actor Class=Light Name=Blinking\n LightType=LT_Blink\nEnd Actor\n"
          "Begin Actor Class=TriggerLight Name=Switched\nEnd Actor\n"
          "Begin Actor Class=LevelInfo Name=Info\n AmbientBrightness=50\nEnd Actor\n");
  EXPECT_EQ(Count("//PointLight"), 3U);
  EXPECT_EQ(Count("//PointLight[@DEF='Lamp' or @DEF='Blinking' or @DEF='GlobalAmbientLight']"), 0U);
  EXPECT_EQ(converted_.Result.Light.Lamps, 2U);
}

TEST_F(BakedLevelTest, SpecialLightsAreForSpecialLitSurfacesAlone) {
  const std::string special =
      "Begin Actor Class=Light Name=Lamp\n bSpecialLit=True\n Location=(X=500,Y=500,Z=300)\nEnd Actor\n";
  const std::string specialRoom = test::BoxActor("Room", test::SubtractBox({0, 0, 0}, {1050, 2100, 525}),
                                                 " CsgOper=CSG_Subtract", "brick Flags=1048576");
  Convert(room + special);
  EXPECT_LT(LightOfMaps().back(), 40) << "no more than the ambience";
  Convert(specialRoom + special);
  EXPECT_GT(LightOfMaps().back(), 60);
}

TEST_F(BakedLevelTest, FacesBetweenSemisolidBrushesAreLeftOut) {
  const auto column = [](const std::string& name, double from, double to, const char* texture) {
    return test::BoxActor(name, test::AddBox({200, 200, from}, {300, 300, to}), " CsgOper=CSG_Add\n PolyFlags=32",
                          texture);
  };
  Convert(room + lamp + column("Foot", 0, 200, "brick") + column("Shaft", 200, 525, "brick"));
  EXPECT_EQ(converted_.Result.Faces, 6 + 4 + 4);
  Convert(room + lamp + column("Foot", 0, 200, "brick") + column("Shaft", 200, 525, "brick Flags=2"));
  EXPECT_EQ(converted_.Result.Faces, 6 + 5 + 4) << "one looks through a masked shaft";
}

TEST_F(BakedLevelTest, APortalPartsTheAmbientLightOfTwoZones) {
  const std::string lampOfLevel =
      "Begin Actor Class=Light Name=Lamp\n LightRadius=1\n Location=(X=500,Y=500,Z=300)\nEnd Actor\n";
  const std::string zone =
      "Begin Actor Class=ZoneInfo Name=Bright\n AmbientBrightness=128\n Location=(Z=-900)\nEnd Actor\n"
      "Begin Actor Class=PathNode Name=Node\n Region=(Zone=ZoneInfo'MyLevel.Bright',iLeaf=7,"
      "ZoneNumber=1)\n Location=(X=500,Y=1500,Z=200)\nEnd Actor\n";
  const auto countBright = [&](const std::string& portal) {
    Convert(room + lampOfLevel + zone + portal);
    const std::vector<int> light = LightOfMaps();
    EXPECT_LT(std::count_if(light.begin(), light.end(), [](int red) { return red > 5 && red < 120; }), 200);
    return std::count_if(light.begin(), light.end(), [](int red) { return std::abs(red - 128) < 3; });
  };
  // Half of floor and ceiling and of two walls, and one more wall, in texels of 16 units with a rim of two.
  const double inZone = 2 * (66 + 4) * (69 + 2) + 2 * (69 + 2) * (33 + 4) + (66 + 4) * (33 + 4);
  const std::string portal = test::BoxActor("Portal", test::AddBox({0, 999, 0}, {1050, 1001, 525}),
                                            " CsgOper=CSG_Add\n PolyFlags=67108865"); // a portal, and invisible
  EXPECT_NEAR(static_cast<double>(countBright(portal)), inZone, 0.02 * inZone);
  EXPECT_NE(ReportAsJson({converted_.Result}).find("\"zones\": 1,"), std::string::npos);
  EXPECT_GT(static_cast<double>(countBright("")), 1.7 * inZone);
}

TEST_F(BakedLevelTest, WithoutCarvingTheLevelIsMergedAndBareListsAreLeftAlone) {
  settings_.CheckCarve = false;
  Convert(test::BoxActor("Block", test::AddBox({0, 0, 0}, {100, 100, 100}), " CsgOper=CSG_Add") + lamp);
  EXPECT_EQ(Count("//Transform[@DEF='CarvedLevel']//MultiTexture"), 1U);
  const auto bare = test::Convert("Begin PolyList\n Begin Polygon\n  Vertex 0,0,0\n  Vertex 9,0,0\n  Vertex 9,9,0\n"
                                  " End Polygon\nEnd PolyList\n",
                                  settings_);
  EXPECT_NE(bare.Text.find("headlight TRUE"), std::string::npos);
  EXPECT_EQ(bare.Result.Light.Pages, 0U);
}

} // namespace
} // namespace quarvel
