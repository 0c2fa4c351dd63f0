#include "actors/viewpoints.h"
#include "tests/scene/scene_fixture.h"

namespace quarvel {
namespace {

using Viewpoints = test::SceneFixture;

TEST_F(Viewpoints, TheDefaultOneStandsInTheSensorThatBindsIt) {
  settings_.OptionDefViewAsProxSensor = true;
  settings_.TextScale = {"1", 1};
  Begin();
  WriteDefaultViewpoint(*context_, PlaceAbove({{0, 0, 0}, {100, 10, 50}}, SceneSpace(1)), {{0, 0, 0}, {100, 10, 50}});
  // Half the width is seen at a slope of tan(0.4375) from 106.9 above the top.
  EXPECT_NE(Text().find("  position 50 116.899274"), std::string::npos) << Text();
  EXPECT_NE(Text().find(" center 50 58.449637"), std::string::npos) << Text();
  EXPECT_NE(Text().find("ROUTE PROXSENSORDEFAULTVIEW.isActive TO V_DefaultViewpoint.set_bind\n"), std::string::npos);
}

} // namespace
} // namespace quarvel
