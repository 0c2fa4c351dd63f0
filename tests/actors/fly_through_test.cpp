#include "actors/fly_through.h"
#include "math/rotation.h"
#include "tests/actors/actor_fixture.h"

#include <cmath>

namespace quarvel {
namespace {

InterpolationPointRecord Point(const std::string& name, const Vector3& at) {
  InterpolationPointRecord point;
  point.Header.Name = name;
  point.Location = at;
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
  const std::vector<InterpolationPointRecord> triangle_{Point("P2", {100, 100, 0}), Point("P0", {0, 0, 0}),
                                                        Point("P1", {100, 0, 0})};
};

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

} // namespace
} // namespace quarvel
