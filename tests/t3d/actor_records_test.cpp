#include "t3d/camera_records.h"
#include "t3d/light_records.h"
#include "t3d/placement_records.h"
#include "t3d/sound_records.h"
#include "t3d/trigger_records.h"
#include "t3d/world_records.h"

#include <gtest/gtest.h>

namespace quarvel {
namespace {

std::string Actor(const std::string& header, const std::string& keys) {
  return "Begin Actor Class=" + header + "\r\n" + keys + "\r\nEnd Actor\r\n";
}

TEST(ActorRecords, StartFromTheClassDefaultsAndAnyWrittenValueWins) {
  const std::string text =
      Actor("Light Name=L0", "") + Actor("Light Name=L1", "    LightBrightness=0\r\n    LightSaturation=0") +
      Actor("AmbientSound Name=A0", "") + Actor("DynamicAmbientSound Name=D0", "    SoundVolume=7") +
      Actor("Trigger Name=T0", "") +
      Actor("Trigger Name=T1",
            "    CollisionRadius=0\r\n    bInitiallyActive=False\r\n    Message=\"The Captain's door\"") +
      Actor("Teleporter Name=P0", "") + Actor("ZoneInfo Name=Z0", "") + Actor("InterpolationPoint Name=I0", "");
  const T3DLevel level(text);
  const auto& actors = level.Actors;
  LightRecord light = ReadLight(level, actors[0]);
  EXPECT_EQ(light.LightBrightness, 64);
  EXPECT_EQ(light.LightSaturation, 255);
  EXPECT_EQ(light.Display.DrawScale, 1);
  EXPECT_EQ(light.Sound.SoundVolume, 128);
  light = ReadLight(level, actors[1]);
  EXPECT_EQ(light.LightBrightness, 0);
  EXPECT_EQ(light.LightSaturation, 0);

  const AmbientSoundRecord ambient = ReadAmbientSound(level, actors[2]);
  EXPECT_EQ(ambient.Sound.SoundRadius, 64);
  EXPECT_EQ(ambient.Sound.SoundVolume, 190);
  const DynamicAmbientSoundRecord dynamic = ReadDynamicAmbientSound(level, actors[3]);
  EXPECT_EQ(dynamic.Sound.SoundRadius, 32);
  EXPECT_EQ(dynamic.Sound.SoundVolume, 7);
  EXPECT_TRUE(dynamic.bInitiallyOn);
  EXPECT_EQ(dynamic.playProbability, 0.6);

  TriggerRecord trigger = ReadTrigger(level, actors[4]);
  EXPECT_EQ(trigger.CollisionRadius, 40);
  EXPECT_TRUE(trigger.bInitiallyActive);
  trigger = ReadTrigger(level, actors[5]);
  EXPECT_EQ(trigger.CollisionRadius, 0);
  EXPECT_EQ(trigger.CollisionHeight, 40);
  EXPECT_FALSE(trigger.bInitiallyActive);
  EXPECT_EQ(trigger.Message, "The Captain's door");

  EXPECT_EQ(ReadTeleporter(level, actors[6]).CollisionRadius, 18);
  const ZoneRecord zone = ReadZone(level, actors[7]);
  EXPECT_EQ(zone.Zone.DistanceFogEnd, 8000);
  EXPECT_EQ(zone.Zone.DistanceFogColor, (ColorRGB{128, 128, 128}));
  EXPECT_EQ(ReadInterpolationPoint(level, actors[8]).RateModifier, 1);
}

TEST(ActorRecords, ReadLightsByTheirClass) {
  const std::string text =
      Actor("Lightning Name=Lightning0", "    LightEffect=LE_Sunlight") +
      Actor("Engine.SunLight Name=Sun", "\tRotation=(Pitch=-16384)\r\n\tAmbientSound=Sound'A.B.hum'") +
      Actor("Spotlight Name=Spot", "    Texture=Texture'A.Flare'\r\n    Style=STY_Translucent\r\n    LightCone=86") +
      Actor("TriggerLight Name=TL", "    LightHue=180\r\n    bInitiallyOn=True\r\n    ChangeTime=0.5");
  const T3DLevel level(text);
  const auto& actors = level.Actors;
  LightRecord light = ReadLight(level, actors[0]);
  EXPECT_EQ(light.Header.Name, "Lightning0");
  EXPECT_EQ(light.Kind, LightKind::Point);
  light = ReadLight(level, actors[1]);
  EXPECT_EQ(light.Kind, LightKind::Directional);
  EXPECT_EQ(light.Rotation.Pitch, -16384);
  EXPECT_EQ(light.Sound.AmbientSound, "Sound'A.B.hum'");
  light = ReadLight(level, actors[2]);
  EXPECT_EQ(light.Kind, LightKind::Spot);
  EXPECT_EQ(light.Display.Texture, "Texture'A.Flare'");
  EXPECT_EQ(light.LightCone, 86);
  const TriggerLightRecord switched = ReadTriggerLight(level, actors[3]);
  EXPECT_EQ(switched.LightHue, 180);
  EXPECT_TRUE(switched.bInitiallyOn);
  EXPECT_EQ(switched.ChangeTime, 0.5);
}

TEST(ActorRecords, ReadIndexedKeysEachByItself) {
  const std::string text =
      Actor("Dispatcher Name=D", "    OutEvents(5)=\"Door\"\r\n    OutEvents(0)=Lamp\r\n    OutDelays(5)=1.5") +
      Actor("StochasticTrigger Name=S", "    Events(6)=Last\r\n    Location=(Z=9.0)") +
      Actor("DynamicAmbientSound Name=A", "    Sounds(16)=Sound'P.Far'\r\n    Sounds(1)=Sound'P.Near'");
  const T3DLevel level(text);
  const auto& actors = level.Actors;
  const DispatcherRecord dispatcher = ReadDispatcher(level, actors[0]);
  EXPECT_EQ(dispatcher.OutEvents, (std::array<std::string, 8>{"Lamp", "", "", "", "", "Door", "", ""}));
  EXPECT_EQ(dispatcher.OutDelays[5], 1.5);
  const StochasticTriggerRecord stochastic = ReadStochasticTrigger(level, actors[1]);
  EXPECT_EQ(stochastic.Events[6], "Last");
  EXPECT_EQ(stochastic.Location.Z, 9);
  const DynamicAmbientSoundRecord sound = ReadDynamicAmbientSound(level, actors[2]);
  EXPECT_EQ(sound.Sounds[16], "Sound'P.Far'");
  EXPECT_EQ(sound.Sounds[1], "Sound'P.Near'");
  EXPECT_EQ(sound.Sounds[0], "");
}

TEST(ActorRecords, ReadTheGotoKeyframeOfElevatorTriggersOnly) {
  const std::string keys = "    GotoKeyframe= 2\r\n    bTriggerOnceOnly=True\r\n    ReTriggerDelay=1.5";
  const std::string text = Actor("Trigger Name=T", keys) + Actor("ElevatorTrigger Name=E", keys);
  const T3DLevel level(text);
  const auto& actors = level.Actors;
  TriggerRecord trigger = ReadTrigger(level, actors[0]);
  EXPECT_EQ(trigger.GotoKeyframe, 0);
  EXPECT_TRUE(trigger.bTriggerOnceOnly);
  EXPECT_EQ(trigger.ReTriggerDelay, 1.5);
  EXPECT_EQ(ReadTrigger(level, actors[1]).GotoKeyframe, 2);
}

TEST(ActorRecords, ReadTheWorld) {
  const std::string text =
      Actor(
          "LevelInfo Name=LevelInfo0",
          "    Title=\"Say 'hi'\"\r\n    Author=Nobody\r\n    DistanceFogColor=(R=300,B=7)\r\n    bDistanceFog=True") +
      Actor("SkyZoneInfo Name=Sky", "    RotationRate=(Yaw=1)\r\n    RotateRate=(Yaw=2)\r\n    Location=(X=-8.0)");
  const T3DLevel level(text);
  const auto& actors = level.Actors;
  const LevelRecord info = ReadLevel(level, actors[0]);
  EXPECT_EQ(info.Title, "Say 'hi'");
  EXPECT_EQ(info.Author, "") << "only quoted texts are read";
  EXPECT_EQ(info.Zone.DistanceFogColor, (ColorRGB{255, 128, 7}));
  EXPECT_FALSE(info.Zone.ColorInRange);
  const SkyZoneRecord sky = ReadSkyZone(level, actors[1]);
  EXPECT_EQ(sky.RotationRate.Yaw, 2) << "the later key wins";
  EXPECT_EQ(sky.Location.X, -8);
}

TEST(ActorRecords, ReadTeleporters) {
  const std::string text =
      Actor("VisibleTeleporter Name=V", "    URL=\"Map#Exit\"\r\n    bReversesX=True\r\n    FavoriteNumber=3");
  const T3DLevel level(text);
  const auto& actors = level.Actors;
  const TeleporterRecord teleporter = ReadTeleporter(level, actors[0]);
  EXPECT_TRUE(teleporter.IsVisible);
  EXPECT_EQ(teleporter.URL, "Map#Exit");
  EXPECT_TRUE(teleporter.bReversesX);
  EXPECT_EQ(teleporter.FavoriteNumber, 3);
}

TEST(ActorRecords, ReadASceneManagersActionsFromItsSubObjects) {
  const std::string text =
      Actor("SceneManager Name=SceneManager0", "    Begin Object Class=ActionMoveCamera Name=Move1\r\n"
                                               "        IntPoint=InterpolationPoint'myLevel.InterpolationPoint4'\r\n"
                                               "        PathStyle=PATHSTYLE_Bezier\r\n"
                                               "        StartControlPoint=(X=1.0,Y=2.0)\r\n"
                                               "        Duration=2.5\r\n"
                                               "    End Object\r\n"
                                               "    bLooping=True\r\n"
                                               "    Actions(0)=ActionMoveCamera'myLevel.Move1'\r\n"
                                               "    Actions(1)=ActionPause'myLevel.Wait'\r\n"
                                               "    Actions(3)=ActionMoveCamera'myLevel.Gone'\r\n"
                                               "    Begin Object Class=ActionPause Name=Wait\r\n"
                                               "        Duration=4\r\n"
                                               "    End Object") +
      Actor("Light Name=Gone", "");
  const T3DLevel level(text);
  const auto& actors = level.Actors;
  const SceneManagerRecord manager = ReadSceneManager(level, actors[0]);
  EXPECT_EQ(manager.Header.Name, "SceneManager0");
  EXPECT_TRUE(manager.bLooping);
  EXPECT_EQ(manager.Affect, "AFFECT_ViewportActor");
  ASSERT_EQ(manager.Actions.size(), 2u);
  EXPECT_EQ(manager.MissingActions, 1);
  EXPECT_EQ(manager.ActionGaps, std::vector<int>{2});
  EXPECT_EQ(manager.Actions[0].PathStyle, "PATHSTYLE_Bezier");
  EXPECT_EQ(manager.Actions[0].StartControlPoint, (Vector3{1, 2, 0}));
  EXPECT_EQ(manager.Actions[0].IntPoint, "InterpolationPoint'myLevel.InterpolationPoint4'");
  EXPECT_EQ(manager.Actions[1].Kind, SceneActionKind::Pause);
  EXPECT_EQ(manager.Actions[1].PathStyle, "PATHSTYLE_Linear");
  EXPECT_EQ(manager.Actions[1].Duration, 4);
}

} // namespace
} // namespace quarvel
