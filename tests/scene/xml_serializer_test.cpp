#include "scene/xml_serializer.h"
#include "tests/temporary_folder.h"

#include <gtest/gtest.h>

namespace quarvel {
namespace {

std::string Saved(const pugi::xml_document& document, bool conforming, XMLFaults& faults) {
  const TemporaryFolder folder;
  TextFile file(folder.Path() / "scene.x3d", TextCoding::AsIs);
  EXPECT_TRUE(SaveXML(document, file, conforming, faults) && file.Complete());
  return folder.Read("scene.x3d");
}

pugi::xml_document MadeDocument(const char* value) {
  pugi::xml_document document;
  pugi::xml_node declaration = document.append_child(pugi::node_declaration);
  declaration.set_name("xml");
  declaration.append_attribute("version").set_value("1.0");
  declaration.append_attribute("encoding").set_value("UTF-8");
  document.append_child(pugi::node_comment).set_value("Converted with Quarvel/VRML");
  pugi::xml_node root = document.append_child("X3D");
  root.append_attribute("profile").set_value("Immersive");
  pugi::xml_node script = root.append_child("Scene").append_child("Script");
  script.append_attribute("url").set_value(value);
  script.append_attribute("empty").set_value("");
  return document;
}

TEST(XMLSerializer, EscapesOnlyWhenConforming) {
  const char* value = "a<b && c='d'\r\n\xe4\x80";
  const pugi::xml_document document = MadeDocument(value);
  XMLFaults faults;
  EXPECT_NE(Saved(document, false, faults).find("url='" + std::string(value) + "' empty=''"), std::string::npos);
  EXPECT_TRUE(faults.Markup && faults.Characters);

  faults = {};
  const std::string text = Saved(document, true, faults);
  EXPECT_FALSE(faults.Markup || faults.Characters);
  EXPECT_NE(text.find("<!-- Converted"), std::string::npos);
  pugi::xml_document read;
  ASSERT_TRUE(read.load_string(text.c_str(), pugi::parse_default | pugi::parse_wconv_attribute));
  const std::string url = read.child("X3D").child("Scene").child("Script").attribute("url").value();
  EXPECT_EQ(url, "a<b && c='d'\n\xc3\xa4\xe2\x82\xac") << "Windows-1252 as UTF-8, line ends kept";
}

TEST(XMLSerializer, TellsUtf8FromOtherBytes) {
  const auto refused = [](const char* value) {
    XMLFaults faults;
    Saved(MadeDocument(value), false, faults);
    return faults.Characters;
  };
  EXPECT_FALSE(refused("\xc3\xa4 \xe2\x82\xac \xf0\x9f\x98\x80 \t"));
  for (const char* bad : {"\xc3", "\x80", "\xc0\xaf", "\xe2\x82", "\xe2\x28\xa1", "\xff", "\x01"})
    EXPECT_TRUE(refused(bad)) << bad;
}

TEST(XMLSerializer, SaysWhenAFileCannotBeWritten) {
  XMLFaults faults;
  TextFile nowhere("/nonexistent/scene.x3d", TextCoding::AsIs), full("/dev/full", TextCoding::AsIs);
  EXPECT_FALSE(SaveXML(MadeDocument(""), nowhere, false, faults));
  EXPECT_FALSE(nowhere.Error().empty());
  if (std::filesystem::exists("/dev/full")) {
    EXPECT_FALSE(SaveXML(MadeDocument(""), full, false, faults));
  }
}

} // namespace
} // namespace quarvel
