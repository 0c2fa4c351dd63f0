#include "page/page_scene.h"
#include "page/vrml_filter.h"
#include "tests/temporary_folder.h"

#include <gtest/gtest.h>
#include <sstream>

namespace quarvel {
namespace {

std::string TextOf(const pugi::xml_document& document) {
  std::ostringstream out;
  document.save(out, "", pugi::format_raw);
  return out.str();
}

bool Tells(const Report& report, std::string_view text) {
  for (const Finding& finding : report.Findings())
    if ((finding.Actor + ": " + finding.Reason).find(text) != std::string::npos) return true;
  return false;
}

/// A level that inlines a mesh, and the parts that come of it.
class AdoptedMesh : public testing::Test {
 protected:
  /// The kinds and names of all parts.
  std::string Adopt(const std::string& file, const std::string& text) {
    Folder.Write(file, text);
    Level.load_string(("<X3D><Scene><Inline url='\"" + file + "\"'/></Scene></X3D>").c_str());
    PageScenes scenes(FindBelow, Parts, Findings, Sky);
    scenes.AdoptLevel(Level, Folder.Path());
    std::string names;
    for (const PagePart& part : Parts.Parts())
      names += std::string(part.Kind) + " " + part.Name + ";";
    return names;
  }

  TemporaryFolder Folder;
  std::filesystem::path Sky;
  pugi::xml_document Level;
  Report Findings;
  PageParts Parts{Findings};
};

TEST(FindBelow, FindsWhatLiesInTheFolderAndNothingElse) {
  TemporaryFolder folder;
  folder.Write("scene/tex/a b.png", "");
  folder.Write("secret.png", "");
  const auto scene = folder.Path() / "scene";
  std::filesystem::create_symlink(folder.Path() / "secret.png", scene / "link.png");
  EXPECT_TRUE(FindBelow("tex/a%20b.png", scene));
  for (const std::string url : {"../secret.png", "tex/../../secret.png", "%2e%2e/secret.png", "link.png", "tex", "",
                                "http://example.org/a.png", "tex\\a b.png", "tex/a%20b.png?x"})
    EXPECT_FALSE(FindBelow(url, scene)) << url;
  EXPECT_FALSE(FindBelow((folder.Path() / "secret.png").string(), scene));
}

TEST_F(AdoptedMesh, LosesItsScriptsAndForeignAddresses) {
  Folder.Write("own.gif", "GIF89a");
  const std::string parts = Adopt("mesh.x3d", R"x(<X3D><Scene><x:SCRIPT xmlns:x='y' DEF='S' url='"javascript:x"'/>
    <ExternProtoDeclare name='P' url='"p.wrl"'/><Anchor url='"javascript:alert(1)"'><Shape/></Anchor>
    <Anchor url='"https://example.org/b"'><Shape/></Anchor>
    <ImageTexture url='"http://example.org/a.png" "own.gif"'/><ImageTexture url='"../up.png"'/>
    <ROUTE fromNode='S' fromField='a' toNode='T' toField='b'/></Scene></X3D>)x");
  EXPECT_EQ(parts, "image page-1.gif;scene page-2.x3d;");
  EXPECT_NE(TextOf(Level).find("page-2.x3d"), std::string::npos);
  for (const char* told : {"SCRIPT", "ExternProtoDeclare", "http://example.org/a.png", "../up.png",
                           "javascript:alert(1)", "https://example.org/b"})
    EXPECT_TRUE(Tells(Findings, told)) << told;
}

/// What the sky misses is in the lists of missing files, and its scripts are the converter's own.
TEST_F(AdoptedMesh, IsTrustedWhenItIsTheSky) {
  Sky = Folder.Path() / "sky.x3d";
  Adopt("sky.x3d", "<X3D><Scene><Script DEF='S'/><ImageTexture url='\"none.png\"'/></Scene></X3D>");
  EXPECT_TRUE(Findings.Findings().empty());
  Adopt("mesh.x3d", "<X3D><Scene><Script DEF='S'/></Scene></X3D>");
  EXPECT_TRUE(Tells(Findings, "mesh.x3d"));
}

TEST_F(AdoptedMesh, IsTakenInOnceAndNotIntoItself) {
  EXPECT_EQ(Adopt("self.x3d", "<X3D><Scene><Inline url='\"self.x3d\"'/></Scene></X3D>"), "scene page-1.x3d;");
  EXPECT_EQ(Adopt("no.wrl", "PK\3\4"), "scene page-1.x3d;");
  EXPECT_TRUE(Tells(Findings, "no.wrl"));
}

TEST(PageLevel, KnowsItsViewsTextsAndLinks) {
  pugi::xml_document level;
  level.load_string(R"(<X3D><Scene><WorldInfo title='The "T"' info='"Author: A \"B\"" "x"'/>
    <Transform><Viewpoint DEF='V_FlyThru' description='Flight'/></Transform>
    <ProximitySensor DEF='STARTFLYTHRU' enabled='true'/>
    <Group><Viewpoint DEF='V_Exit' description='hall'/><ProximitySensor DEF='TeleExit'/>
    <Viewpoint DEF='V_PlayerStart0'/></Group><Script url='"javascript:x"'/>
    <Anchor url='"ftp://x" "https://example.org/a"'><Shape/></Anchor><Anchor url='"javascript:x"'/></Scene></X3D>)");
  Report report;
  PageParts parts(report);
  PageLevel page = PageScenes(FindBelow, parts, report).AdoptLevel(level, "/nowhere");
  EXPECT_EQ(page.Title, "The \"T\"");
  EXPECT_EQ(page.Author, "A \"B\"");
  ASSERT_EQ(page.Views.size(), 3u);
  EXPECT_EQ(page.Views[0].Kind, "flight");
  EXPECT_EQ(page.Views[1].Kind, "exit");
  EXPECT_EQ(page.Views[2].Text, "PlayerStart0");
  EXPECT_EQ(page.Links, (std::map<std::string, std::string>{{"PageLink0", "https://example.org/a"}}));
  const std::string text = TextOf(level);
  EXPECT_LT(text.find("V_PlayerStart0"), text.find("V_Exit")) << "a viewer binds the first";
  EXPECT_NE(text.find("DEF=\"STARTFLYTHRU\" enabled=\"false\""), std::string::npos);
  EXPECT_NE(text.find("<Script"), std::string::npos) << "the converter's own";
  EXPECT_EQ(text.find("Anchor"), std::string::npos);
}

TEST(VrmlFilter, TakesOutCodeAndRenamesAddresses) {
  const auto rename = [](const std::string& url, std::string_view type) {
    return url == "a.png" && type == "image" ? std::string("page-1.png") : std::string();
  };
  const FilteredVrml filtered = FilterVrml(R"(#VRML V2.0 utf8
# Script { in a comment }
DEF S Script { url "javascript: } \" {" eventOut SFBool b }
EXTERNPROTO P [ field SFBool f ] [ "http://x/p.wrl" ]
P { f TRUE }
Shape { appearance Appearance { texture ImageTexture { url [ "http://x/b.png", "a.png" ] repeatS TRUE } } }
Anchor { url "http://x/" children [] }
Background { backUrl "a.png" }
PROTO Q [ field MFString url [] ] { Inline { url IS url } }
DEF T Transform { translation 1 2 3 }
LoadSensor { timeOut 5 }
ROUTE S.b TO T.c
ROUTE T.b TO S.c
ROUTE T.b TO T.c
)",
                                           rename);
  EXPECT_EQ(filtered.Text, R"(#VRML V2.0 utf8
# Script { in a comment }
DEF S Group { }

Group { }
Shape { appearance Appearance { texture ImageTexture { url "page-1.png" repeatS TRUE } } }
Anchor { url [ ] children [] }
Background { backUrl "page-1.png" }
PROTO Q [ field MFString url [ ] ] { Inline { url IS url } }
DEF T Transform { translation 1 2 3 }
Group { }


ROUTE T.b TO T.c
)");
  EXPECT_EQ(filtered.Dropped, (std::set<std::string>{"LoadSensor", "P", "Script"}));
  for (const char* cut : {"Script {", "Script", "EXTERNPROTO", "EXTERNPROTO P [", "url [", "url \"", "ROUTE a", "DEF"})
    EXPECT_NO_THROW(FilterVrml(cut, rename)) << cut;
}

} // namespace
} // namespace quarvel
