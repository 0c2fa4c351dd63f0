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

TEST_F(Teleporters, SendThoseWhoEnterToTheDestination) {
  Settings.TextTeleHtOff = {"10", 10};
  Write({Make("A", "Top", "bottom"), Make("B", "Bottom", "")});
  EXPECT_TRUE(Wrote("DEF V_A Viewpoint {\n  position 41.4 0 0\n")) << Text();
  EXPECT_TRUE(Wrote("DEF TeleA ProximitySensor {\n center 0 10 0\n size 18 160 36\n")) << Text();
  EXPECT_TRUE(
      Wrote("DEF SCRIPTTeleA Script {\n eventIn SFBool set_view_changed\n eventOut SFBool go_inchanged\n"
            " eventOut SFBool go_outchanged\n url \"javascript:\n  function set_view_changed(value,time) {\n"
            "    if (value)\n    {\n     go_inchanged = true;\n     go_outchanged = false;\n    }\n  }\n \"\n}\n"));
  EXPECT_TRUE(Wrote("ROUTE TeleA.isActive TO SCRIPTTeleA.set_view_changed\n"));
  EXPECT_TRUE(Wrote("ROUTE SCRIPTTeleA.go_outchanged TO V_A.set_bind\n"));
  EXPECT_TRUE(Leads("A", "B"));
  EXPECT_TRUE(Wrote("ROUTE SCRIPTTeleB.go_outchanged TO V_B.set_bind\n"));
  EXPECT_FALSE(Wrote("ROUTE SCRIPTTeleB.go_inchanged"));
  EXPECT_TRUE(Findings.Findings().empty());
}

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

TEST_F(Teleporters, OnesThatCanBeSeenShareOneModelAndOneTurn) {
  std::vector<TeleporterRecord> teleporters{Make("A", "", ""), Make("B", "", "")};
  teleporters[0].IsVisible = teleporters[1].IsVisible = true;
  Write(teleporters);
  EXPECT_TRUE(Wrote("Collision {\n collide FALSE\n children [\n  DEF VISTELEPORT0 Transform {\n   translation 0 0 0\n"
                    "   scale .5 .5 .5\n   children [\n    Inline {\n     url [\"TheVisTeleporter.wrl\"]\n    }\n   ]\n"
                    "  }\n ]\n}\n"))
      << Text();
  EXPECT_TRUE(Wrote("DEF VISTELEPORTTIMER TimeSensor {\n cycleInterval 1\n loop TRUE\n enabled TRUE\n}\n"
                    "DEF VISTELEPORTROTINT OrientationInterpolator {\n key [0 0.333333 0.666666 1]\n"
                    " keyValue [0 1 0 0, 0 1 0 2.0944, 0 1 0 4.18879, 0 1 0 0]\n}\n"));
  EXPECT_EQ(Text().find("DEF VISTELEPORTTIMER"), Text().rfind("DEF VISTELEPORTTIMER"));
  EXPECT_TRUE(Wrote("ROUTE VISTELEPORTROTINT.value_changed TO VISTELEPORT1.set_rotation\n"));
  EXPECT_NE(Document().find("<Inline url=\"TheVisTeleporter.x3d\"/>"), std::string::npos);
  EXPECT_EQ(Context().Resources.Missing()[ResourceKind::Mesh].size(), 2u) << "there is no such file in this test";
}

TEST_F(Teleporters, AreNotSeenWithoutMeshes) {
  Settings.CheckDoMeshes = false;
  std::vector<TeleporterRecord> teleporters{Make("A", "", "")};
  teleporters[0].IsVisible = true;
  Write(teleporters);
  EXPECT_FALSE(Wrote("VISTELEPORT"));
  EXPECT_TRUE(Context().Resources.Missing()[ResourceKind::Mesh].empty());
}

TEST_F(Teleporters, WorkAgainInAConformingScene) {
  Settings.CheckConforming = true;
  Write({Make("A", "", "b"), Make("B", "b", "")});
  EXPECT_TRUE(Wrote("     if (again) go_againchanged = false;\n"));
  EXPECT_TRUE(Wrote("ROUTE SCRIPTTeleA.go_againchanged TO V_B.set_bind\n"));
  EXPECT_TRUE(Wrote("ROUTE V_B.isBound TO SCRIPTTeleA.destination_bound\n"));
  EXPECT_FALSE(Wrote("SCRIPTTeleB.go_againchanged"));
}

} // namespace
} // namespace quarvel
