#include "page/packing.h"
#include "page/page_maker.h"
#include "tests/temporary_folder.h"

#include <gtest/gtest.h>

namespace quarvel {
namespace {

TEST(Packing, WritesBase64OfAnyLength) {
  EXPECT_EQ(Base64(""), "");
  EXPECT_EQ(Base64("f"), "Zg==");
  EXPECT_EQ(Base64("fo"), "Zm8=");
  EXPECT_EQ(Base64("foo"), "Zm9v");
  EXPECT_EQ(Base64("\xff\xfe\xfd\xfc"), "//79/A==");
}

TEST(Packing, EscapesForWhereTextStands) {
  EXPECT_EQ(EscapeHtml("<a b=\"c\" d='e'>&"), "&lt;a b=&quot;c&quot; d=&#39;e&#39;&gt;&amp;");
  EXPECT_EQ(JsonString("&</script>\"\\\n\xe9"), "\"\\u0026\\u003c/script\\u003e\\\"\\\\\\u000a\xc3\xa9\"");
}

TEST(MakePage, PutsTextsWhereTheyCannotBecomeMarkup) {
  TemporaryFolder folder;
  folder.Write("level.x3d", R"(<X3D><Scene><WorldInfo title='&lt;/title&gt;{{script}}' info='"Author: &lt;b&gt;"'/>
    <Viewpoint DEF='V_a' description='&lt;/script&gt;'/></Scene></X3D>)");
  const ViewerFiles viewer{"Viewer & Co", "<Licence>", {{"x.js", "</script>"}}, {}};
  Report report;
  const PageInput input{folder.Path() / "level.x3d", {}, "name", 0.02, FindBelow};
  const MadePage page = MakePage(input, viewer, report);
  EXPECT_EQ(page.Error, "");
  EXPECT_NE(page.Html.find("<title>&lt;/title&gt;{{script}}</title>"), std::string::npos);
  EXPECT_NE(page.Html.find("by &lt;b&gt;"), std::string::npos);
  EXPECT_NE(page.Html.find("&lt;Licence&gt;"), std::string::npos);
  EXPECT_NE(page.Html.find("\"unit\":0.02,"), std::string::npos);
  std::size_t ends = 0, begins = 0;
  for (std::size_t at = 0; (at = page.Html.find("</script>", at)) != std::string::npos; ++at)
    ++ends;
  for (std::size_t at = 0; (at = page.Html.find("<script", at)) != std::string::npos; ++at)
    ++begins;
  EXPECT_EQ(ends, begins);
  EXPECT_EQ(page.Html, MakePage(input, viewer, report).Html) << "the same page for the same level";
}

TEST(MakePage, SaysWhyThereIsNone) {
  Report report;
  EXPECT_NE(MakePage({"/none.x3d", {}, "", 1, FindBelow}, ViewerFiles{}, report).Error, "");
  const ViewerFiles viewer = ReadViewer("/none/x_ite.min.js");
  EXPECT_NE(viewer.Error.find("/none/x_ite.min.js"), std::string::npos);
}

} // namespace
} // namespace quarvel
