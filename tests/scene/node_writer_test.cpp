#include "scene/node_writer.h"
#include "scene/xml_serializer.h"
#include "tests/temporary_folder.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace quarvel {
namespace {

class NodeWriter : public testing::Test {
 protected:
  std::string Document() const {
    XMLFaults faults;
    TextFile file(folder_.Path() / "scene.x3d", TextCoding::AsIs);
    EXPECT_TRUE(SaveXML(writer_.SceneDocument(), file, writer_.Conforming(), faults) && file.Complete());
    return folder_.Read("scene.x3d");
  }

  TemporaryFolder folder_;
  TextFile file_{folder_.Path() / "scene.wrl", TextCoding::AsIs};
  SceneWriter writer_{file_, TextEncoding::Vrml97, false};
  Report report_;
};

TEST_F(NodeWriter, ClosesWhatItOpensInBothEncodings) {
  SceneNode outer = writer_.Open(" ", "Transform", "A", {.BeforeBrace = 2});
  outer.Field("  translation", "1 2 3");
  outer.Children("  ", 0);
  {
    SceneNode place = writer_.Open("   ", "Transform", {}, {.BraceBelow = true, .Closing = 2});
    writer_.OpenOnlyChild("    ", "Group", "B").Close();
  }
  writer_.OneListNode("   coord ", "Coordinate", "C", "point", "0 0 0,1 1 1");
  writer_.Open("", "Viewpoint", "V", {.Scope = SceneScope::Text}).Flag(" jump", true);
  {
    const SceneNode group = writer_.Open("", "Group", {}, {.Scope = SceneScope::Document});
    writer_.Open("", "Sound", {}, {.Scope = SceneScope::Document}).Field(" intensity", "1");
  }
  outer.Close();
  EXPECT_EQ(writer_.SceneText(), " DEF A Transform  {\r\n  translation 1 2 3\r\n  children [\r\n"
                                 "   Transform\r\n   {\r\n    children [ DEF B Group {\r\n    } ]\r\n  }\r\n"
                                 "   coord DEF C Coordinate { point [\r\n0 0 0,1 1 1]\r\n   }\r\n"
                                 "DEF V Viewpoint {\r\n jump TRUE\r\n}\r\n]\r\n }\r\n");
  EXPECT_EQ(Document(), "<Transform DEF='A' translation='1 2 3'>\r\n <Transform>\r\n  <Group DEF='B'/>\r\n"
                        " </Transform>\r\n <Coordinate DEF='C' point='0 0 0,1 1 1'/>\r\n <Group>\r\n"
                        "  <Sound intensity='1'/>\r\n </Group>\r\n</Transform>\r\n");
}

TEST_F(NodeWriter, NoticesNodesThatAreNotClosedInOrder) {
  SceneNode outer = writer_.Open("", "Group");
  SceneNode inner = writer_.Open("", "Group");
  EXPECT_THROW(writer_.FinishRoutes(report_), std::logic_error);
  EXPECT_THROW(outer.Close(), std::logic_error);
}

TEST_F(NodeWriter, WritesRoutesWhereBothTheirNodesStand) {
  writer_.Define("A");
  AddRoute(writer_, "A", "time", "B", "set_time");
  AddRoute(writer_, "A", "time", "Never", "set_time");
  AddRoute(writer_, "Nobody", "time", "A", "set_time");
  AddRoute(writer_, "A", "time", "B", "later", SceneScope::Document);
  EXPECT_EQ(writer_.SceneText(), "") << "B is not there yet";
  writer_.Define("B");
  AddRoute(writer_, "B", "x", "A", "y", SceneScope::Text);
  EXPECT_EQ(writer_.SceneText(), "ROUTE B.x TO A.y\r\n");
  writer_.Flush();
  SceneNode group = writer_.Open("", "Group");
  AddRoute(writer_, "B", "inside", "A", "y");
  writer_.WriteReadyRoutes();
  group.Close();
  EXPECT_EQ(writer_.SceneText(), "Group {\r\n}\r\n") << "none inside a node";
  writer_.Flush();
  writer_.WriteReadyRoutes();
  writer_.WriteReadyRoutes();
  EXPECT_EQ(writer_.SceneText(), "ROUTE A.time TO B.set_time\r\nROUTE B.inside TO A.y\r\n");
  {
    const SceneNode last = writer_.Open("", "Group");
    AddRoute(writer_, "B", "late", "A", "y", SceneScope::Text);
  }
  writer_.FinishRoutes(report_);
  EXPECT_EQ(Document(), "<Group/>\r\n<Group/>\r\n"
                        "<ROUTE fromNode='A' fromField='time' toNode='B' toField='set_time'/>\r\n"
                        "<ROUTE fromNode='A' fromField='time' toNode='B' toField='later'/>\r\n"
                        "<ROUTE fromNode='B' fromField='inside' toNode='A' toField='y'/>\r\n");
  ASSERT_EQ(report_.Findings().size(), 3U);
  EXPECT_NE(report_.Findings()[0].Reason.find("Never"), std::string::npos);
}

TEST(SceneNames, AreLegalAndNeverTakenTwice) {
  EXPECT_EQ(MakeDefName("Brush12"), "Brush12");
  EXPECT_EQ(MakeDefName("12 a.b,c'd\"e#f{g}[h]\\i:j&k<l\xe4"), "_12_a_b_c_d_e_f_g__h__i_j_k_l_");
  EXPECT_EQ(MakeDefName("-x"), "_-x");
  EXPECT_EQ(MakeDefName("+x"), "_+x");
  EXPECT_EQ(MakeDefName(""), "_");
  EXPECT_LT(MakeDefName(std::string(100000, 'x')).size(), 190U) << "names are repeated for every face";
  EXPECT_EQ(MakeSceneText("It's \"a\" & b<c\\\n"), "It`s ``a`` _ b_c__");
  UniqueNames names;
  EXPECT_EQ(names.Take("A"), "A");
  EXPECT_EQ(names.Take("A_2"), "A_2");
  EXPECT_EQ(names.Take("A"), "A_3");
  EXPECT_EQ(names.Take("A"), "A_4");
  EXPECT_EQ(names.Take("A_2"), "A_2_2");
}

} // namespace
} // namespace quarvel
