#include "actors/lights.h"
#include "actors/triggers.h"
#include "tests/actors/actor_fixture.h"

namespace quarvel {
namespace {

class Lights : public ActorTest {
 protected:
  Lights() {
    Settings.CheckOutputStaticLights = true;
    Settings.TextLightRadiusScale = {"1", 1};
  }
  static LightRecord Light() {
    LightRecord light;
    light.Header.Class = light.Header.Tag = "Light";
    light.Header.Name = "Light0";
    light.Location = {1.5, 2.5, 3.5};
    light.LightBrightness = 51;
    light.LightRadius = 9;
    return light;
  }
  static LightRecord LightWithSprite() {
    LightRecord light = Light();
    light.Display.Texture = "Texture'Pkg.Fx.flame'";
    light.Display.Style = "sty_translucent";
    light.Display.DrawScale = 0.5;
    return light;
  }
  bool TextHas(const char* part) { return Text().find(part) != std::string::npos; }
  bool DocumentHas(const char* part) { return Document().find(part) != std::string::npos; }
};

constexpr const char* pointFields = "    {\n location 1.5 3.5 2.5\n  intensity 0.2\n  color 1 1 1\n  radius 10\n"
                                    "  attenuation 0 1 0\n  on TRUE\n    }\n";

TEST_F(Lights, ArePointLightsAtTheirPlace) {
  EXPECT_EQ(WriteLight(Context(), Light()), "Light0");
  EXPECT_EQ(Text(), std::string("    DEF Light0 PointLight\n") + pointFields);
  EXPECT_EQ(
      Document(),
      "<Group><PointLight DEF=\"Light0\" location=\"1.5 3.5 2.5\" intensity=\"0.2\" color=\"1 1 1\" radius=\"10\" "
      "attenuation=\"0 1 0\" on=\"true\"/></Group>");
}

TEST_F(Lights, StandInATransformWhenTheOptionSaysSo) {
  Settings.CheckLightTransform = true;
  LightRecord light = Light();
  light.Header.Tag = "crane lamp";
  WriteLight(Context(), light);
  EXPECT_EQ(Text(), "DEF L_crane_lamp Transform {\n translation 1.5 3.5 2.5\n children [\n    DEF Light0 PointLight\n  "
                    "  {\n  intensity 0.2\n"
                    "  color 1 1 1\n  radius 10\n  attenuation 0 1 0\n  on TRUE\n    }\n  ]\n}\n");
  EXPECT_TRUE(DocumentHas(
      "<Transform DEF=\"L_crane_lamp\" translation=\"1.5 3.5 2.5\"><PointLight DEF=\"Light0\" location=\"0 0 0\""));
}

TEST_F(Lights, OfOneTagHaveTransformsOfTheirOwnNames) {
  Settings.CheckLightTransform = true;
  LightRecord light = Light();
  light.Header.Tag = "lamp";
  WriteLight(Context(), light);
  light.Header.Name = "Light1";
  WriteLight(Context(), light);
  EXPECT_TRUE(TextHas("DEF L_lamp Transform"));
  EXPECT_TRUE(TextHas("DEF L_lamp_2 Transform"));
}

TEST_F(Lights, HaveTheFieldsOfTheirKind) {
  LightRecord light = Light();
  light.Kind = LightKind::Spot;
  light.Rotation = {-8192, 16384, 0}; // along the editor's Y axis, and down
  WriteLight(Context(), light);
  EXPECT_TRUE(TextHas(
      "  radius 10\n  direction 0.0 -0.707107 0.707107\n  cutOffAngle 0.392699\n  beamWidth 0.788478\n  on TRUE\n"))
      << Text();
  light.Kind = LightKind::Directional;
  light.Header.Name = "Sun";
  light.Rotation = {};
  WriteLight(Context(), light);
  EXPECT_TRUE(
      DocumentHas("<DirectionalLight DEF=\"Sun\" intensity=\"0.2\" color=\"1 1 1\" direction=\"1 0 0\" on=\"true\"/>"))
      << Document();
}

TEST_F(Lights, KeepTheBeamWithinTheConeWhenConforming) {
  Settings.CheckConforming = true;
  LightRecord light = Light();
  light.Kind = LightKind::Spot;
  WriteLight(Context(), light);
  EXPECT_TRUE(TextHas("  cutOffAngle 0.392699\n  beamWidth 0.392699\n"));
}

TEST_F(Lights, TakeTheIntensityAsTyped) {
  Settings.OptionIntensityHack = false;
  Settings.OptionIntensityOverride = true;
  Settings.TextLightIntensity = {".50", 0.5};
  LightRecord light = Light();
  light.LightBrightness = 255.0 / 4;
  WriteLight(Context(), light);
  EXPECT_TRUE(TextHas("  intensity .50\n  color 0.500979 0.500979 0.500979\n")) << Text();
}

TEST_F(Lights, ThatAreStaticOrBlackAreLeftOutAsTheOptionsSay) {
  Settings.CheckOutputStaticLights = false;
  Settings.CheckIgnoreBlackLight = true;
  EXPECT_EQ(WriteLight(Context(), Light()), "");
  EXPECT_EQ(Findings.Counts().size(), 1u);
  LightRecord black = Light();
  black.bDynamicLight = true;
  black.LightBrightness = 0;
  EXPECT_EQ(WriteLight(Context(), black), "");
  EXPECT_EQ(Text(), "");
  WriteLight(Context(), LightWithSprite());
  EXPECT_FALSE(TextHas("PointLight"));
  EXPECT_TRUE(TextHas("DEF L_Light0 Transform {\n translation 1.5 3.5 2.5\n children [\nBillboard {\n"));
}

TEST_F(Lights, OutOfRangeAreClamped) {
  LightRecord light = Light();
  light.LightBrightness = 999;
  light.LightRadius = -5;
  WriteLight(Context(), light);
  EXPECT_TRUE(TextHas("  intensity 1\n"));
  EXPECT_TRUE(TextHas("  radius 0\n"));
  EXPECT_TRUE(Reported("Light0", "out of range"));
}

TEST_F(Lights, FlickerByAScriptBesideThem) {
  Settings.CheckOutputStaticLights = false;
  LightRecord light = Light();
  light.LightEffect = "lt_Flicker";
  WriteLight(Context(), light);
  EXPECT_EQ(
      Text(),
      std::string("    DEF Light0 PointLight\n") + pointFields +
          "DEF L_Light0SCRIPT Script {\neventIn  SFFloat  set_time\neventOut SFBool  bool_changed\nurl \"javascript:\n"
          "  function set_time(value,time) {\n     bool_changed = (Math.random() > .5);\n  }\n\"\n}\n"
          "DEF FlickerTimer TimeSensor {\n cycleInterval 1\n loop TRUE\n enabled TRUE\n}\n"
          "ROUTE L_Light0SCRIPT.bool_changed TO Light0.set_on\nROUTE FlickerTimer.fraction_changed TO "
          "L_Light0SCRIPT.set_time\n");
  EXPECT_TRUE(DocumentHas("<field name=\"set_time\" type=\"SFBool\" accessType=\"inputOnly\"/>"));
}

TEST_F(Lights, FlickerWithinTheirTransformAndAreRoutedBehindIt) {
  Settings.CheckConforming = Settings.CheckLightTransform = true;
  LightRecord light = Light();
  light.LightEffect = "LT_FLICKER";
  WriteLight(Context(), light);
  EXPECT_TRUE(Text().ends_with(" enabled TRUE\n}\n  ]\n}\nROUTE L_Light0SCRIPT.bool_changed TO Light0.set_on\n"
                               "ROUTE L_Light0TIMER.fraction_changed TO L_Light0SCRIPT.set_time\n"))
      << Text();
  EXPECT_TRUE(DocumentHas("<field name=\"set_time\" type=\"SFFloat\" accessType=\"inputOnly\"/>"));
  EXPECT_TRUE(DocumentHas(
      "<TimeSensor DEF=\"L_Light0TIMER\" cycleInterval=\"1\" loop=\"true\" enabled=\"true\"/></Transform>"));
}

TEST_F(Lights, CarryTheirSpriteInTheirTransform) {
  WriteLight(Context(), LightWithSprite());
  EXPECT_TRUE(TextHas("    }\nBillboard {\n axisOfRotation 0 0 0\n children [\n Collision {\n  collide FALSE\n   "
                      "children [\n    Shape {\n"
                      "      appearance DEF T_Pkg_Fx_flame Appearance {\n"))
      << Text();
  EXPECT_TRUE(TextHas("          transparency .5\n"));
  EXPECT_TRUE(Text().ends_with("     geometry Box { size 16 16 0.0001 }\n    }\n   ]\n  }\n ]\n}\n  ]\n}\n"))
      << "an image of unknown size counts as 32 x 32";
  EXPECT_TRUE(DocumentHas("<Billboard axisOfRotation=\"0 0 0\"><Collision collide=\"false\"><Shape>"));
}

TEST_F(Lights, HaveTheirSpriteInATransformOfItsOwnWhenTheyAreWrapped) {
  Settings.CheckLightTransform = true;
  WriteLight(Context(), LightWithSprite());
  EXPECT_TRUE(TextHas(
      "  on TRUE\n    }\n  ]\n}\nDEF L_Light0 Transform {\n translation 1.5 3.5 2.5\n children [\nBillboard {\n"))
      << Text();
}

TEST_F(Lights, WithASoundGiveItAPlaceOfItsOwn) {
  LightRecord light = Light();
  light.Sound.AmbientSound = "Sound'A.fire'";
  WriteLight(Context(), light);
  EXPECT_TRUE(TextHas("    }\nTransform {\n translation 1.5 3.5 2.5\n children [\nDEF S_S_Light0 Sound {\n")) << Text();
  EXPECT_TRUE(TextHas("  source DEF S_Light0 AudioClip  {\n   loop TRUE\n"));
  Settings.CheckLightTransform = true;
  light.Header.Name = "Light1";
  WriteLight(Context(), light);
  EXPECT_TRUE(TextHas("  on TRUE\n    }\nDEF S_S_Light1 Sound {\n"));
}

TEST_F(Lights, ThatAreTriggeredAreSwitched) {
  Settings.CheckOutputStaticLights = false;
  const std::string text = ActorText("Trigger Name=T", "    Event=lamp");
  Linked = ReadTriggers(Context(), {}, T3DLevel(text));
  TriggerLightRecord light;
  static_cast<LightRecord&>(light) = Light();
  light.Header.Tag = "Lamp";
  WriteTriggerLight(Context(), Linked, light);
  EXPECT_TRUE(TextHas("  on FALSE\n"));
  WriteTriggersAndLinks(Context(), Linked);
  EXPECT_TRUE(Text().ends_with("ROUTE T.isActive TO Light0.set_on\n"));
  EXPECT_TRUE(Findings.Findings().empty());
  light.Header.Tag = "Nobody";
  WriteTriggerLight(Context(), Linked, light);
  EXPECT_TRUE(Reported("Light0", "no trigger reaches it"));
}

TEST_F(Lights, OfTheAmbienceReachTheWholeLevel) {
  Settings.CheckOutputStaticLights = false;
  Settings.TextAmbientInfluence = {"0.5", 0.5};
  Settings.TextScale = {"0.5", 0.5};
  ZoneBlock zone;
  zone.AmbientBrightness = 51;
  WriteGlobalAmbientLight(Context(), zone, {{-1, -2, -4}, {1, 2, 5.5}});
  EXPECT_TRUE(TextHas("DEF GlobalAmbientLight PointLight\n    {\n location 0 0.0 0.75\n  ambientIntensity 0.1\n  "
                      "intensity 0\n  color 1 1 1\n"
                      "  radius 5.25\n  on TRUE\n"))
      << Text();
}

TEST_F(Lights, OfFlaresAreSpritesOnly) {
  DisplayRecord flare;
  flare.Header.Name = flare.Header.Tag = "Flare0";
  WriteFlare(Context(), flare);
  EXPECT_EQ(Text(), "");
  flare.Display = LightWithSprite().Display;
  WriteFlare(Context(), flare);
  EXPECT_EQ(Text().find("DEF L_Flare0 Transform {\n translation 0 0 0\n children [\nBillboard {\n"), 0u) << Text();
}

TEST_F(Lights, AreNamedByATagThatSaysSomething) {
  EXPECT_EQ(LightDefName({.Class = "", .Name = "Light3", .Tag = "spotLIGHT", .Event = "", .Region = ""}), "L_Light3");
  EXPECT_EQ(LightDefName({.Class = "", .Name = "Light3", .Tag = "", .Event = "", .Region = ""}), "L_Light3");
  EXPECT_EQ(LightDefName({.Class = "", .Name = "Light3", .Tag = "lamp", .Event = "", .Region = ""}), "L_lamp");
}

} // namespace
} // namespace quarvel
