#include "scene/mesh_inlines.h"
#include "tests/scene/scene_fixture.h"

#include <gtest/gtest.h>

namespace quarvel::test {
namespace {

class MeshInlinesTest : public SceneFixture {
 protected:
  StaticMeshRecord Actor(const std::string& name) {
    StaticMeshRecord actor;
    actor.Header.Name = name;
    return actor;
  }
  /// Places one actor for each mesh.
  void Place(std::initializer_list<const char*> meshes) {
    Begin();
    int number = 0;
    for (const char* mesh : meshes)
      context_->Meshes.WritePlacedMesh(Actor("Actor" + std::to_string(number++)), mesh);
  }
};

TEST_F(MeshInlinesTest, AMeshIsDefinedOnceAndUsedAfterwards) {
  folder_.Write("lib/Props/Urn.wrl", "");
  folder_.Write("lib/Props/Urn.x3d", "");
  folder_.Write("lib/Other/Urn.wrl", "other");
  Place({"Props.Urn", "StaticMesh'props.urn'", "Other.Urn", "Props.Urn"});
  const std::string text = Text();
  EXPECT_NE(text.find("    DEF MSH_Urn Inline {\n      url \"Urn.wrl\"\n    }\n"), text.npos);
  EXPECT_EQ(CountOf(text, "DEF MSH_Urn Inline"), 1U);
  EXPECT_EQ(CountOf(text, "USE MSH_Urn\n"), 2U);
  EXPECT_EQ(CountOf(text, "DEF MSH_Urn_2 Inline"), 1U) << "a mesh of the same name in another package";
  EXPECT_STREQ(Element("//Inline[@DEF='MSH_Urn']").attribute("url").value(), "Urn.x3d");
  EXPECT_EQ(CountElements("//Transform/Inline[@USE='MSH_Urn']"), 2U);
}

TEST_F(MeshInlinesTest, EachSceneFallsBackToTheOtherType) {
  folder_.Write("lib/Old.wrl", "");
  folder_.Write("lib/New.x3d", "");
  Place({"Old", "New"});
  EXPECT_EQ(CountOf(Text(), "url \"New.x3d\""), 1U);
  EXPECT_STREQ(Element("//Inline[@DEF='MSH_Old']").attribute("url").value(), "Old.wrl");
}

TEST_F(MeshInlinesTest, ReversedFilesAreTakenOnlyWhenFacesAreNotReversed) {
  folder_.Write("lib/Urn.wrl", "");
  folder_.Write("lib/Urn-.wrl", "-");
  settings_.CheckMeshAppendCCW = true;
  Place({"Urn"});
  EXPECT_EQ(CountOf(Text(), "DEF MSH_Urn Inline {\n      url \"Urn-.wrl\""), 1U);
  settings_.CheckCCW = true;
  Place({"Urn"});
  EXPECT_EQ(CountOf(Text(), "url \"Urn.wrl\""), 1U);
}

} // namespace
} // namespace quarvel::test
