#include "actors/movers.h"
#include "actors/triggers.h"
#include "math/rotation.h"
#include "scene/brush_placement.h"
#include "tests/actors/actor_fixture.h"

#include <cmath>
#include <sstream>

namespace quarvel {
namespace {

constexpr const char* doorKeys = "    KeyPos(1)=(Z=100)\r\n    BasePos=(X=8)\r\n    Location=(X=8)\r\n"
                                 "    MoveTime=2\r\n    DelayTime=1\r\n    StayOpenTime=5\r\n    Tag=\"door\"\r\n";

class Movers : public ActorTest {
 protected:
  BrushRecord Read(const std::string& keys, const std::string& className = "Mover") {
    const std::string text = ActorText(className + " Name=M", keys);
    const T3DLevel level(text);
    NumberCheck check;
    return ReadBrush(level, level.Actors.at(0), check);
  }

  MoverAnimation Track(const std::string& keys, const std::string& className = "Mover") {
    return AnimationOf(Read(keys, className), Findings);
  }

  /// Writes the mover, whose Transform is "Mover_1", and the triggers of the level.
  void Write(const BrushRecord& mover, const std::string& level = {}) {
    const T3DLevel text(level);
    Linked = ReadTriggers(Context(), {}, text);
    Scene().Define("Mover_1");
    WrittenBrush written{"Mover_1"};
    GrowBounds(written.Bounds, {0, 0, 0});
    GrowBounds(written.Bounds, {100, 60, 400});
    WriteMover(Context(), Linked, mover, written);
    WriteTriggersAndLinks(Context(), Linked);
  }

