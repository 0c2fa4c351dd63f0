#include "scene/node_writer.h"
#include "scene/xml_serializer.h"
#include "tests/temporary_folder.h"

#include <gtest/gtest.h>

namespace quarvel {
namespace {

/// A writer with the part of a document that nodes and routes go to.
struct Writer : SceneWriter {
  explicit Writer(bool conforming = false) : SceneWriter(TextEncoding::Vrml97, conforming) {
    Scene = SceneDocument.append_child("Scene");
    Group = Scene.append_child("Group");
  }

  std::string Document() {
    const TemporaryFolder folder;
    XMLFaults faults;
    EXPECT_TRUE(SaveXML(SceneDocument, folder.Path() / "scene.x3d", Conforming(), faults));
    return folder.Read("scene.x3d");
  }
};

TEST(NodeWriter, WritesATimeSensorInBothEncodings) {
  Writer writer;
  WriteTimeSensor(writer, "T", 0.25, true, false, writer.Group);
  WriteTimeSensor(writer, "U", 100000, false, true, writer.Group);
  EXPECT_EQ(writer.SceneText, "DEF T TimeSensor {\r\n cycleInterval 0.25\r\n loop TRUE\r\n enabled FALSE\r\n}\r\n"
                              "DEF U TimeSensor {\r\n cycleInterval 100000\r\n loop FALSE\r\n enabled TRUE\r\n}\r\n");
  EXPECT_EQ(writer.Document(), "<Scene>\r\n <Group>\r\n"
                               "  <TimeSensor DEF='T' cycleInterval='0.25' loop='true' enabled='false'/>\r\n"
                               "  <TimeSensor DEF='U' cycleInterval='100000' loop='false' enabled='true'/>\r\n"
                               " </Group>\r\n</Scene>\r\n");
}

TEST(NodeWriter, DeclaresScriptFields) {
  Writer writer;
  pugi::xml_node script = writer.Group.append_child("Script");
  AddScriptField(script, "set_time", "SFTime", "inputOnly", "GOBBLEDGOOK");
  AddScriptField(script, "count", "SFInt32", "inputOutput", "");
  AddAttribute(script, "DEF", "S");
  AddAttribute(script, "DEF", "S2");
  EXPECT_EQ(writer.Document(), "<Scene>\r\n <Group>\r\n  <Script DEF='S2'>\r\n"
                               "   <field name='set_time' type='SFTime' accessType='inputOnly'/>\r\n"
                               "   <field name='count' type='SFInt32' accessType='inputOutput' value=''/>\r\n"
                               "  </Script>\r\n </Group>\r\n</Scene>\r\n");
}

TEST(NodeWriter, WritesRoutesWhereBothTheirNodesStand) {
  Writer writer;
  writer.Open(writer.Group, "", "TimeSensor", "A");
  writer.SceneText.clear();
  AddRoute(writer, "A", "time", "B", "set_time");
  AddRoute(writer, "A", "time", "Never", "set_time");
  AddRoute(writer, "A", "time", "B", "later", RouteScope::Document);
  EXPECT_EQ(writer.SceneText, "") << "B is not there yet";
  writer.Define("B");
  AddRoute(writer, "B", "x", "A", "y", RouteScope::Text);
  EXPECT_EQ(writer.SceneText, "ROUTE B.x TO A.y\r\n");
  writer.InsideChildren = true;
  AddRoute(writer, "B", "inside", "A", "y");
  writer.WriteReadyRoutes();
  EXPECT_EQ(writer.SceneText, "ROUTE B.x TO A.y\r\n") << "none inside a children list";
  writer.InsideChildren = false;
  writer.WriteReadyRoutes();
  writer.WriteReadyRoutes();
  EXPECT_EQ(writer.SceneText, "ROUTE B.x TO A.y\r\nROUTE A.time TO B.set_time\r\nROUTE B.inside TO A.y\r\n");
  Report report;
  writer.FinishRoutes(report);
  EXPECT_EQ(writer.Document(), "<Scene>\r\n <Group>\r\n  <TimeSensor DEF='A'/>\r\n </Group>\r\n"
                               " <ROUTE fromNode='A' fromField='time' toNode='B' toField='set_time'/>\r\n"
                               " <ROUTE fromNode='A' fromField='time' toNode='B' toField='later'/>\r\n"
                               " <ROUTE fromNode='B' fromField='inside' toNode='A' toField='y'/>\r\n"
                               "</Scene>\r\n");
  ASSERT_EQ(report.Findings().size(), 1U);
  EXPECT_NE(report.Findings()[0].Reason.find("Never"), std::string::npos);
}

TEST(NodeWriter, QuotesStringListsInConformingDocuments) {
  for (const bool conforming : {false, true}) {
    Writer writer(conforming);
    writer.Open(writer.Group, "", "ImageTexture").Strings(" url", "wall.png", " [", "]");
    EXPECT_EQ(writer.SceneText, "ImageTexture {\r\n url [\"wall.png\"]\r\n");
    const std::string value = writer.Group.child("ImageTexture").attribute("url").value();
    EXPECT_EQ(value, conforming ? "\"wall.png\"" : "wall.png");
  }
}

TEST(SceneNames, AreLegalAndNeverTakenTwice) {
  EXPECT_EQ(MakeDefName("Brush12"), "Brush12");
  EXPECT_EQ(MakeDefName("12 a.b,c'd\"e#f{g}[h]\\i:j&k<l\xe4"), "_12_a_b_c_d_e_f_g__h__i_j_k_l_");
  EXPECT_EQ(MakeDefName("-x"), "_-x");
  EXPECT_EQ(MakeDefName(""), "_");
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
