#include "actors/mover_animation.h"
#include "math/number_text.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <tuple>

namespace quarvel {
namespace {

std::vector<double> Numbers(const std::string& list) {
  std::istringstream in(list);
  std::vector<double> numbers;
  for (double number; in >> number;)
    numbers.push_back(number);
  return numbers;
}

int ValuesIn(const std::string& list) {
  return list.empty() ? 0 : 1 + static_cast<int>(std::count(list.begin(), list.end(), ','));
}

MoverAnimation TrackOf(int keys) {
  MoverAnimation track;
  track.PositionKeyCount = track.RotationKeyCount = keys;
  track.AnimatePosition = track.AnimateRotation = true;
  for (int i = 0; i < keys; ++i) {
    track.PositionKeys.push_back({100.0 * i, 0, 0});
    track.RotationKeys.push_back({0, 4096.0 * i, 0});
  }
  return track;
}

// keys, loop, pause, way back, durations: 0 none, 1 given, 2 given but all zero
using Combination = std::tuple<int, bool, bool, bool, int>;

class KeyLists : public ::testing::TestWithParam<Combination> {
 protected:
  KeyLists() : track_(TrackOf(std::get<0>(GetParam()))) {
    const auto [keys, loop, pause, back, times] = GetParam();
    track_.Loop = loop;
    track_.PauseAtKeys = pause;
    track_.ReturnTime = back ? 3 : 0;
    track_.HasPositionKeyTimes = times > 0;
    for (int i = 0; i + 1 < KeyCount(track_, KeyMode::Position); ++i)
      track_.PositionKeyDurations.push_back(times == 2 ? 0 : i % 3);
  }
  MoverAnimation track_;
};

TEST_P(KeyLists, HaveAsManyFractionsAsValues) {
  const int count = KeyCount(track_, KeyMode::Position);
  const std::vector<double> fractions = Numbers(KeyList(track_, count, KeyMode::Position));
  EXPECT_EQ(static_cast<int>(fractions.size()), count);
  EXPECT_EQ(ValuesIn(PositionValues(track_, SceneSpace(1))), count);
  EXPECT_EQ(ValuesIn(RotationValues(track_, SceneSpace(1))), KeyCount(track_, KeyMode::Rotation));
  EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
  EXPECT_EQ(fractions.front(), 0);
  EXPECT_EQ(fractions.back(), count > 1 ? 1 : 0);
  EXPECT_GT(TotalKeyTime(track_, count, KeyMode::Position), 0);
}

INSTANTIATE_TEST_SUITE_P(All, KeyLists,
                         ::testing::Combine(::testing::Range(1, 6), ::testing::Bool(), ::testing::Bool(),
                                            ::testing::Bool(), ::testing::Range(0, 3)));

TEST(MoverAnimations, CountKeysAsThePausesAndTheWayBackAsk) {
  MoverAnimation track = TrackOf(3);
  EXPECT_EQ(KeyCount(track, KeyMode::Position), 3);
  track.PauseAtKeys = true;
  track.ReturnTime = 2;
  EXPECT_EQ(KeyCount(track, KeyMode::Position), 7);
  track.Loop = true;
  EXPECT_EQ(KeyCount(track, KeyMode::Position), 4);
}

TEST(MoverAnimations, SpaceKeysByDurations) {
  MoverAnimation track = TrackOf(2);
  EXPECT_EQ(TotalKeyTime(track, 1, KeyMode::Position), 2) << "evenly spaced cycles last one step longer than the keys";
  track.PauseAtKeys = track.HasPositionKeyTimes = true;
  track.ReturnTime = 2;
  track.PositionKeyDurations = {1, 2, 5, 2};
  EXPECT_EQ(KeyList(track, 5, KeyMode::Position), "0 0.1 0.3 0.8 1 ");
  EXPECT_EQ(TotalKeyTime(track, 5, KeyMode::Position), 10);
  EXPECT_EQ(KeyList(track, 5, KeyMode::Rotation), "0 0.25 0.5 0.75 1 ");
  track.ThirdKeyCount = 3;
  track.ThirdKeyDurations = {1, 3};
  track.PauseAtKeys = false;
  track.ReturnTime = 0;
  EXPECT_EQ(KeyList(track, KeyCount(track, KeyMode::Third), KeyMode::Third), "0 0.25 1 ");
  EXPECT_EQ(TotalKeyTime(track, 3, KeyMode::Third), 4);
}

TEST(MoverAnimations, VisitTheKeysInACircleFromTheStartKey) {
  MoverAnimation track = TrackOf(3);
  track.StartKey = 2;
  track.BasePos = {1, 2, 3};
  EXPECT_EQ(PositionValues(track, SceneSpace(2)), "402 6.0 4.0,2 6.0 4.0,202 6.0 4.0");
  track.Loop = true;
  EXPECT_EQ(ValuesIn(PositionValues(track, SceneSpace(2))), 4);
  track.PositionKeys.pop_back();
  EXPECT_THROW(PositionValues(track, SceneSpace(2)), std::out_of_range);
}

} // namespace
} // namespace quarvel
