#pragma once

#include "base/report.h"
#include "page/page_parts.h"

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <pugixml.hpp>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// Finds the file that a scene in `folder` refers to by a relative address; none when there is no such file, or when it
/// is nothing that a page may take in.
using FindPageFile =
    std::function<std::optional<std::filesystem::path>(std::string_view url, const std::filesystem::path& folder)>;

/// Looks in `folder` and below. Addresses that lead out of it, or that are no plain relative paths, find nothing.
std::optional<std::filesystem::path> FindBelow(std::string_view url, const std::filesystem::path& folder);

/// A viewpoint of the level that the page's menu offers.
struct PageView {
  std::string Name; ///< DEF
  std::string Text;
  std::string_view Kind; ///< "start", "camera", "exit" (of a teleporter) or "flight"
};

/// What a page has to know about the level's scene.
struct PageLevel {
  std::string Title;
  std::string Author;
  std::vector<PageView> Views;
  std::map<std::string, std::string> Links; ///< DEF of the sensor that takes the place of an Anchor, and its address
};

/// Makes a level's conforming X3D scene one that needs no other file: what it refers to goes into the parts, and what a
/// page must not do is taken out.
class PageScenes {
 public:
  /// `sky` is the scene of the level's sky, where that is a file of its own.
  PageScenes(FindPageFile find, PageParts& parts, Report& report, std::filesystem::path sky = {})
      : find_(std::move(find)), sky_(std::move(sky)), parts_(parts), report_(report) {}

  /// Changes the document in place. Its scripts are the converter's own and stay.
  PageLevel AdoptLevel(pugi::xml_document& document, const std::filesystem::path& folder);

 private:
  /// The converter's own scenes, or a file of someone else's.
  enum class Origin { Level, Sky, Foreign };

  struct Scene {
    std::filesystem::path Folder;
    std::string Name; ///< in the report
    Origin From = Origin::Foreign;
    std::set<std::string> Dropped; ///< names of nodes that were taken out
  };

  void Adopt(pugi::xml_node parent, Scene& scene);
  bool Drop(pugi::xml_node parent, pugi::xml_node element, Scene& scene);
  void AdoptAddresses(pugi::xml_node element, const Scene& scene);
  void ReplaceAnchor(pugi::xml_node element, const Scene& scene);
  void DropRoutes(pugi::xml_node parent, const Scene& scene);
  std::string NameOf(const std::string& url, std::string_view nodeType, const Scene& scene);
  std::string AddSceneFile(const std::filesystem::path& file);
  std::optional<std::string> ReadSceneFile(const std::filesystem::path& file, bool isXml);

  FindPageFile find_;
  std::filesystem::path sky_;
  PageParts& parts_;
  Report& report_;
  std::map<std::string, std::string> links_;
  std::map<std::filesystem::path, std::string> scenes_; ///< names; empty while a scene is being taken in
};

} // namespace quarvel
