#include "base/ascii_text.h"
#include "images/image_png.h"
#include "tests/core/converted.h"
#include "tests/csg/made_brushes.h"
#include "tests/made_actors.h"

#include <algorithm>
#include <fstream>
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
  std::string Value(const std::string& path) const { return document_.select_node(path.c_str()).attribute().value(); }

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

TEST_F(BakedLevelTest, SurfacesHaveTheirTextureAndALightMap) {
  Convert(room + lamp);
  EXPECT_EQ(Value("//NavigationInfo/@headlight"), "false");
  EXPECT_EQ(Count("//Material | //PointLight"), 0U);
  EXPECT_EQ(Value("//MultiTexture/@mode"), "\"MODULATE\" \"MODULATE\"");
  EXPECT_EQ(Value("//MultiTexture/ImageTexture[2]/@url"), "\"levelLight0.png\"");
  EXPECT_EQ(Value("//MultiTexture/ImageTexture[2]/@repeatS"), "false");
  EXPECT_EQ(Count("//MultiTextureCoordinate/TextureCoordinate"), 2U);
  EXPECT_EQ(Count("//Color | //ColorRGBA"), 0U);
  // VRML97 has no light maps: there the corners have colours.
  EXPECT_EQ(converted_.Text.find("MultiTexture"), std::string::npos);
  EXPECT_NE(converted_.Text.find("color Color"), std::string::npos);
  EXPECT_NE(converted_.Text.find("colorIndex"), std::string::npos);

  EXPECT_GT(LightOfMaps().back(), 150);
  EXPECT_EQ(converted_.Result.Light.Lamps, 1U);
  EXPECT_EQ(converted_.Result.Light.Pages, 1U);
}

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

TEST_F(BakedLevelTest, AmbientLightIsInTheMaps) {
  Convert(room + lamp + "Begin Actor Class=LevelInfo Name=Info\n AmbientBrightness=51\nEnd Actor\n");
  EXPECT_EQ(DarkestLight(), 51);
  EXPECT_FALSE(Found(FindingCode::LightRaised));
}

TEST_F(BakedLevelTest, NoLevelIsLeftInTheDark) {
  const std::string glow = "Begin Actor Class=Light Name=Glow\n Location=(X=500,Y=500,Z=300)\n LightBrightness=9\n"
                           " LightRadius=8\nEnd Actor\n";
  Convert(room + glow);
  EXPECT_TRUE(Found(FindingCode::LightRaised));
  EXPECT_EQ(DarkestLight(), 26);
  Convert(room + "Begin Actor Class=TriggerLight Name=Switched\nEnd Actor\n");
  EXPECT_TRUE(Found(FindingCode::NoLampsToBake));
  EXPECT_EQ(converted_.Result.Light.Pages + Count("//MultiTexture"), 0U);
  EXPECT_EQ(Value("//NavigationInfo/@headlight"), "true");
}

TEST_F(BakedLevelTest, MovingTexturesMoveAboveAMapThatStandsStill) {
  settings_.OptionFlux = true;
  Convert(
      test::BoxActor("Room", test::SubtractBox({0, 0, 0}, {1050, 2100, 525}), " CsgOper=CSG_Subtract\n PolyFlags=512") +
      lamp);
  EXPECT_EQ(Value("//MultiTextureTransform/TextureTransform[1]/@DEF"), "TEXTRANSU");
  EXPECT_EQ(Count("//MultiTextureTransform/TextureTransform"), 2U);
  EXPECT_NE(converted_.Text.find("#X3D V3.3"), std::string::npos);
  EXPECT_NE(converted_.Text.find("mode [\"MODULATE\" \"MODULATE\"]"), std::string::npos);
}

TEST_F(BakedLevelTest, MoversMasksGlassAndUnlitSurfacesAreNeitherBlackNorWashedOut) {
  const auto block = [](const char* name, double x, const char* keys) {
    return test::BoxActor(name, test::AddBox({x, 105, 0}, {x + 50, 210, 105}), keys, "crate");
  };
  Convert(room + lamp + block("Unlit", 100, " CsgOper=CSG_Add\n PolyFlags=4194304") +
          block("Glass", 200, " CsgOper=CSG_Add\n PolyFlags=12") +
          block("Mask", 300, " CsgOper=CSG_Add\n PolyFlags=10"));
  EXPECT_EQ(Count("//Material"), 0U);
  EXPECT_EQ(Count("//Shape[.//MultiTexture]"), 3U) << "all but the unlit one";
  EXPECT_EQ(Count("//Shape[.//MultiTexture]//ColorRGBA[@color='1 1 1 0.5']"), 1U) << "the glass";
  EXPECT_EQ(Count("//Shape[.//MultiTexture]//ColorRGBA[@color='1 1 1 1']"), 1U) << "the mask";
  std::string mover = block("Door", 500, "");
  mover.replace(mover.find("Class=Brush"), 11, "Class=Mover");
  Convert(room + lamp + mover);
  EXPECT_EQ(Count("//Shape[.//Color and not(.//MultiTexture)]"), 1U);
  EXPECT_EQ(Count("//Material"), 0U);
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
