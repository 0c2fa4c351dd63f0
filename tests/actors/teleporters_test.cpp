#include "actors/teleporters.h"
#include "tests/core/converted.h"
#include "tests/made_actors.h"

#include <cmath>
#include <gtest/gtest.h>

namespace quarvel {
namespace {

TEST(Teleporters, LeadOutsideTheSensorThatSendsVisitorsAway) {
  for (const double yaw : {0.0, 8192.0, 16384.0, -12288.0}) {
    TeleporterRecord teleporter;
    teleporter.Rotation = {-16384, yaw, 0};
    const Vector3 at = ArrivalPlace(teleporter).Location;
    EXPECT_TRUE(std::fabs(at.X) > 9 || std::fabs(at.Y) > 18) << "the sensor is 18 wide and 36 deep";
    EXPECT_EQ(at.Z, 0);
  }
}

TEST(Teleporters, OfOneTagThatLeadToItLeadToEachOther) {
  std::string level = "Begin Map\n";
  for (const char* name : {"T1", "T2"})
    level += test::Actor(std::string("Teleporter Name=") + name,
                         "Tag=\"Ring\"\nURL=\"#Ring\"\nName=\"" + std::string(name) + "\"");
  const std::string text = test::Convert(level + "End Map\n").Text;
  for (const char* route :
       {"ROUTE SCRIPTTeleT1.go_inchanged TO V_T2.set_bind", "ROUTE SCRIPTTeleT2.go_inchanged TO V_T1.set_bind"})
    EXPECT_NE(text.find(route), text.npos) << text;
}

} // namespace
} // namespace quarvel
