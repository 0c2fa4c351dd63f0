#include "page/page_maker.h"

#include "math/number_text.h"
#include "page/packing.h"
#include "page/page_data.h"
#include "page/page_parts.h"

#include <map>
#include <sstream>
#include <stdexcept>

namespace quarvel {

namespace {

/// What takes the place of "{{name}}" in the template.
using Insertions = std::map<std::string_view, std::string>;

/// One pass: what is put in is not looked through.
std::string Fill(std::string_view form, const Insertions& insertions) {
  std::string text;
  for (std::size_t at = 0;;) {
    const std::size_t open = form.find("{{", at);
    text += form.substr(at, open - at);
    if (open == form.npos) return text;
    const std::size_t close = form.find("}}", open);
    text += insertions.at(form.substr(open + 2, close - open - 2));
    at = close + 2;
  }
}

std::string LevelJson(const PageLevel& level, double unitLength) {
  std::string json = "{\"unit\":" + FormatFlt(unitLength) + ",\"views\":[";
  const char* comma = "";
  for (const PageView& view : level.Views) {
    json += comma + std::string("{\"name\":") + JsonString(view.Name) + ",\"text\":" + JsonString(view.Text) +
            ",\"kind\":" + JsonString(view.Kind) + "}";
    comma = ",";
  }
  json += "],\"links\":{";
  comma = "";
  for (const auto& [name, address] : level.Links) {
    json += comma + JsonString(name) + ":" + JsonString(address);
    comma = ",";
  }
  return json + "}}";
}

/// Nothing in a part's content could end the element: it is base64.
std::string PartElements(const std::vector<PagePart>& parts) {
  std::string elements;
  for (const PagePart& part : parts) {
    elements += "<script type=\"text/plain\" data-kind=\"" + std::string(part.Kind) + "\" data-name=\"" +
                EscapeHtml(part.Name) + "\">" + part.Content + "</script>\n";
  }
  return elements;
}

/// Starts come first: the page opens at the first view.
void OrderViews(std::vector<PageView>& views) {
  std::stable_partition(views.begin(), views.end(), [](const PageView& view) { return view.Kind == "start"; });
}

} // namespace

MadePage MakePage(const PageInput& input, const ViewerFiles& viewer, Report& report) {
  pugi::xml_document document;
  if (!document.load_file(input.Scene.c_str())) return {{}, "the page's scene cannot be read"};
  PageParts parts(report);
  for (const auto& [name, text] : viewer.Parts)
    parts.AddText("viewer", name, text);
  PageScenes scenes(input.Find, parts, report, input.Sky);
  PageLevel level = scenes.AdoptLevel(document, input.Scene.parent_path());
  OrderViews(level.Views);
  if (level.Title.empty()) level.Title = input.LevelName;
  std::ostringstream scene;
  document.save(scene, "", pugi::format_raw);
  parts.AddText("scene", "level.x3d", scene.str());

  const std::string elements = PartElements(parts.Parts());
  Insertions insertions{{"version", QUARVEL_VERSION},
                        {"script-sources", ""},
                        {"connect-sources", "'none'"},
                        {"title", EscapeHtml(level.Title)},
                        {"author", level.Author.empty() ? "" : "by " + EscapeHtml(level.Author)},
                        {"style", std::string(pageStyle)},
                        {"viewer", EscapeHtml(viewer.Name)},
                        {"licence", EscapeHtml(viewer.Licence)},
                        {"level", LevelJson(level, input.UnitLength)},
                        {"parts", elements},
                        {"nonce", Fingerprint(elements + level.Title)},
                        {"script", std::string(viewerScript) + std::string(lightScript) + std::string(walkScript) +
                                       std::string(pageScript)}};
  return {Fill(pageHtml, insertions), {}};
}

} // namespace quarvel
