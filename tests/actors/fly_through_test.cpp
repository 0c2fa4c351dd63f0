#include "actors/fly_through.h"
#include "tests/scene/scene_fixture.h"

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

TEST(FlyThrough, FollowsTheActionsOfASceneManager) {
  const std::vector<InterpolationPointRecord> triangle{Point("P2", {100, 100, 0}), Point("P0", {0, 0, 0}),
                                                       Point("P1", {100, 0, 0})};
  Report findings;
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
  const Flight flight = FlightOfScene(scene, IndexPoints(triangle), findings);
  MoverAnimation track = TrackOfFlight(flight, 0.5);
  EXPECT_EQ(track.PositionKeys,
            (std::vector<Vector3>{{0, 0, 0}, {0, 0, 0}, {100, 0, 0}, {100, 0, 0}, {100, 65, 0}, {100, 100, 0}}));
  EXPECT_EQ(track.PositionKeyDurations, (std::vector<double>{1, 2, 4, 1.5, 1.5}));
  EXPECT_EQ(track.ThirdKeyDurations, (std::vector<double>{1, 2, 4, 3}));
  EXPECT_EQ(TotalKeyTime(track, KeyCount(track, KeyMode::Third), KeyMode::Third), 10);
  EXPECT_EQ(KeyList(track, 5, KeyMode::Third), "0 0.1 0.3 0.7 1 ");
  EXPECT_TRUE(test::Reports(findings, "Scene", "Nowhere"));
  EXPECT_TRUE(test::Reports(findings, "Scene", "1 of its actions"));

  track.Loop = true;
  EXPECT_EQ(TotalKeyTime(track, KeyCount(track, KeyMode::Third), KeyMode::Third), 10) << "it begins anew at once";
  EXPECT_EQ(KeyList(track, 7, KeyMode::Position), "0 0.1 0.3 0.7 0.85 1 1 ");
}

} // namespace
} // namespace quarvel
