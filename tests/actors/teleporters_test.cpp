#include "actors/teleporters.h"
#include "tests/actors/actor_fixture.h"

#include <cmath>

namespace quarvel {
namespace {

class Teleporters : public ActorTest {
 protected:
  static TeleporterRecord Make(const std::string& name, const std::string& tag, const std::string& url) {
    TeleporterRecord teleporter;
    teleporter.Header.Name = name;
    teleporter.Header.Tag = tag;
    teleporter.URL = url;
    return teleporter;
  }
  void Write(const std::vector<TeleporterRecord>& teleporters) { WriteTeleporters(Context(), teleporters, "Marsh"); }
  bool Wrote(const std::string& part) { return Text().find(part) != std::string::npos; }
  bool Leads(const std::string& from, const std::string& to) {
    return Wrote("ROUTE SCRIPTTele" + from + ".go_inchanged TO V_" + to + ".set_bind\n");
  }
};

TEST_F(Teleporters, ArriveOutsideTheirOwnSensor) {
  for (const double yaw : {0.0, 8192.0, 16384.0, -12288.0}) {
    TeleporterRecord teleporter = Make("A", "", "");
    teleporter.Rotation = {-16384, yaw, 0};
    const Vector3 at = ArrivalPlace(teleporter).Location;
    EXPECT_TRUE(std::fabs(at.X) > 9 || std::fabs(at.Y) > 18) << "the sensor is 18 wide and 36 deep";
    EXPECT_EQ(at.Z, 0);
  }
}

TEST_F(Teleporters, TakeURLsApart) {
  const auto parts = [](const char* url) {
    const TeleportTarget target = ParseTeleportURL(url);
    return target.Map + "|" + target.Tag;
  };
  EXPECT_EQ(parts("Top"), "|Top");
  EXPECT_EQ(parts(" #Top "), "|Top");
  EXPECT_EQ(parts("Marsh.unr#ferry?peer"), "Marsh|ferry");
}

TEST_F(Teleporters, ReportDestinationsThatAreNotThere) {
  Write({Make("A", "Top", "Castle.unr#Hall"), Make("B", "Self", "self"), Make("C", "", "MARSH#top"),
         Make("D", "Twin", ""), Make("E", "Twin", "Twin"), Make("F", "", "twin")});
  EXPECT_TRUE(Reported("A", "another level"));
  EXPECT_TRUE(Reported("B", "there is no teleporter"));
  EXPECT_TRUE(Leads("C", "A")) << "the level's own name is no other level";
  EXPECT_TRUE(Leads("E", "D"));
  EXPECT_TRUE(Leads("F", "D"));
  EXPECT_TRUE(Reported("F", "several"));
  EXPECT_FALSE(Reported("E", "several")) << "a teleporter does not lead to itself";
}

} // namespace
} // namespace quarvel
