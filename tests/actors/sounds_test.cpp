#include "actors/sounds.h"
#include "actors/triggers.h"
#include "tests/actors/actor_fixture.h"

namespace quarvel {
namespace {

SoundSource Source(const char* reference) {
  SoundSource source;
  source.Block.AmbientSound = reference;
  source.Name = "A0";
  return source;
}

class Sounds : public ActorTest {
 protected:
  bool TextHas(const char* part) { return Text().find(part) != std::string::npos; }
  bool DocumentHas(const char* part) { return Document().find(part) != std::string::npos; }

  void WriteRandom(DynamicAmbientSoundRecord record) {
    record.Header.Name = "D";
    WriteRandomSounds(Context(), record);
  }
};

TEST_F(Sounds, AreWrittenWithTheirDistancesBehindBelowZero) {
  SoundSource source = Source("Sound'A.B.hum60'");
  source.Block.SoundRadius = 0;
  source.Block.SoundVolume = 255;
  EXPECT_EQ(WriteSound(Context(), source), "AC_hum60_wav");
  EXPECT_EQ(Text(), "DEF S_A0 Sound {\n  intensity 1\n  minBack -6.25\n  minFront 6.25\n  maxBack -25\n  maxFront 25\n"
                    "  source DEF AC_hum60_wav AudioClip  {\n   loop TRUE\n   pitch 1\n   startTime 1\n   url "
                    "[\"hum60.wav\"]\n  }\n }\n");
  EXPECT_EQ(
      Document(),
      "<Group><Sound DEF=\"S_A0\" intensity=\"1\" maxFront=\"25\" maxBack=\"-25\" minFront=\"6.25\" minBack=\"-6.25\">"
      "<AudioClip DEF=\"AC_hum60_wav\" loop=\"true\" pitch=\"1\" startTime=\"1\" url=\"hum60.wav\"/></Sound></Group>");
}

TEST_F(Sounds, OfOneFileShareOneClip) {
  SoundSource source = Source("Sound'A.hum'");
  WriteSound(Context(), source);
  source.Block.AmbientSound = "Sound'Other.Hum'";
  source.Block.SoundPitch = 32;
  source.Name = "A1";
  EXPECT_EQ(WriteSound(Context(), source), "AC_hum_wav");
  EXPECT_TRUE(TextHas("  source USE AC_hum_wav\n }\n"));
  EXPECT_TRUE(DocumentHas("<AudioClip USE=\"AC_hum_wav\"/>"));
  EXPECT_TRUE(Reported("A1", "pitch"));
  source.BaseName = "Own";
  EXPECT_EQ(WriteSound(Context(), source), "Own");
  EXPECT_TRUE(TextHas("DEF S_Own Sound {"));
}

TEST_F(Sounds, WithoutAReferenceAreNotWritten) {
  EXPECT_EQ(WriteSound(Context(), Source("")), "");
  EXPECT_EQ(WriteSound(Context(), Source("None")), "");
  WriteAmbientSound(Context(), {});
  WriteRandom({});
  WriteTriggeredSound(Context(), Linked, {});
  EXPECT_EQ(Text(), "");
  EXPECT_EQ(Document(), "<Group/>");
  EXPECT_EQ(Findings.Counts().size(), 3u);
}

TEST_F(Sounds, OutOfRangeAreClamped) {
  SoundSource source = Source("Sound'A.hum'");
  source.Block.SoundVolume = 300;
  source.Block.SoundPitch = 0;
  source.Block.SoundRadius = -9;
  WriteSound(Context(), source);
  EXPECT_TRUE(TextHas("  intensity 1\n  minBack 0\n  minFront 0\n"));
  EXPECT_TRUE(TextHas("   pitch 0.015625\n"));
  EXPECT_TRUE(Reported("A0", "out of range"));
}

TEST_F(Sounds, StartAsTheirFlagsSay) {
  // The document starts a sound that nothing else starts; the text does not.
  SoundSource source = Source("Sound'A.one'");
  source.Loop = false;
  WriteSound(Context(), source);
  EXPECT_FALSE(TextHas("startTime"));
  EXPECT_TRUE(DocumentHas("startTime=\"1\""));
}

TEST_F(Sounds, StartedByAScriptStandStillUntilThen) {
  SoundSource source = Source("Sound'A.one'");
  source.Loop = false;
  source.StartedElsewhere = true;
  WriteSound(Context(), source);
  EXPECT_FALSE(TextHas("startTime"));
  EXPECT_FALSE(DocumentHas("startTime"));
}

TEST_F(Sounds, OfAmbientActorsStandAtTheirPlace) {
  AmbientSoundRecord record;
  record.Header.Name = "A0";
  record.Location = {1.5, 2.5, 3.5};
  record.Sound.AmbientSound = "Sound'A.hum'";
  WriteAmbientSound(Context(), record);
  EXPECT_EQ(Text().find("Transform {\n translation 1.5 3.5 2.5\n children [\nDEF S_A0 Sound {\n"), 0u) << Text();
  EXPECT_TRUE(Text().ends_with(" }\n ]\n}\n"));
  EXPECT_TRUE(DocumentHas("<Transform translation=\"1.5 3.5 2.5\"><Sound DEF=\"S_A0\""));
}

TEST_F(Sounds, ThatAreTriggeredWaitAndAreLinked) {
  const std::string text = ActorText("Trigger Name=T", "    Event=bell");
  Linked = ReadTriggers(Context(), {}, T3DLevel(text));
  TriggeredAmbientSoundRecord record;
  record.Header.Name = "Bell0";
  record.Header.Tag = "Bell";
  record.AmbSound = "Sound'A.bell'";
  WriteTriggeredSound(Context(), Linked, record);
  EXPECT_TRUE(TextHas("DEF Bell0 AudioClip  {\n   loop TRUE\n   pitch 1\n   startTime 1\n   stopTime 2\n"));
  EXPECT_TRUE(DocumentHas("startTime=\"1\" stopTime=\"2\""));
  WriteTriggersAndLinks(Context(), Linked);
  EXPECT_TRUE(Text().ends_with("ROUTE T.enterTime TO Bell0.startTime\nROUTE T.exitTime TO Bell0.stopTime\n"));
}

TEST_F(Sounds, ThatAreTriggeredOnceOrOnFromTheStartDoNotWait) {
  TriggeredAmbientSoundRecord record;
  record.Header.Name = "A";
  record.AmbSound = "Sound'A.bell'";
  record.bPlayOnceOnly = true;
  WriteTriggeredSound(Context(), Linked, record);
  EXPECT_FALSE(TextHas("Time"));
  EXPECT_TRUE(Reported("A", "no trigger reaches it"));
  record.bPlayOnceOnly = false;
  record.bInitiallyOn = true;
  WriteTriggeredSound(Context(), Linked, record);
  EXPECT_TRUE(TextHas("startTime 1"));
  EXPECT_FALSE(TextHas("stopTime"));
}

TEST_F(Sounds, PlayAtRandomByATimerAndAScript) {
  DynamicAmbientSoundRecord record;
  record.Sounds[0] = "Sound'A.gull'";
  record.Sounds[5] = "Sound'A.drip'";
  record.minReCheckTime = 0;
  record.maxReCheckTime = 2.5;
  record.playProbability = 0.25;
  WriteRandom(record);
  EXPECT_EQ(Text().find(
                "DEF TIMERDYNAMBSOUND_D TimeSensor {\n cycleInterval 1\n loop TRUE\n enabled TRUE\n}\n"
                "DEF SCRIPTDYNAMBSOUND_D Script {\neventIn  SFTime  set_testsound\neventOut SFTime  sound1_changed\n"
                "eventOut SFTime  sound2_changed\neventOut SFTime  interval_changed\neventOut SFBool  enable_changed\n"
                "field SFFloat playProbability .6\nfield SFInt32 numSounds 2\nfield SFFloat minReCheckTime 0\n"
                "field SFFloat maxReCheckTime 2.5\nfield SFFloat rePlayTime 1\nfield SFInt32 lastSound -1\n"
                "field SFBool  bDontRepeat FALSE\nfield SFBool  bInitiallyOn TRUE\nurl \"javascript:\n"
                "function initialize(value,time){\n    if (bInitiallyOn){\n        i = Math.round(Math.random() * "
                "numSounds);\n"
                "        date1 = new Date();\n        time1 = date1.getTime();\n        var t = new SFTime(time1);\n"
                "        if (i==0)\n            sound1_changed = t;\n        else if (i==1)\n            "
                "sound2_changed = t;\n"
                "        lastSound = i;\n    }\n}\nfunction set_testsound(value,time) {\n"),
            0u)
      << Text();
  EXPECT_TRUE(TextHas("    enable_changed = true;\n  }\n \"\n}\nTransform {\n translation 0 0 0\n children [\n"
                      "DEF S_DYNAMBSOUND_D_1 Sound {\n"));
  EXPECT_TRUE(TextHas("ROUTE SCRIPTDYNAMBSOUND_D.sound2_changed TO DYNAMBSOUND_D_2.startTime\n"));
  EXPECT_TRUE(DocumentHas("<field name=\"minReCheckTime\" type=\"SFFloat\" accessType=\"inputOutput\" value=\".6\"/>"));
  EXPECT_TRUE(DocumentHas("<field name=\"bInitiallyOn\" type=\"SFBool\" accessType=\"inputOutput\" value=\"true\"/>"));
  EXPECT_EQ(Scene().PendingRoutes().size(), 5u);
}

TEST_F(Sounds, PlayAtRandomWithTheirOwnValuesWhenConforming) {
  Settings.CheckConforming = true;
  DynamicAmbientSoundRecord record;
  record.Sounds[16] = "Sound'A.gull'";
  record.playProbability = 0.25;
  WriteRandom(record);
  EXPECT_TRUE(TextHas("playProbability 0.25\n"));
  EXPECT_TRUE(TextHas(
      "        var i = Math.floor(Math.random() * numSounds);\n        var t = new Date().getTime() / 1000;\n"));
  EXPECT_FALSE(TextHas("Math.round"));
  EXPECT_TRUE(TextHas("  minBack 206.25\n"));
  EXPECT_TRUE(DocumentHas("<field name=\"maxReCheckTime\" type=\"SFFloat\" accessType=\"inputOutput\" value=\"10\"/>"));
  EXPECT_TRUE(Scene().Quirks().empty());
}

TEST_F(Sounds, AreCopiedBesideTheSceneOrListedAsMissing) {
  Folder.Write("in/loops/Hum.wav", "RIFF");
  WriteSound(Context(), Source("Sound'A.hum'"));
  WriteSound(Context(), Source("Sound'A.gone'"));
  EXPECT_EQ(Folder.Read("hum.wav"), "RIFF");
  ASSERT_EQ(Context().Resources.Missing()[ResourceKind::Sound].size(), 1u);
  EXPECT_TRUE(Context().Resources.Missing()[ResourceKind::Sound][0].ends_with("gone.wav"));
  EXPECT_TRUE(TextHas("url [\"gone.wav\"]"));
}

} // namespace
} // namespace quarvel
