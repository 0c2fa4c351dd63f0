#include "actors/fly_through.h"
#include "math/rotation.h"
#include "tests/actors/actor_fixture.h"

#include <cmath>

namespace quarvel {
namespace {

InterpolationPointRecord Point(const std::string& name, const Vector3& at, int position, const std::string& tag = "a") {
  InterpolationPointRecord point;
  point.Header.Name = name;
  point.Header.Tag = tag;
  point.Location = at;
  point.Position = static_cast<std::int16_t>(position);
  return point;
}

SceneActionRecord Action(SceneActionKind kind, double duration, const std::string& point = {}) {
  SceneActionRecord action;
  action.Kind = kind;
  action.Duration = duration;
  action.IntPoint = point;
  return action;
}

class FlyThrough : public ActorTest {
 protected:
  std::vector<Flight> Plan(const std::vector<InterpolationPointRecord>& points) {
    return FlightsOfPoints(points, Findings);
  }
  bool Wrote(const std::string& part) { return Text().find(part) != std::string::npos; }
  bool Routed(const std::string& from, const std::string& to, SceneScope scope) {
    const auto& routes = Scene().PendingRoutes();
    return std::any_of(routes.begin(), routes.end(), [&](const Route& route) {
      return route.FromNode + "." + route.FromField == from && route.ToNode + "." + route.ToField == to &&
             route.Scope == scope;
    });
  }
  const std::vector<InterpolationPointRecord> triangle_{Point("P2", {100, 100, 0}, 2), Point("P0", {0, 0, 0}, 0),
                                                        Point("P1", {100, 0, 0}, 1)};
};

TEST_F(FlyThrough, PassesThroughThePointsInTheirOrder) {
  std::vector<InterpolationPointRecord> points = triangle_;
  points[2].RateModifier = 0.25; // P1
  points[0].Rotation.Yaw = -20000;
  points[2].Rotation.Yaw = 32000;
  const MoverAnimation track = TrackOfFlight(Plan(points).at(0), 0.5);
  ASSERT_EQ(track.PositionKeyCount, 5);
  EXPECT_EQ(track.PositionKeys[0], MakeVector(0, 0, 0));
  EXPECT_EQ(track.PositionKeys[2], MakeVector(100, 0, 0));
  EXPECT_EQ(track.PositionKeys[4], MakeVector(100, 100, 0));
  EXPECT_EQ(track.PositionKeyDurations, (std::vector<double>{0.5, 0.5, 2, 2}));
  EXPECT_EQ(track.RotationKeys[3].Yaw, 38768) << "half the short way from 32000 to -20000";
  EXPECT_EQ(KeyList(track, 5, KeyMode::Position), KeyList(track, 5, KeyMode::Rotation));
}

TEST_F(FlyThrough, HasOnePathForEachTag) {
  std::vector<InterpolationPointRecord> points = triangle_;
  points.push_back(Point("Q", {5, 5, 5}, 0, "b"));
  points[1].Header.Tag = "A";
  points[1].RateModifier = -1;
  const std::vector<Flight> flights = Plan(points);
  ASSERT_EQ(flights.size(), 2u);
  EXPECT_EQ(flights[0].Segments.size(), 2u);
  EXPECT_EQ(flights[0].Segments[0].Duration, 1);
  EXPECT_TRUE(flights[1].Segments.empty());
  EXPECT_TRUE(Reported("b", "one point only"));
  EXPECT_TRUE(Reported("P0", "RateModifier"));
  EXPECT_EQ(KeyList(TrackOfFlight(flights[1], 0.5), 1, KeyMode::Position), "0 ");
}

TEST_F(FlyThrough, FollowsTheActionsOfASceneManager) {
  SceneManagerRecord scene;
  scene.Header.Name = "Scene";
  scene.MissingActions = 1;
  scene.Actions = {Action(SceneActionKind::Pause, 9),
                   Action(SceneActionKind::MoveCamera, 1, "InterpolationPoint'my.P0'"),
                   Action(SceneActionKind::MoveCamera, 2, "p1"),
                   Action(SceneActionKind::MoveCamera, 2, "Nowhere"),
                   Action(SceneActionKind::Pause, 4),
                   Action(SceneActionKind::MoveCamera, 3, "P2")};
  scene.Actions[5].PathStyle = "PATHSTYLE_Bezier";
  scene.Actions[5].StartControlPoint = {0, 40, 0};
  const Flight flight = FlightOfScene(scene, IndexPoints(triangle_), Findings);
  MoverAnimation track = TrackOfFlight(flight, 0.5);
  EXPECT_EQ(track.PositionKeys,
            (std::vector<Vector3>{{0, 0, 0}, {0, 0, 0}, {100, 0, 0}, {100, 0, 0}, {100, 65, 0}, {100, 100, 0}}));
  EXPECT_EQ(track.PositionKeyDurations, (std::vector<double>{1, 2, 4, 1.5, 1.5}));
  EXPECT_EQ(track.ThirdKeyDurations, (std::vector<double>{1, 2, 4, 3}));
  EXPECT_EQ(TotalKeyTime(track, KeyCount(track, KeyMode::Third), KeyMode::Third), 10);
  EXPECT_EQ(KeyList(track, 5, KeyMode::Third), "0 0.1 0.3 0.7 1 ");
  EXPECT_TRUE(Reported("Scene", "Nowhere"));
  EXPECT_TRUE(Reported("Scene", "1 of its actions"));

  track.Loop = true;
  EXPECT_EQ(TotalKeyTime(track, KeyCount(track, KeyMode::Third), KeyMode::Third), 10) << "it begins anew at once";
  EXPECT_EQ(KeyList(track, 7, KeyMode::Position), "0 0.1 0.3 0.7 0.85 1 1 ");
}

TEST_F(FlyThrough, CameraLooksAlongThePointsRotation) {
  // A rotation about a unit axis as a quaternion, and the product of two of them.
  const auto quaternion = [](const AxisAngle4& turn) {
    const double half = std::sin(turn.Angle / 2);
    return Quaternion4{turn.X * half, turn.Y * half, turn.Z * half, std::cos(turn.Angle / 2)};
  };
  const auto product = [](const Quaternion4& a, const Quaternion4& b) {
    return Quaternion4{a.W * b.X + a.X * b.W + a.Y * b.Z - a.Z * b.Y, a.W * b.Y + a.Y * b.W + a.Z * b.X - a.X * b.Z,
                       a.W * b.Z + a.Z * b.W + a.X * b.Y - a.Y * b.X, a.W * b.W - a.X * b.X - a.Y * b.Y - a.Z * b.Z};
  };
  const Matrix4 conversion = MakeConversionMatrix();
  const Rotator3 rotation{-3000, 21000, 0};
  const Quaternion4 nested = product(quaternion(RotatorToAxisAngle(BrushRotator(rotation), conversion)),
                                     quaternion(RotatorToAxisAngle({}, conversion)));
  const Quaternion4 camera = quaternion(RotatorToAxisAngle(rotation, conversion));
  const double same = nested.X * camera.X + nested.Y * camera.Y + nested.Z * camera.Z + nested.W * camera.W;
  EXPECT_NEAR(std::fabs(same), 1, 1e-9);
}

TEST_F(FlyThrough, TakesOffWhenItsCameraIsBound) {
  WriteFlyThrough(Context(), Plan(triangle_));
  EXPECT_TRUE(Wrote("DEF FlyThru Transform {\n  translation 0 0 0\n  rotation 0 0 -1 0\n  children [\n"
                    "    DEF V_FlyThru Viewpoint {\n      position 0 0 0\n      orientation 0 -1 0.0 1.570796\n"
                    "      description \"FlyThru\"\n"))
      << Text();
  EXPECT_TRUE(Wrote("DEF FlyThruTIMER TimeSensor {\n cycleInterval 2\n loop FALSE\n"));
  EXPECT_TRUE(Wrote("ROUTE V_FlyThru.bindTime TO FlyThruTIMER.startTime\n"));
  EXPECT_TRUE(Routed("STARTFLYTHRU.isActive", "STARTFLYTHRUBF.set_boolean", SceneScope::Text));
  EXPECT_TRUE(Routed("STARTFLYTHRUBF.inputTrue", "V_FlyThru.set_bind", SceneScope::Text));
  EXPECT_LT(Document().find("DEF=\"V_FlyThru\""), Document().find("DEF=\"STARTFLYTHRUBF\"")) << "viewers start there";
  EXPECT_FALSE(Wrote("IndexedLineSet"));
}

TEST_F(FlyThrough, FliesOnlyForWalkersAndOnlyOnTheWay) {
  WriteFlyThrough(Context(), Plan(triangle_));
  EXPECT_TRUE(Wrote("DEF FlyThruNAVINFO NavigationInfo {\n type \"FLY\"\n headlight TRUE\n"
                    " avatarSize [.5, 1.6, 0.75]\n speed 1.5\n}\n"))
      << Text();
  EXPECT_TRUE(Wrote("ROUTE FlyThruTIMER.isActive TO FlyThruNAVINFO.set_bind\n")) << "over when the flight is";
  Settings.ListMovement = "fly";
  WriteFlyThrough(Context(), Plan(triangle_));
  EXPECT_FALSE(Wrote("FlyThru_2NAVINFO"));
}

TEST_F(FlyThrough, CanBeDelayedAndShown) {
  Settings.CheckConforming = Settings.CheckFlyThruDelay = Settings.CheckShowFlyThru = true;
  Settings.TextFlyThruDelay = {"2.5", 2.5};
  Settings.TextBezierSubD = {"0.7", 0.7};
  WriteFlyThrough(Context(), Plan(triangle_));
  EXPECT_TRUE(Wrote("    startTime_changed = value + 2.5;\n"));
  EXPECT_TRUE(Wrote("ROUTE SCRIPTFlyThru.startTime_changed TO FlyThruTIMER.startTime\n"));
  EXPECT_FALSE(Wrote("V_FlyThru.bindTime TO FlyThruTIMER"));
  EXPECT_TRUE(Wrote("      0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, -1\n")) << Text();
  EXPECT_TRUE(Reported("TextBezierSubD", "not between"));
  EXPECT_TRUE(Routed("STARTFLYTHRUBF.inputTrue", "V_FlyThru.set_bind", SceneScope::Both));
}

TEST_F(FlyThrough, WithoutPointsWritesNothing) {
  WriteFlyThrough(Context(), {});
  EXPECT_EQ(Text(), "");
}

} // namespace
} // namespace quarvel
