#include "actors/triggers.h"
#include "tests/actors/actor_fixture.h"

namespace quarvel {
namespace {

class Triggers : public ActorTest {
 protected:
  /// Reads the level, links the Tag's time to the node "Target", and returns the routes into and out of scripts and
  /// nodes.
  std::vector<std::string> RoutesTo(const std::string& level, const std::string& tag,
                                    const std::string& field = "enterTime") {
    const T3DLevel text(level);
    Linked = ReadTriggers(Context(), {}, text);
    Scene().Define("Target");
    NoteLink(Linked, tag, field, "Target", field == "isActive" ? "set_on" : "startTime");
    WriteTriggersAndLinks(Context(), Linked);
    std::vector<std::string> routes;
    for (const Route& route : Scene().PendingRoutes()) {
      EXPECT_TRUE(route.InText) << route.FromNode;
      routes.push_back(route.FromNode + "." + route.FromField + " TO " + route.ToNode + "." + route.ToField);
    }
    return routes;
  }

  using Routes = std::vector<std::string>;
};

TEST_F(Triggers, AreSensorsOfTheRadiusTheHeightAndTwiceTheRadius) {
  WriteTrigger(Context(), {{100, 20, -5}, 40, 40, false}, "T");
  EXPECT_EQ(Text(), "DEF T ProximitySensor {\n center 100 -5.0 20.0\n size 40 40 80\n enabled FALSE\n}\n");
  EXPECT_EQ(Document(),
            "<Group><ProximitySensor DEF=\"T\" center=\"100 -5.0 20.0\" size=\"40 40 80\" enabled=\"false\"/></Group>");
}

TEST_F(Triggers, StandInATransformWhenTheyAreShown) {
  Settings.CheckShowTriggers = true;
  WriteTrigger(Context(), {{1, 2, 3}, 4, 5, true}, "T");
  EXPECT_EQ(Text(), "Collision {\n collide FALSE\n children [\n  Transform {\n   translation 1 3.0 2.0\n   children [\n"
                    "DEF T ProximitySensor {\n center 0 0 0\n size 4 5 8\n enabled TRUE\n}\n"
                    "    Shape {\n     geometry Box {\n      size 4 5 8\n     }\n     appearance Appearance {\n      "
                    "material Material {\n"
                    "        transparency 0.5\n      }\n     }\n    }\n   ]\n  }\n ]\n}\n");
  EXPECT_EQ(Document(), "<Group><Collision collide=\"false\"><Transform translation=\"1 3.0 2.0\">"
                        "<ProximitySensor DEF=\"T\" center=\"0 0 0\" size=\"4 5 8\" enabled=\"true\"/>"
                        "<Shape><Box size=\"4 5 8\"/><Appearance><Material transparency=\"0.5\"/></Appearance></Shape>"
                        "</Transform></Collision></Group>");
}

TEST_F(Triggers, OfAllThreeClassesAreListedInFileOrder) {
  const std::string text = ActorText("StochasticTrigger Name=S", "    Events(3)=Far\r\n    Event=Near") +
                           ActorText("Trigger Name=T") + ActorText("TriggerSound Name=X") +
                           ActorText("ElevatorTrigger Name=E", "    bInitiallyActive=False");
  Linked = ReadTriggers(Context(), {}, T3DLevel(text));
  const auto& entries = Linked.Entries;
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[0].Name, "S");
  EXPECT_EQ(entries[0].Events, (std::vector<std::string>{"Near", "Far"}));
  EXPECT_EQ(entries[1].Name, "T");
  EXPECT_TRUE(entries[1].Box.Enabled);
  EXPECT_EQ(entries[2].Class, "ElevatorTrigger");
  EXPECT_FALSE(entries[2].Box.Enabled);
}

TEST_F(Triggers, BadSizesAreReported) {
  WriteTrigger(Context(), {{}, -4, 5, true}, "T");
  EXPECT_NE(Text().find(" size 0 5 0\n"), std::string::npos);
  EXPECT_TRUE(Reported("T", "below zero"));
  EXPECT_TRUE(Reported("T", "is zero"));
}

TEST_F(Triggers, LinkByEventAndTagWithoutRegardToCase) {
  const std::string level = ActorText("Trigger Name=A", "    Event=Door") +
                            ActorText("Trigger Name=B", "    Event=\"dOOR\"") +
                            ActorText("Trigger Name=C", "    Event=Doors") + ActorText("Trigger Name=D");
  EXPECT_EQ(RoutesTo(level, "DOOR"), (Routes{"A.enterTime TO Target.startTime", "B.enterTime TO Target.startTime"}));
  EXPECT_FALSE(NoteLink(Linked, "", "enterTime", "Target", "startTime")) << "an empty Tag is nobody's event";
  EXPECT_FALSE(NoteLink(Linked, "Lamp", "enterTime", "Target", "startTime"));
}

TEST_F(Triggers, ReachTargetsThroughDispatchersWithoutDelayDirectly) {
  const std::string level =
      ActorText("Trigger Name=A", "    Event=First") +
      ActorText("Dispatcher Name=D1", "    Tag=first\r\n    OutEvents(2)=Second") +
      ActorText("Dispatcher Name=D2", "    Tag=Second\r\n    OutEvents(0)=Lamp\r\n    OutEvents(1)=Lamp");
  EXPECT_EQ(RoutesTo(level, "Lamp", "isActive"), (Routes{"A.isActive TO Target.set_on"}));
  EXPECT_EQ(Text().find("Script"), std::string::npos);
}

TEST_F(Triggers, AddUpTheDelaysOfADispatcherInAScript) {
  const std::string level =
      ActorText("Trigger Name=A", "    Event=go") +
      ActorText("Dispatcher Name=D",
                "    Tag=go\r\n    OutDelays(0)=0.5\r\n    OutDelays(2)=1\r\n    OutEvents(2)=bell");
  EXPECT_EQ(RoutesTo(level, "bell"),
            (Routes{"SCRIPTD.enterTime2_changed TO Target.startTime", "A.enterTime TO SCRIPTD.set_enterTime"}));
  EXPECT_NE(Text().find("DEF SCRIPTD Script {\neventIn  SFTime  set_enterTime\neventOut SFTime  enterTime2_changed\n"
                        "url \"javascript:\n  function set_enterTime(value,time) {\n     enterTime2_changed = value + "
                        "1.5;\n  }\n\"\n}\n"),
            std::string::npos)
      << Text();
  EXPECT_NE(Document().find("<field name=\"enterTime2_changed\" type=\"SFTime\" accessType=\"outputOnly\"/>"),
            std::string::npos);
}

TEST_F(Triggers, FollowChainsOfDelays) {
  const std::string level = ActorText("Trigger Name=A", "    Event=a") +
                            ActorText("Dispatcher Name=D1", "    Tag=a\r\n    OutDelays(0)=1\r\n    OutEvents(0)=b") +
                            ActorText("Dispatcher Name=D2", "    Tag=b\r\n    OutEvents(0)=c") +
                            ActorText("Dispatcher Name=D3", "    Tag=c\r\n    OutDelays(0)=2\r\n    OutEvents(0)=bell");
  EXPECT_EQ(RoutesTo(level, "bell"),
            (Routes{"SCRIPTD3.enterTime0_changed TO Target.startTime", "A.enterTime TO SCRIPTD1.set_enterTime",
                    "SCRIPTD1.enterTime0_changed TO SCRIPTD3.set_enterTime"}));
}

TEST_F(Triggers, DoNotSwitchALightBehindADelay) {
  const std::string level = ActorText("Trigger Name=A", "    Event=a") +
                            ActorText("Dispatcher Name=D", "    Tag=a\r\n    OutDelays(0)=1\r\n    OutEvents(0)=lamp");
  EXPECT_EQ(RoutesTo(level, "lamp", "isActive"), Routes{});
  EXPECT_TRUE(Reported("Target", "delay"));
  EXPECT_EQ(Text().find("Script"), std::string::npos);
}

TEST_F(Triggers, CutCirclesOfDispatchers) {
  const std::string level =
      ActorText("Trigger Name=A", "    Event=a") +
      ActorText("Dispatcher Name=D1", "    Tag=a\r\n    OutDelays(0)=1\r\n    OutEvents(0)=b\r\n    OutEvents(1)=a") +
      ActorText("Dispatcher Name=D2", "    Tag=b\r\n    OutDelays(0)=1\r\n    OutEvents(0)=a\r\n    OutEvents(1)=bell");
  EXPECT_EQ(RoutesTo(level, "bell"),
            (Routes{"SCRIPTD2.enterTime1_changed TO Target.startTime", "A.enterTime TO SCRIPTD1.set_enterTime",
                    "SCRIPTD1.enterTime0_changed TO SCRIPTD2.set_enterTime"}));
  EXPECT_TRUE(Reported("D1", "circle"));
  EXPECT_TRUE(Reported("D2", "circle"));
}

TEST_F(Triggers, KeepTheirPathWhenACircleIsCutForAnother) {
  const std::string level = ActorText("Trigger Name=A", "    Event=a") + ActorText("Trigger Name=B", "    Event=b") +
                            ActorText("Dispatcher Name=D1", "    Tag=a\r\n    OutDelays(0)=1\r\n    OutEvents(0)=b\r\n"
                                                            "    OutEvents(1)=bell") +
                            ActorText("Dispatcher Name=D2", "    Tag=b\r\n    OutDelays(0)=2\r\n    OutEvents(0)=a");
  const Routes routes = RoutesTo(level, "bell");
  for (const char* route : {"A.enterTime TO SCRIPTD1.set_enterTime", "B.enterTime TO SCRIPTD2.set_enterTime",
                            "SCRIPTD2.enterTime0_changed TO SCRIPTD1_2.set_enterTime"})
    EXPECT_EQ(std::count(routes.begin(), routes.end(), route), 1) << route;
  EXPECT_EQ(routes.size(), 7U) << "and each of the two bells by a timer of its own";
  EXPECT_TRUE(Reported("D2", "circle"));
}

TEST_F(Triggers, ThatComeAgainLaterDoNotReplaceOneAnother) {
  const std::string level =
      ActorText("Trigger Name=A", "    Event=go") +
      ActorText("Dispatcher Name=D", "    Tag=go\r\n    OutEvents(0)=bell\r\n    OutDelays(1)=0.1\r\n"
                                     "    OutEvents(1)=bell\r\n    OutDelays(2)=0.2\r\n    OutEvents(2)=bell");
  const Routes routes = RoutesTo(level, "bell");
  for (const char* route :
       {"A.enterTime TO Target.startTime", "SCRIPTD.enterTime1_changed TO SCRIPTDTIMER1.startTime",
        "SCRIPTDTIMER1.cycleTime TO Target.startTime", "SCRIPTDTIMER2.cycleTime TO Target.startTime"})
    EXPECT_EQ(std::count(routes.begin(), routes.end(), route), 1) << route;
  EXPECT_NE(Text().find("enterTime2_changed = value + 0.3;"), std::string::npos) << "no noise of the sum";
  EXPECT_NE(Text().find("DEF SCRIPTDTIMER2 TimeSensor {"), std::string::npos);
}

TEST_F(Triggers, OfNoneLinkNothing) {
  const std::string level = ActorText("Trigger Name=A", "    Event=None") +
                            ActorText("Dispatcher Name=D", "    Tag=None\r\n    OutEvents(0)=bell");
  EXPECT_EQ(RoutesTo(level, "None"), Routes{});
  EXPECT_FALSE(NoteLink(Linked, "bell", "enterTime", "Target", "startTime"));
}

/// So many that each linked to each would fill the memory: by one event, through dispatchers, and with delays.
TEST_F(Triggers, GrowWithTheirEndsNotWithTheProduct) {
  std::string level;
  for (int i = 0; i < 3000; ++i)
    level += ActorText("Trigger Name=T" + std::to_string(i), "    Event=go");
  for (int i = 0; i < 200; ++i) {
    const std::string number = std::to_string(i);
    level += ActorText("Dispatcher Name=D" + number, "    Tag=go\r\n    OutEvents(0)=fan" + number +
                                                         "\r\n    OutDelays(1)=1\r\n    OutEvents(1)=go2");
  }
  Linked = ReadTriggers(Context(), {}, T3DLevel(level));
  Scene().Define("Target");
  for (int i = 0; i < 3000; ++i) {
    NoteLink(Linked, "go", "enterTime", "Target", "startTime");
    NoteLink(Linked, "go", "isActive", "Target", "set_on");
    NoteLink(Linked, "go2", "enterTime", "Target", "startTime");
    NoteLink(Linked, "fan" + std::to_string(i), "enterTime", "Target", "startTime");
  }
  WriteTriggersAndLinks(Context(), Linked);
  EXPECT_LT(Scene().PendingRoutes().size(), 20000U);
  EXPECT_TRUE(Reported("go", "one script passes it on"));
  EXPECT_NE(Text().find("DEF RELAYgo Script {\neventIn  SFTime  set_enterTime\neventIn  SFBool  set_isActive\n"
                        "eventOut SFTime  enterTime_changed\neventOut SFBool  isActive_changed\n"),
            std::string::npos);
  EXPECT_NE(Document().find("<Script DEF=\"RELAYgo\" "), std::string::npos);
  for (const char* route :
       {"ROUTE T2999.isActive TO RELAYgo.set_isActive\n", "ROUTE RELAYgo.isActive_changed TO Target.set_on\n"})
    EXPECT_NE(Text().find(route), std::string::npos) << route;
}

TEST_F(Triggers, ThatNothingReachesDispatchNothing) {
  EXPECT_EQ(RoutesTo(ActorText("Dispatcher Name=D", "    Tag=a\r\n    OutEvents(0)=bell"), "bell"), Routes{});
}

TEST_F(Triggers, UseTheKeywordsOfX3DInAConformingX3DScript) {
  Settings.OptionFlux = Settings.CheckConforming = true;
  RoutesTo(ActorText("Trigger Name=A", "    Event=a") +
               ActorText("Dispatcher Name=D", "    Tag=a\r\n    OutDelays(0)=1\r\n    OutEvents(0)=bell"),
           "bell");
  EXPECT_NE(Text().find("\ninputOnly  SFTime  set_enterTime\noutputOnly SFTime  enterTime0_changed\n"),
            std::string::npos)
      << Text();
  EXPECT_TRUE(Scene().Quirks().empty());
}

} // namespace
} // namespace quarvel
