#include "tests/core/converted.h"
#include "tests/scene/scene_readers.h"

#include <gtest/gtest.h>

namespace quarvel::test {
namespace {

using Texts = std::vector<std::string>;

/// Each runs over both samples. Together they change every option that changes a scene.
constexpr const char* optionSets[] = {
    "",
    "CheckOutputStaticLights=1 CheckOutputFlyThru=1",
    "OptionContact=-1",
    "OptionIFSs=-1",
    "OptionIFSs=-1 CheckTranslucentSolid=1 CheckCreaseAngle=1 TextCreaseAngle=60",
    "CheckBuildBrush=1 CheckBreakUpBB=1",
    "CheckSkyZone=1",
    "CheckEnclose=1",
    "CheckEnclose=1 CheckOutputFlyThru=1 CheckMakeDefaultViewpoint=1 CheckShowTriggers=1",
    "CheckOutputFlyThru=1 CheckOutputFlyThruViewpoints=1 CheckShowFlyThru=1",
    "CheckOutputFlyThru=1 CheckFlyThruDelay=1 TextFlyThruDelay=3 CheckFog=0",
    "CheckOutputFlyThru=1 TextBezierSubD=0.3",
    "CheckOutputStaticLights=1 CheckLightTransform=1",
    "CheckOutputStaticLights=1 CheckIgnoreBlackLight=1 OptionIntensityOverride=-1 TextLightIntensity=0.4",
    "CheckOutputStaticLights=1 TextLightRadiusScale=2 TextAmbientInfluence=0.7",
    "CheckShowTriggers=1 CheckCCW=1",
    "CheckIgnore=1 TextStartAtPoly=1",
    "OptionTerrainIFS=-1 TextTerrainScale=2",
    "CheckGroupCamera=1 CheckMakeDefaultViewpoint=1 OptionDefViewAsProxSensor=-1",
    "CheckMakeDefaultViewpoint=1 OptionDefViewAsProxSensor=-1 OptionDefViewPSSize=-1",
    "CheckXMLtoo=1 CheckMakePreloadScript=1 CheckHeadlight=1",
    "TextScale=0.02 TextMoverTriggerMargin=50 TextTexPanScale=2 TextMeshScale=3 TextTeleHtOff=30",
    "CheckInlineWRL=0 CheckMeshAppendCCW=1 ListBMtypeOut=jpg",
    "CheckAppendDash=1 TextSoundRadiusScale=2 ListMovement=fly",
    "CheckDoLights=0 CheckDoSounds=0 CheckDoMeshes=0 CheckDoTerrain=0 CheckMovers=0",
    "CheckCarve=1",
    "CheckMergeLevel=1 CheckOutputStaticLights=1 CheckTranslucentSolid=1",
    "CheckMergeLevel=1 CheckSkyZone=1 CheckEnclose=1 OptionIFSs=-1",
    "CheckCarve=1 CheckBakeLight=1 TextLightTexel=256 TextLightMapSize=256 CheckEnclose=1",
    "CheckBakeLight=1 TextLightTexel=256 TextLightMapSize=64 CheckSkyZone=1 CheckOutputStaticLights=1",
};

ConversionSettings SettingsOf(const std::string& set, bool classic, bool conforming) {
  ConversionSettings settings;
  settings.TextSearchPathTxt = QUARVEL_SAMPLES_DIR "/textures";
  settings.TextSearchPathSnd = QUARVEL_SAMPLES_DIR "/sounds";
  settings.TextSearchPathMesh = QUARVEL_SAMPLES_DIR "/meshes";
  // What is copied, and into what, is not what this is about.
  settings.TextureDest.DestDoCopy = settings.SoundDest.DestDoCopy = settings.MeshDest.DestDoCopy = false;
  if (classic) SetOption(*FindOption("OptionFlux"), "-1", settings);
  SetOptions(set, settings);
  settings.CheckConforming = conforming;
  return settings;
}

class OptionSets : public testing::TestWithParam<const char*> {};

TEST_P(OptionSets, WriteScenesThatStrictViewersTake) {
  const std::string set = GetParam();
  const bool baked = set.find("CheckBakeLight") != set.npos, contact = set.find("OptionContact") != set.npos;
  for (const char* level : {"harbour", "terrace"}) {
    const std::string text = ReadFile(std::string(QUARVEL_SAMPLES_DIR "/") + level + ".t3d");
    // The default .x3dv is not for strict viewers.
    for (const auto& [classic, conforming] : {std::pair(false, false), std::pair(false, true), std::pair(true, true)}) {
      if (classic && contact) continue;
      SCOPED_TRACE(std::string(level) + (classic ? " .x3dv" : " .wrl") + (conforming ? " conforming" : ""));
      const Converted converted = Convert(text, SettingsOf(set, classic, conforming));
      ASSERT_EQ(converted.Result.Outcome, RunOutcome::Done) << converted.Result.Error;
      const ReadScene scene = ReadVrml(converted.Text), document = ReadX3D(converted.Document);
      EXPECT_EQ(scene.Faults, Texts());
      EXPECT_EQ(conforming ? document.Faults : WithoutQuirks(document.Faults), Texts());
      // VRML97 has no light maps.
      const bool comparable = conforming && (classic || !baked);
      EXPECT_EQ(comparable ? Differences(scene, document) : Texts(), Texts());
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Samples, OptionSets, testing::ValuesIn(optionSets));

} // namespace
} // namespace quarvel::test
