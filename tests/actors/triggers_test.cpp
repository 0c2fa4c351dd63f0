#include "actors/triggers.h"
#include "t3d/trigger_records.h"
#include "tests/made_actors.h"
#include "tests/scene/scene_fixture.h"

namespace quarvel {
namespace {

class Triggers : public test::SceneFixture {
 protected:
  Triggers() { Begin(); }
  /// Reads the level, links the Tag's time to the node "Target", and returns the routes into and out of scripts and
  /// nodes.
  std::vector<std::string> RoutesTo(const std::string& level, const std::string& tag,
                                    const std::string& field = "enterTime") {
    const T3DLevel text(level);
    linked_ = ReadTriggers(*context_, {}, text);
    Scene().Define("Target");
    NoteLink(linked_, tag, field, "Target", field == "isActive" ? "set_on" : "startTime");
    WriteTriggersAndLinks(*context_, linked_);
    std::vector<std::string> routes;
    for (const Route& route : Scene().PendingRoutes()) {
      EXPECT_TRUE(route.InText) << route.FromNode;
      routes.push_back(route.FromNode + "." + route.FromField + " TO " + route.ToNode + "." + route.ToField);
    }
    return routes;
  }

  using Routes = std::vector<std::string>;

  TriggerList linked_;
};

TEST_F(Triggers, LinkByEventAndTagWithoutRegardToCase) {
  const std::string level = test::Actor("Trigger Name=A", "    Event=Door") +
                            test::Actor("Trigger Name=B", "    Event=\"dOOR\"") +
                            test::Actor("Trigger Name=C", "    Event=Doors") + test::Actor("Trigger Name=D");
  EXPECT_EQ(RoutesTo(level, "DOOR"), (Routes{"A.enterTime TO Target.startTime", "B.enterTime TO Target.startTime"}));
  EXPECT_FALSE(NoteLink(linked_, "", "enterTime", "Target", "startTime")) << "an empty Tag is nobody's event";
  EXPECT_FALSE(NoteLink(linked_, "Lamp", "enterTime", "Target", "startTime"));
}

TEST_F(Triggers, CutCirclesOfDispatchers) {
  const std::string level =
      test::Actor("Trigger Name=A", "    Event=a") +
      test::Actor("Dispatcher Name=D1", "    Tag=a\r\n    OutDelays(0)=1\r\n    OutEvents(0)=b\r\n    OutEvents(1)=a") +
      test::Actor("Dispatcher Name=D2",
                  "    Tag=b\r\n    OutDelays(0)=1\r\n    OutEvents(0)=a\r\n    OutEvents(1)=bell");
  EXPECT_EQ(RoutesTo(level, "bell"),
            (Routes{"SCRIPTD2.enterTime1_changed TO Target.startTime", "A.enterTime TO SCRIPTD1.set_enterTime",
                    "SCRIPTD1.enterTime0_changed TO SCRIPTD2.set_enterTime"}));
  EXPECT_TRUE(test::Reports(report_, "D1", "circle"));
  EXPECT_TRUE(test::Reports(report_, "D2", "circle"));
}

TEST_F(Triggers, KeepTheirPathWhenACircleIsCutForAnother) {
  const std::string level =
      test::Actor("Trigger Name=A", "    Event=a") + test::Actor("Trigger Name=B", "    Event=b") +
      test::Actor("Dispatcher Name=D1", "    Tag=a\r\n    OutDelays(0)=1\r\n    OutEvents(0)=b\r\n"
                                        "    OutEvents(1)=bell") +
      test::Actor("Dispatcher Name=D2", "    Tag=b\r\n    OutDelays(0)=2\r\n    OutEvents(0)=a");
  const Routes routes = RoutesTo(level, "bell");
  for (const char* route : {"A.enterTime TO SCRIPTD1.set_enterTime", "B.enterTime TO SCRIPTD2.set_enterTime",
                            "SCRIPTD2.enterTime0_changed TO SCRIPTD1_2.set_enterTime"})
    EXPECT_EQ(std::count(routes.begin(), routes.end(), route), 1) << route;
  EXPECT_EQ(routes.size(), 7U) << "and each of the two bells by a timer of its own";
  EXPECT_TRUE(test::Reports(report_, "D2", "circle"));
}

TEST_F(Triggers, ThatComeAgainLaterDoNotReplaceOneAnother) {
  const std::string level =
      test::Actor("Trigger Name=A", "    Event=go") +
      test::Actor("Dispatcher Name=D", "    Tag=go\r\n    OutEvents(0)=bell\r\n    OutDelays(1)=0.1\r\n"
                                       "    OutEvents(1)=bell\r\n    OutDelays(2)=0.2\r\n    OutEvents(2)=bell");
  const Routes routes = RoutesTo(level, "bell");
  for (const char* route :
       {"A.enterTime TO Target.startTime", "SCRIPTD.enterTime1_changed TO SCRIPTDTIMER1.startTime",
        "SCRIPTDTIMER1.cycleTime TO Target.startTime", "SCRIPTDTIMER2.cycleTime TO Target.startTime"})
    EXPECT_EQ(std::count(routes.begin(), routes.end(), route), 1) << route;
  EXPECT_NE(Text().find("enterTime2_changed = value + 0.3;"), std::string::npos) << "no noise of the sum";
  EXPECT_NE(Text().find("DEF SCRIPTDTIMER2 TimeSensor {"), std::string::npos);
}

/// So many that each linked to each would fill the memory: by one event, through dispatchers, and with delays.
TEST_F(Triggers, GrowWithTheirEndsNotWithTheProduct) {
  std::string level;
  for (int i = 0; i < 3000; ++i)
    level += test::Actor("Trigger Name=T" + std::to_string(i), "    Event=go");
  for (int i = 0; i < 200; ++i) {
    const std::string number = std::to_string(i);
    level += test::Actor("Dispatcher Name=D" + number, "    Tag=go\r\n    OutEvents(0)=fan" + number +
                                                           "\r\n    OutDelays(1)=1\r\n    OutEvents(1)=go2");
  }
  linked_ = ReadTriggers(*context_, {}, T3DLevel(level));
  Scene().Define("Target");
  for (int i = 0; i < 3000; ++i) {
    NoteLink(linked_, "go", "enterTime", "Target", "startTime");
    NoteLink(linked_, "go", "isActive", "Target", "set_on");
    NoteLink(linked_, "go2", "enterTime", "Target", "startTime");
    NoteLink(linked_, "fan" + std::to_string(i), "enterTime", "Target", "startTime");
  }
  WriteTriggersAndLinks(*context_, linked_);
  EXPECT_LT(Scene().PendingRoutes().size(), 20000U);
  EXPECT_TRUE(test::Reports(report_, "go", "one script passes it on"));
  EXPECT_NE(Text().find("DEF RELAYgo Script {\neventIn  SFTime  set_enterTime\neventIn  SFBool  set_isActive\n"
                        "eventOut SFTime  enterTime_changed\neventOut SFBool  isActive_changed\n"),
            std::string::npos);
  EXPECT_TRUE(Element("//Script[@DEF='RELAYgo']"));
  for (const char* part :
       {"ROUTE T2999.isActive TO RELAYgo.set_isActive\n", "ROUTE RELAYgo.isActive_changed TO Target.set_on\n",
        "DEF RELAYgo2 Script {\neventIn  SFTime  set_enterTime\n",
        "ROUTE RELAYgo2.enterTime_changed TO Target.startTime\n"})
    EXPECT_NE(Text().find(part), std::string::npos) << part;
}

} // namespace
} // namespace quarvel