  bool Wrote(const std::string& part) { return Text().find(part) != std::string::npos; }
};

TEST_F(Movers, WaitOpenStayAndClose) {
  const MoverAnimation track = Track(doorKeys);
  const int count = KeyCount(track, KeyMode::Position);
  EXPECT_EQ(PositionValues(track, SceneSpace(1)), "8 0 0,8 0 0,8 100 0,8 100 0,8 0 0");
  EXPECT_EQ(KeyList(track, count, KeyMode::Position), "0 0.1 0.3 0.8 1 ");
  EXPECT_EQ(TotalKeyTime(track, count, KeyMode::Position), 10);
  EXPECT_FALSE(track.AnimateRotation);
  EXPECT_FALSE(track.Loop);
  EXPECT_TRUE(Findings.Findings().empty());

  const MoverAnimation toggled = Track(std::string(doorKeys) + "    InitialState=TriggerToggle");
  EXPECT_EQ(KeyList(toggled, count, KeyMode::Position), "0 0.2 0.6 0.6 1 ");
}

TEST_F(Movers, PassThroughTheirKeysAndReturnStraight) {
  const MoverAnimation track =
      Track("    NumKeys=3\r\n    KeyPos(1)=(X=10)\r\n    KeyPos(2)=(Y=10)\r\n    StayOpenTime=4");
  EXPECT_EQ(track.PositionKeyDurations, (std::vector<double>{0, 1, 0, 1, 4, 2}));
  EXPECT_EQ(KeyCount(track, KeyMode::Position), 7);
}

TEST_F(Movers, WithOneKeyOrInALoopHaveNoPauses) {
  const MoverAnimation single = Track("    NumKeys=1\r\n    KeyPos(1)=(X=10)\r\n    MoveTime=3");
  EXPECT_EQ(KeyList(single, KeyCount(single, KeyMode::Position), KeyMode::Position), "0 ");
  EXPECT_EQ(TotalKeyTime(single, 1, KeyMode::Position), 6);
  const MoverAnimation loop = Track("    KeyPos(1)=(X=10)", "LoopMover");
  EXPECT_TRUE(loop.Loop);
  EXPECT_EQ(KeyList(loop, KeyCount(loop, KeyMode::Position), KeyMode::Position), "0 0.5 1 ");
}

TEST_F(Movers, SpinAboutTheFastestAxis) {
  const MoverAnimation track = Track(
      "    Rotation=(Yaw=100)\r\n    RotateRate=(Pitch=5,Roll=-4096)\r\n    RotationRate=(Yaw=9)", "RotatingMover");
  EXPECT_EQ(track.CycleInterval, 5);
  EXPECT_EQ(track.BaseRot, (Rotator3{0, 100, 0}));
  EXPECT_EQ(track.RotationKeys, (std::vector<Rotator3>{{0, 0, 0}, {0, 0, 43690}, {0, 0, 21845}}));
  EXPECT_EQ(KeyCount(track, KeyMode::Rotation), 4);
  EXPECT_FALSE(track.AnimatePosition);
  EXPECT_EQ(Track("", "RotatingMover").CycleInterval, 0.33333);
}

TEST_F(Movers, TakeBadNumbersWithAReport) {
  const MoverAnimation track =
      Track("    KeyPos(1)=(X=1)\r\n    KeyPos(2)=(X=2)\r\n    KeyRot(3)=(Yaw=2)\r\n    MoveTime=-1\r\n"
            "    KeyNum=7\r\n    KeyRot(1)=(Yaw=40000)\r\n    StayOpenTime=1e999");
  EXPECT_EQ(track.MoveTime, 0.01);
  EXPECT_EQ(track.StartKey, 1);
  EXPECT_TRUE(std::isfinite(TotalKeyTime(track, 5, KeyMode::Position)));
  for (const char* part : {"MoveTime", "2 of its keys", "rests at key 7", "half a turn", "jumps"})
    EXPECT_TRUE(Reported("M", part)) << part;
  EXPECT_EQ(Track("    NumKeys=-3\r\n    KeyPos(1)=(X=1)").PositionKeyCount, 1);
  EXPECT_TRUE(Reported("M", "NumKeys is -3"));
}

TEST_F(Movers, OpenWhenTheyAreTouched) {
  Write(Read(doorKeys));
  // Grown by 200 each way: 300 by 600 by 260; half the depth is as much as the width.
  const std::size_t sensor = Text().find("DEF TriggerM ProximitySensor {\n center 50 30.0 200.0\n size 300 260 600\n");
  const std::size_t route = Text().find("ROUTE TriggerM.enterTime TO Mover_1TIMER.startTime\n");
  EXPECT_NE(sensor, std::string::npos) << Text();
  EXPECT_LT(sensor, route);
  EXPECT_NE(route, std::string::npos);
}

TEST_F(Movers, AreStartedByTheTriggersOfTheirTag) {
  Write(Read(std::string(doorKeys) + "    InitialState=StandOpenTimed"), ActorText("Trigger Name=T", "    Event=Door"));
  EXPECT_TRUE(Wrote("ROUTE T.enterTime TO Mover_1TIMER.startTime\n"));
  EXPECT_FALSE(Wrote("TriggerM"));
}

TEST_F(Movers, ThatVisitorsStandOnStartWithoutATrigger) {
  Write(Read(std::string(doorKeys) + "    InitialState=StandOpenTimed"));
  EXPECT_TRUE(Wrote("ROUTE TriggerM.enterTime TO Mover_1TIMER.startTime\n"));
}

TEST_F(Movers, ThatNothingStartsAreReported) {
  Write(Read(std::string(doorKeys) + "    InitialState=TriggerOpenTimed\r\n    AttachTag=lamp"));
  EXPECT_FALSE(Wrote("ProximitySensor"));
  EXPECT_TRUE(Reported("M", "never moves"));
  EXPECT_TRUE(Reported("M", "tagged lamp"));
}

TEST_F(Movers, WithoutKeysHaveAllButInterpolators) {
  Write(Read("    NumKeys=1\r\n    MoveTime=3"));
  EXPECT_TRUE(Wrote("DEF Mover_1TIMER TimeSensor {\n cycleInterval 6\n loop FALSE\n"));
  EXPECT_TRUE(Wrote("DEF TriggerM ProximitySensor {"));
  EXPECT_TRUE(Wrote("ROUTE TriggerM.enterTime TO Mover_1TIMER.startTime\n"));
  EXPECT_FALSE(Wrote("Interpolator"));
  EXPECT_TRUE(Reported("M", "no keys"));
  EXPECT_FALSE(Reported("M", "no trigger"));
}

/// The corner of a brush under a Transform with this rotation and translation.
Vector3 Placed(const std::string& rotation, const std::string& translation, const Vector3& corner) {
  std::istringstream in(rotation + " " + translation);
  Vector3 axis, shift;
  double angle = 0;
  in >> axis.X >> axis.Y >> axis.Z >> angle >> shift.X >> shift.Y >> shift.Z;
  const Vector3 across = CrossProduct(axis, corner);
  const Vector3 turned =
      AddVector(AddVector(ScaleVector(corner, std::cos(angle)), ScaleVector(across, std::sin(angle))),
                ScaleVector(axis, DotProduct(axis, corner) * (1 - std::cos(angle))));
  return AddVector(turned, shift);
}

TEST_F(Movers, RestWhereTheirStartKeyPutsThem) {
  const BrushRecord mover = Read("    BasePos=(X=-10,Y=700,Z=30)\r\n    Location=(X=-5,Y=690,Z=42)\r\n    KeyNum=1\r\n"
                                 "    KeyPos(1)=(X=5,Y=-10,Z=12)\r\n    KeyRot(1)=(Pitch=8000,Yaw=-300,Roll=2000)\r\n"
                                 "    BaseRot=(Pitch=4288,Yaw=16684,Roll=100)\r\n"
                                 "    Rotation=(Pitch=12288,Yaw=-49152,Roll=67636)");
  const MoverAnimation track = AnimationOf(mover, Findings);
  EXPECT_FALSE(Reported("M", "jumps"));
  const SceneSpace space(0.02);
  const std::string positions = PositionValues(track, space), rotations = RotationValues(track, space);
  const BrushPlacement placement = PlaceBrush(mover, space);
  for (const Vector3& corner : {Vector3{100, -50, 20}, Vector3{-300, 8, 500}}) {
    const Vector3 point = TransformPoint(placement.VertexMatrix, corner);
    const Vector3 atRest = Placed(placement.Rotation, placement.Translation, point);
    const Vector3 atKey =
        Placed(rotations.substr(0, rotations.find(',')), positions.substr(0, positions.find(',')), point);
    EXPECT_LT(VectorLength(SubtractVector(atRest, atKey)), 1e-4);
    EXPECT_LT(VectorLength(SubtractVector(atRest, TransformPoint(placement.WorldMatrix, corner))), 1e-4);
  }
}

} // namespace
} // namespace quarvel
