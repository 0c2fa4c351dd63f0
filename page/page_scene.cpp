#include "page/page_scene.h"

#include "base/ascii_text.h"
#include "base/file_name.h"
#include "page/string_field.h"
#include "page/vrml_filter.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

namespace quarvel {

namespace fs = std::filesystem;

namespace {

/// The name of an element without a namespace; viewers take it in any letter case.
std::string LocalName(pugi::xml_node element) {
  const std::string_view name = element.name();
  const std::size_t colon = name.find(':');
  return LowerCase(colon == name.npos ? name : name.substr(colon + 1));
}

bool IsAddress(std::string_view attribute) {
  const std::string name = LowerCase(attribute);
  return name.size() >= 3 && name.compare(name.size() - 3, 3, "url") == 0;
}

bool IsWebAddress(std::string_view url) { return StartsWithText(url, "http://") || StartsWithText(url, "https://"); }

bool IsImageAddress(std::string_view nodeType, std::string_view attribute) {
  return nodeType == "imagetexture" || nodeType == "movietexture" || LowerCase(attribute) != "url";
}

std::vector<pugi::xml_node> ElementsOf(pugi::xml_node parent) {
  std::vector<pugi::xml_node> elements;
  for (pugi::xml_node child : parent.children())
    if (child.type() == pugi::node_element) elements.push_back(child);
  return elements;
}

void NoteNames(pugi::xml_node element, std::set<std::string>& names) {
  if (const pugi::xml_attribute def = element.attribute("DEF")) names.insert(def.value());
  for (pugi::xml_node child : element.children())
    NoteNames(child, names);
}

void CollectViews(pugi::xml_node parent, std::vector<PageView>& views) {
  for (pugi::xml_node element : parent.children()) {
    const std::string name = element.attribute("DEF").value();
    const std::string next = element.next_sibling().attribute("DEF").value();
    if (LocalName(element) == "viewpoint" && !name.empty()) {
      PageView view{name, element.attribute("description").value(), "start"};
      if (name.starts_with("V_FlyThru"))
        view.Kind = "flight";
      else if (next.starts_with("Tele"))
        view.Kind = "exit";
      else if (name.starts_with("V_InterpolationPoint"))
        view.Kind = "camera";
      if (view.Text.empty()) view.Text = name.starts_with("V_") ? name.substr(2) : name;
      views.push_back(std::move(view));
    }
    CollectViews(element, views);
  }
}

/// A viewer binds the first viewpoint of a scene: that is to be a start, not a fly-through.
void BindFirst(pugi::xml_document& document, const std::vector<PageView>& views) {
  const auto start =
      std::find_if(views.begin(), views.end(), [](const PageView& view) { return view.Kind == "start"; });
  if (start == views.end()) return;
  pugi::xml_node element =
      document.find_node([&](const pugi::xml_node& node) { return node.attribute("DEF").value() == start->Name; });
  pugi::xml_node parent = element.parent();
  if (LocalName(parent) == "group" || LocalName(parent) == "scene") parent.prepend_move(element);
}

pugi::xml_node FindElement(pugi::xml_node parent, const char* name) {
  return parent.find_node([&](const pugi::xml_node& node) { return std::string_view(node.name()) == name; });
}

} // namespace

std::optional<fs::path> FindBelow(std::string_view url, const fs::path& folder) {
  const std::string path = DecodeUrl(url);
  const fs::path relative = PathOfUtf8(path);
  if (path.find_first_of(":\\?#") != path.npos || relative.is_absolute()) return std::nullopt;
  std::error_code error;
  const fs::path root = fs::weakly_canonical(folder, error);
  const fs::path file = fs::weakly_canonical(root / relative, error);
  if (error || !LiesWithin(file, root) || !fs::is_regular_file(file, error)) return std::nullopt;
  return file;
}

PageLevel PageScenes::AdoptLevel(pugi::xml_document& document, const fs::path& folder) {
  PageLevel level;
  const pugi::xml_node info = FindElement(document, "WorldInfo");
  level.Title = info.attribute("title").value();
  for (const std::string& line : ReadStrings(info.attribute("info").value()))
    if (line.starts_with("Author: ")) level.Author = line.substr(8);
  CollectViews(document, level.Views);
  BindFirst(document, level.Views);
  // Whoever opens the page starts on foot; the menu has the fly-through.
  pugi::xml_node sensor = document.find_node(
      [](const pugi::xml_node& node) { return std::string_view(node.attribute("DEF").value()) == "STARTFLYTHRU"; });
  if (sensor) sensor.attribute("enabled").set_value("false");
  Scene scene{folder, "the level", Origin::Level, {}};
  Adopt(document, scene);
  DropRoutes(document, scene);
  level.Links = std::move(links_);
  return level;
}

void PageScenes::Adopt(pugi::xml_node parent, Scene& scene) {
  for (pugi::xml_node element : ElementsOf(parent)) {
    if (Drop(parent, element, scene)) continue;
    if (LocalName(element) == "anchor")
      ReplaceAnchor(element, scene);
    else
      AdoptAddresses(element, scene);
    Adopt(element, scene);
  }
}

/// Takes out what could run code, or fetch a prototype that nobody has looked at.
bool PageScenes::Drop(pugi::xml_node parent, pugi::xml_node element, Scene& scene) {
  const std::string type = LocalName(element);
  const bool isShader = type.find("shader") != type.npos;
  const bool isCode = type == "script" || type == "externprotodeclare" || type == "loadsensor" || isShader;
  if (!isCode || scene.From != Origin::Foreign) return false;
  report_.Add(FindingCode::PageLeavesOutNodes, scene.Name, element.name());
  NoteNames(element, scene.Dropped);
  parent.remove_child(element);
  return true;
}

void PageScenes::AdoptAddresses(pugi::xml_node element, const Scene& scene) {
  const std::string type = LocalName(element);
  if (type == "script") return;
  std::vector<pugi::xml_attribute> attributes;
  for (pugi::xml_attribute attribute : element.attributes())
    if (IsAddress(attribute.name())) attributes.push_back(attribute);
  for (pugi::xml_attribute attribute : attributes) {
    std::string name;
    for (const std::string& url : ReadStrings(attribute.value())) {
      name = NameOf(url, IsImageAddress(type, attribute.name()) ? "image" : type, scene);
      if (!name.empty()) break;
    }
    if (name.empty())
      element.remove_attribute(attribute);
    else
      attribute.set_value(("\"" + name + "\"").c_str());
  }
}

/// The part of the page that an address leads to.
std::string PageScenes::NameOf(const std::string& url, std::string_view nodeType, const Scene& scene) {
  const std::optional<fs::path> file = find_(url, scene.Folder);
  if (!file) {
    // What the level itself misses is in the lists of missing files.
    if (scene.From == Origin::Foreign) report_.Add(FindingCode::PageLeavesOutAddress, scene.Name, url);
    return {};
  }
  if (nodeType == "inline") return AddSceneFile(*file);
  if (nodeType == "audioclip") return parts_.AddSound(*file);
  return nodeType == "image" ? parts_.AddImage(*file) : std::string();
}

/// The page opens links itself, and knows only those of the level's own scene.
void PageScenes::ReplaceAnchor(pugi::xml_node element, const Scene& scene) {
  const std::vector<std::string> addresses = ReadStrings(element.attribute("url").value());
  element.set_name("Group");
  for (const char* attribute : {"url", "description", "parameter"})
    element.remove_attribute(attribute);
  const auto address = std::find_if(addresses.begin(), addresses.end(), IsWebAddress);
  if (scene.From != Origin::Level || address == addresses.end()) {
    if (!addresses.empty()) report_.Add(FindingCode::PageLeavesOutLink, scene.Name, addresses.front());
    return;
  }
  const std::string name = "PageLink" + std::to_string(links_.size());
  pugi::xml_node sensor = element.prepend_child("TouchSensor");
  sensor.append_attribute("DEF").set_value(name.c_str());
  links_.emplace(name, *address);
}

void PageScenes::DropRoutes(pugi::xml_node parent, const Scene& scene) {
  for (pugi::xml_node element : ElementsOf(parent)) {
    DropRoutes(element, scene);
    if (LocalName(element) != "route") continue;
    if (scene.Dropped.contains(element.attribute("fromNode").value()) ||
        scene.Dropped.contains(element.attribute("toNode").value()))
      parent.remove_child(element);
  }
}

/// A scene that inlines itself, directly or not, is not inlined there.
std::string PageScenes::AddSceneFile(const fs::path& file) {
  const auto [at, isNew] = scenes_.try_emplace(file);
  if (!isNew) return at->second;
  const std::string extension = LowerCase(ExtensionOf(Utf8Path(file)));
  const bool isXml = extension == "x3d" || extension == ".x3d";
  const std::optional<std::string> text = ReadSceneFile(file, isXml);
  if (!text) return {};
  scenes_[file] = parts_.AddScene(*text, isXml ? "x3d" : "wrl");
  return scenes_[file];
}

std::optional<std::string> PageScenes::ReadSceneFile(const fs::path& file, bool isXml) {
  std::error_code ignored;
  const bool isSky = !sky_.empty() && fs::equivalent(file, sky_, ignored);
  Scene scene{file.parent_path(), Utf8Path(file.filename()), isSky ? Origin::Sky : Origin::Foreign, {}};
  const auto fail = [&](const char* reason) {
    report_.Add(FindingCode::PageWithoutFile, scene.Name, reason);
    return std::nullopt;
  };
  if (isXml) {
    pugi::xml_document document;
    if (!document.load_file(file.c_str(), pugi::parse_default & ~pugi::parse_doctype)) return fail("it is no XML");
    Adopt(document, scene);
    DropRoutes(document, scene);
    std::ostringstream out;
    document.save(out, "", pugi::format_raw);
    return out.str();
  }
  std::ifstream in(file, std::ios::binary);
  if (!in) return fail("it cannot be read");
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  if (!text.starts_with("#VRML") && !text.starts_with("#X3D")) return fail("it is no scene that can be looked through");
  const auto name = [&](const std::string& url, std::string_view type) { return NameOf(url, type, scene); };
  FilteredVrml filtered = FilterVrml(text, name);
  for (const std::string& type : filtered.Dropped)
    report_.Add(FindingCode::PageLeavesOutNodes, scene.Name, type);
  return std::move(filtered.Text);
}

} // namespace quarvel
