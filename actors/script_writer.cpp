#include "actors/script_writer.h"

#include <algorithm>

namespace quarvel {

namespace {

/// Takes the next word, and the blanks before it, off the text.
std::string_view TakeWord(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  const std::string_view word = text.substr(0, text.find(' '));
  text.remove_prefix(word.size());
  return word;
}

struct Keyword {
  std::string_view InText;
  std::string_view InX3D;
  const char* AccessType; ///< in the document
};

const Keyword& KeywordOf(std::string_view word) {
  static constexpr Keyword keywords[] = {{"eventIn", "inputOnly", "inputOnly"},
                                         {"eventOut", "outputOnly", "outputOnly"},
                                         {"field", "initializeOnly", "inputOutput"}};
  const auto* at =
      std::find_if(std::begin(keywords), std::end(keywords), [&](const Keyword& k) { return k.InText == word; });
  return at == std::end(keywords) ? keywords[2] : *at;
}

} // namespace

void WriteScriptField(const SceneNode& script, std::string_view line, const DocumentField& inDocument) {
  SceneWriter& scene = script.Writer();
  const std::string_view indent = line.substr(0, std::min(line.find_first_not_of(' '), line.size()));
  std::string_view rest = line;
  const Keyword& keyword = KeywordOf(TakeWord(rest));
  if (scene.IsX3DClassic() && scene.Conforming())
    scene.Line(indent, keyword.InX3D, rest);
  else
    scene.Line(line);
  if (scene.IsX3DClassic() && !scene.Conforming())
    scene.NoteQuirk("the words eventIn/eventOut/field in the scripts of the .x3dv");

  const std::string_view type = TakeWord(rest);
  const std::string_view name = TakeWord(rest);
  std::string value(TakeWord(rest));
  if (value == "TRUE" || value == "FALSE") value = value == "TRUE" ? "true" : "false";
  if (keyword.InText != "field") value = NoValue;
  if (!inDocument.Value.empty()) value = inDocument.Value;
  const std::string documentType(inDocument.Type.empty() ? type : inDocument.Type);
  AddScriptField(scene, std::string(name), documentType, keyword.AccessType, value);
}

} // namespace quarvel
