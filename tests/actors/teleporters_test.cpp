#include "actors/teleporters.h"

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

} // namespace
} // namespace quarvel
