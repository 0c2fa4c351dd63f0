#include "tests/scene/node_rules.h"
#include "tests/scene/scene_readers.h"

#include <algorithm>
#include <iterator>

namespace quarvel::test {

namespace {

/// Fields as both encodings write them: separators, quotes and the case of booleans do not count.
std::string Normal(std::string_view value) {
  std::vector<std::string> words = Words(value);
  for (std::string& word : words) {
    std::erase(word, '"');
    if (word == "true") word = "TRUE";
    if (word == "false") word = "FALSE";
  }
  return Joined(words);
}

/// Defaults that only one of the encodings writes.
bool IsLeftOut(std::string_view field, std::string_view value) {
  return (field == "scale" && value == "1 1 1") || (field == "emissiveColor" && value == "0 0 0") ||
         (field == "location" && value == "0 0 0");
}

/// VRML97 has no interpolator for pairs of numbers: there a script moves a texture.
bool MovesTextures(std::string_view name) {
  return IsOneOf(name, "SCRIPTUVPAN SCRIPTUPAN SCRIPTVPAN SCRIPTSMALLWAVY POSINT2DUVPAN POSINT2DUPAN POSINT2DVPAN "
                       "WAVYPOSINT");
}

bool RoutesTextureMotion(std::string_view route) {
  const std::string_view to = route.substr(route.rfind(' ') + 1);
  return MovesTextures(route.substr(0, route.find('.'))) || MovesTextures(to.substr(0, to.find('.')));
}

} // namespace

std::vector<std::string> Describe(const ReadScene& scene) {
  std::vector<std::string> lines;
  for (const ReadNode& node : scene.Nodes) {
    // Scripts declare their fields in ways of their own; a text's USE does not say the type.
    if (IsOneOf(node.Type, FrameTypes) || IsOneOf(node.Type, "Script field") || MovesTextures(node.Def)) continue;
    const std::string type = node.Use.empty() ? node.Type : "USE";
    // The document names the sky's Inline, too.
    const bool sky = node.Type == "Inline" && scene.OwnerOf(node) == "WT_" + node.Def;
    std::string line = type + " '" + (sky ? "" : node.Def) + node.Use + "' in '" + scene.OwnerOf(node) + "'";
    for (const auto& [field, value] : node.Fields) {
      // X3D's name for the field of VRML97.
      const std::string name = node.Type == "Collision" && field == "enabled" ? "collide" : field;
      // Each scene inlines files of its own encoding.
      std::string shown = Normal(value);
      if (node.Type == "Inline") shown.erase(std::min(shown.rfind('.'), shown.size()));
      if (!IsLeftOut(field, shown)) line += " " + name + " " + shown;
    }
    lines.push_back(line);
  }
  for (const std::string& route : scene.Routes)
    if (!RoutesTextureMotion(route)) lines.push_back("ROUTE " + route);
  std::sort(lines.begin(), lines.end());
  return lines;
}

std::vector<std::string> Differences(const ReadScene& text, const ReadScene& document) {
  const std::vector<std::string> inText = Describe(text), inDocument = Describe(document);
  std::vector<std::string> differences;
  const auto add = [&](const auto& a, const auto& b, const std::string& what) {
    std::vector<std::string> only;
    std::set_difference(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(only));
    for (const std::string& line : only)
      differences.push_back(what + line.substr(0, 300));
  };
  add(inText, inDocument, "only in the text: ");
  add(inDocument, inText, "only in the document: ");
  return differences;
}

std::vector<std::string> WithoutQuirks(std::vector<std::string> faults) {
  constexpr std::string_view quirks[] = {"FlickerTimer is defined twice",  "World is defined twice",
                                         "Collision has no field collide", "'texture' is no node type",
                                         "a texture in Appearance",        "a ImageTexture in texture"};
  for (const std::string_view quirk : quirks)
    std::erase_if(faults, [&](const std::string& fault) { return fault.ends_with(quirk); });
  // Lights in Transforms are named by their Tags.
  std::erase_if(faults, [](const std::string& fault) { return fault.starts_with("L_") && fault.ends_with(" twice"); });
  return faults;
}

} // namespace quarvel::test
