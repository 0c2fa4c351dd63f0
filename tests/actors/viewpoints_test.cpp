#include "actors/viewpoints.h"
#include "tests/actors/actor_fixture.h"

namespace quarvel {
namespace {

class Viewpoints : public ActorTest {
 protected:
  static PlacementRecord Start(const std::string& tag) {
    PlacementRecord start;
    start.Header.Name = "PlayerStart0";
    start.Header.Tag = tag;
    start.Location = {10, 20, 30};
    return start;
  }
};

TEST_F(Viewpoints, StandAndLookAsTheActorDoes) {
  EXPECT_EQ(WriteViewpoint(Context(), Start("The \"Keep\"")), "V_PlayerStart0");
  EXPECT_EQ(Text(), "DEF V_PlayerStart0 Viewpoint {\n  position 10 30.0 20.0\n  orientation 0 -1 0.0 1.570796\n"
                    "  description \"The ``Keep``\"\n  fieldOfView 0.875\n  jump TRUE\n}\n");
  EXPECT_EQ(Document(), "<Group><Viewpoint DEF=\"V_PlayerStart0\" position=\"10 30.0 20.0\" "
                        "orientation=\"0 -1 0.0 1.570796\" description=\"The ``Keep``\" fieldOfView=\"0.875\" "
                        "jump=\"true\"/></Group>");
  EXPECT_EQ(WriteViewpoint(Context(), Start("")), "V_PlayerStart0_2");
}

TEST_F(Viewpoints, CanStandInAGroup) {
  Settings.CheckGroupCamera = true;
  WriteViewpoint(Context(), Start("Keep"));
  EXPECT_EQ(Text(), "Transform {\n  children [\n    Transform {\n      translation 10 30.0 20.0\n"
                    "    rotation 0 -1 0.0 1.570796\n      children [ DEF V_PlayerStart0 Viewpoint {\n"
                    "        position 0 0 0\n        orientation 0 0 1 0\n        description \"Keep\"\n"
                    "        fieldOfView 0.875\n        jump TRUE\n      } ]\n    }\n  ]\n}\n");
  EXPECT_NE(Document().find("<Transform><Transform translation=\"10 30.0 20.0\" rotation=\"0 -1 0.0 1.570796\">"
                            "<Viewpoint DEF=\"V_PlayerStart0\" position=\"0 0 0\" orientation=\"0 0 1 0\""),
            std::string::npos);
}

TEST_F(Viewpoints, AreCalledByTheirTagUnlessItSaysNothing) {
  EXPECT_EQ(ViewpointDescription(Start("playerSTART").Header), "PlayerStart0");
  EXPECT_EQ(ViewpointDescription(Start("").Header), "PlayerStart0");
  EXPECT_EQ(ViewpointDescription(Start("Keep").Header), "Keep");
}

TEST_F(Viewpoints, FiltersDeclareTheirPrototypeOnce) {
  WriteBooleanFilter(Context(), "A");
  WriteBooleanFilter(Context(), "B");
  EXPECT_EQ(Text(), R"(PROTO BooleanFilter [
   eventIn        SFBool set_boolean
   eventOut     SFBool inputFalse
   eventOut     SFBool inputNegate
   eventOut     SFBool inputTrue
]
{
   Script {
   directOutput TRUE
   eventIn        SFBool set_boolean   IS set_boolean
   eventOut     SFBool inputFalse    IS inputFalse
   eventOut     SFBool inputNegate   IS inputNegate
   eventOut     SFBool inputTrue     IS inputTrue
   url "javascript:
   function set_boolean( bval, curtime ) {
      if( bval ){
         inputTrue = bval;
      }
      else {
         inputFalse = bval;
      }
      inputNegate = !bval;
   }
   "
   }
}
DEF A BooleanFilter {
}
DEF B BooleanFilter {
}
)");
  EXPECT_EQ(Document(), "<Group><Viewpoint DEF=\"A\"/><Viewpoint DEF=\"B\"/></Group>");
}

TEST_F(Viewpoints, FiltersAreNodesOfX3D) {
  Settings.OptionFlux = true;
  Settings.CheckConforming = true;
  WriteBooleanFilter(Context(), "A");
  EXPECT_EQ(Text(), "DEF A BooleanFilter {\n}\n");
  EXPECT_EQ(Document(), "<Group><BooleanFilter DEF=\"A\"/></Group>");
}

TEST_F(Viewpoints, TheDefaultOneIsBoundByAScript) {
  WriteDefaultViewpoint(Context(), Start("Keep"), InitBounds());
  EXPECT_NE(Text().find("description \"Default Viewpoint\""), std::string::npos);
  EXPECT_NE(Text().find("    bind_changed = true;\n"), std::string::npos);
  EXPECT_NE(Text().find("ROUTE SCRIPTDEFAULTVIEW.bind_changed TO V_DefaultViewpoint.set_bind\n"), std::string::npos);
}

/// A box as the numbers of a sensor's fields.
std::string SensorFields(const std::string& center, const std::string& size) {
  return " center " + center + "\n size " + size + "\n";
}

TEST_F(Viewpoints, TheDefaultOneStandsInTheSensorThatBindsIt) {
  Settings.OptionDefViewAsProxSensor = true;
  WriteDefaultViewpoint(Context(), PlaceAbove({{0, 0, 0}, {100, 10, 50}}, SceneSpace(1)), {{0, 0, 0}, {100, 10, 50}});
  // Half the width is seen at a slope of tan(0.4375) from 106.9 above the top.
  EXPECT_NE(Text().find("  position 50 116.899274"), std::string::npos) << Text();
  EXPECT_NE(Text().find(" center 50 58.449637"), std::string::npos) << Text();
  EXPECT_NE(Text().find("ROUTE PROXSENSORDEFAULTVIEW.isActive TO V_DefaultViewpoint.set_bind\n"), std::string::npos);
}

TEST_F(Viewpoints, TheSensorCanHaveAGivenSize) {
  Settings.OptionDefViewAsProxSensor = true;
  Settings.OptionDefViewPSAuto = false;
  Settings.OptionDefViewPSSize = true;
  Settings.TextVProxSizeX = {"4", 4};
  Settings.TextVProxSizeY = {"6", 6};
  Settings.TextVProxSizeZ = {"8", 8};
  WriteDefaultViewpoint(Context(), Start(""), {{0, 0, 0}, {1, 1, 1}});
  EXPECT_NE(Text().find(SensorFields("10 30.0 20.0", "4 6 8")), std::string::npos) << Text();
}

} // namespace
} // namespace quarvel
