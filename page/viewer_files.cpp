#include "page/viewer_files.h"

#include "base/file_name.h"

#include <fstream>
#include <iterator>
#include <optional>

namespace quarvel {

namespace fs = std::filesystem;

namespace {

constexpr const char* scriptName = "x_ite.min.js";

/// What the profile Immersive of X3D loads beyond the script itself.
constexpr const char* components[] = {"EventUtilities", "Geometry2D", "KeyDeviceSensor", "Scripting", "Text"};

std::optional<std::string> ReadAll(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return std::nullopt;
  std::string text{std::istreambuf_iterator<char>(in), {}};
  if (in.bad()) return std::nullopt;
  return text;
}

/// The version that the script states in its first comment ("/* X_ITE v15.0.1 */").
std::string VersionOf(const std::string& script) {
  const std::size_t at = script.find("X_ITE v");
  if (at == script.npos || at > 200) return {};
  const std::size_t from = at + 7;
  return " " + script.substr(from, script.find_first_not_of("0123456789.", from) - from);
}

} // namespace

fs::path FindViewer(const fs::path& programData) {
  if (programData.empty()) return {};
  std::error_code error;
  const fs::path script = programData / "viewer" / scriptName;
  return fs::is_regular_file(script, error) ? script : fs::path();
}

ViewerFiles ReadViewer(const fs::path& script) {
  ViewerFiles viewer;
  const fs::path folder = script.parent_path();
  const auto read = [&](const fs::path& file) {
    std::optional<std::string> text = ReadAll(file);
    if (!text && viewer.Error.empty()) viewer.Error = "the viewer's file " + Utf8Path(file) + " cannot be read";
    return text.value_or("");
  };
  viewer.Parts.emplace_back(scriptName, read(script));
  viewer.Parts.emplace_back("x_ite.css", read(folder / "x_ite.css"));
  for (const std::string component : components) {
    const std::string name = "assets/components/" + component + "Component.min.js";
    viewer.Parts.emplace_back(name, read(folder / PathOfUtf8(name)));
  }
  viewer.Licence = read(folder / "LICENSE.md");
  viewer.Name = "X_ITE" + VersionOf(viewer.Parts.front().second);
  return viewer;
}

} // namespace quarvel
