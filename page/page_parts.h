#pragma once

#include "base/report.h"

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// Something that a page carries inside.
struct PagePart {
  std::string_view Kind; ///< "viewer", "scene", "image" or "sound"
  std::string Name;      ///< what scenes call it
  std::string Content;   ///< in base64: a gzip file, or after "data:...;base64," the bytes as they are
};

/// Whether a file of this name is a sound that browsers play.
bool IsSoundName(const std::string& name);

/// The files that a page takes in, each once, under names of its own: no name of a level's stands in the page.
class PageParts {
 public:
  explicit PageParts(Report& report) : report_(report) {}

  /// An image: png, jpg and gif as they are, what else can be read as png. Returns its name; empty when it is no image
  /// that browsers show, which is reported.
  std::string AddImage(const std::filesystem::path& file);
  /// A sound as it is.
  std::string AddSound(const std::filesystem::path& file);
  /// A scene that others refer to.
  std::string AddScene(std::string_view text, std::string_view extension);

  /// Text that keeps its own name.
  void AddText(std::string_view kind, std::string name, std::string_view text);

  const std::vector<PagePart>& Parts() const { return parts_; }

 private:
  std::string NextName(std::string_view extension);
  std::string AddFile(const std::filesystem::path& file, std::string_view kind);

  Report& report_;
  std::vector<PagePart> parts_;
  std::map<std::filesystem::path, std::string> known_;
  int count_ = 0;
};

} // namespace quarvel
