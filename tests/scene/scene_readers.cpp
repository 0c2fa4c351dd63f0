#include "tests/scene/scene_readers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <pugixml.hpp>
#include <set>

namespace quarvel::test {

namespace {

constexpr std::string_view separators = " \t\r\n,";

/// The fields of every node type that a scene may hold, in both text encodings.
const std::map<std::string, std::string, std::less<>>& FieldsOfTypes() {
  static const std::map<std::string, std::string, std::less<>> fields{
      {"Anchor", "children description parameter url bboxCenter bboxSize"},
      {"Appearance", "material texture textureTransform"},
      {"AudioClip", "description loop pitch startTime stopTime url"},
      {"Billboard", "axisOfRotation children"},
      {"BooleanFilter", ""},
      {"Box", "size"},
      {"Collision", "children collide enabled proxy"},
      {"Coordinate", "point"},
      {"DirectionalLight", "ambientIntensity color direction intensity on"},
      {"ElevationGrid", "ccw color colorPerVertex creaseAngle height normal normalPerVertex set_height solid texCoord "
                        "xDimension xSpacing zDimension zSpacing"},
      {"Fog", "color fogType visibilityRange"},
      {"Group", "children"},
      {"ImageTexture", "url repeatS repeatT"},
      {"IndexedFaceSet", "ccw color colorPerVertex convex coord coordIndex creaseAngle normal solid texCoord "
                         "texCoordIndex"},
      {"IndexedLineSet", "color colorIndex colorPerVertex coord coordIndex"},
      {"Inline", "url bboxCenter bboxSize load"},
      {"Material", "ambientIntensity diffuseColor emissiveColor shininess specularColor transparency"},
      {"NavigationInfo", "avatarSize headlight speed type visibilityLimit"},
      {"OrientationInterpolator", "key keyValue"},
      {"PointLight", "ambientIntensity attenuation color intensity location on radius"},
      {"PositionInterpolator", "key keyValue"},
      {"PositionInterpolator2D", "key keyValue"},
      {"ProximitySensor", "center enabled size"},
      {"Script", "directOutput mustEvaluate url"},
      {"Shape", "appearance geometry"},
      {"Sound", "direction intensity location maxBack maxFront minBack minFront priority source spatialize"},
      {"Sphere", "radius"},
      {"SpotLight", "ambientIntensity attenuation beamWidth color cutOffAngle direction intensity location on radius"},
      {"Switch", "choice whichChoice"},
      {"TextureCoordinate", "point"},
      {"TextureTransform", "center rotation scale translation"},
      {"TimeSensor", "cycleInterval enabled loop startTime stopTime"},
      {"TouchSensor", "enabled"},
      {"Transform", "center children rotation scale scaleOrientation translation bboxCenter bboxSize"},
      {"Viewpoint", "description fieldOfView jump orientation position"},
      {"WorldInfo", "info title"},
  };
  return fields;
}

/// Whether a word stands in a list of words with blanks between them.
bool IsOneOf(std::string_view word, std::string_view list) {
  const auto isEnd = [&](std::size_t at) { return at >= list.size() || list[at] == ' '; };
  for (std::size_t at = list.find(word); at != list.npos; at = list.find(word, at + 1))
    if ((at == 0 || list[at - 1] == ' ') && isEnd(at + word.size())) return !word.empty();
  return false;
}

bool IsNumber(std::string_view word) {
  if (word.starts_with('+')) word.remove_prefix(1);
  double value = 0;
  const auto result = std::from_chars(word.data(), word.data() + word.size(), value);
  return result.ec == std::errc() && result.ptr == word.data() + word.size() && std::isfinite(value);
}

/// IdFirstChar and IdRestChars of the grammar; only ASCII is expected here.
bool IsLegalName(std::string_view name) {
  if (name.empty() || IsNumber(name.substr(0, 1)) || name.front() == '+' || name.front() == '-') return false;
  return std::all_of(name.begin(), name.end(), [](char c) {
    return c > 0x20 && c < 0x7f && std::string_view("\"#',.[\\]{}:").find(c) == std::string_view::npos;
  });
}

std::vector<std::string> Words(std::string_view text) {
  std::vector<std::string> words;
  for (std::size_t at = text.find_first_not_of(separators); at != text.npos;) {
    const std::size_t end = std::min(text.find_first_of(separators, at), text.size());
    words.emplace_back(text.substr(at, end - at));
    at = text.find_first_not_of(separators, end);
  }
  return words;
}

std::string Joined(const std::vector<std::string>& words) {
  std::string joined;
  for (const std::string& word : words)
    joined += (joined.empty() ? "" : " ") + word;
  return joined;
}

struct Token {
  enum class Kind { End, Word, String, Mark } Kind = Kind::End;
  std::string Text;
};

class VrmlReader {
 public:
  explicit VrmlReader(std::string_view text) : text_(text) { Advance(); }

  ReadScene Read() {
    while (token_.Kind != Token::Kind::End && scene_.Faults.size() < 20)
      ReadStatement();
    return std::move(scene_);
  }

 private:
  void Fault(const std::string& what) {
    const auto line = 1 + std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(at_), '\n');
    scene_.Faults.push_back("line " + std::to_string(line) + ": " + what);
  }

  void SkipBlanksAndComments() {
    for (;;) {
      at_ = std::min(text_.find_first_not_of(separators, at_), text_.size());
      if (at_ == text_.size() || text_[at_] != '#') return;
      at_ = std::min(text_.find('\n', at_), text_.size());
    }
  }

  void Advance() {
    SkipBlanksAndComments();
    token_ = {};
    if (at_ == text_.size()) return;
    const char c = text_[at_];
    if (c == '"') {
      ReadString();
    } else if (std::string_view("{}[]").find(c) != std::string_view::npos) {
      token_ = {Token::Kind::Mark, std::string(1, c)};
      ++at_;
    } else {
      const std::size_t end = std::min(text_.find_first_of(" \t\r\n,{}[]\"#", at_), text_.size());
      token_ = {Token::Kind::Word, std::string(text_.substr(at_, end - at_))};
      at_ = end;
    }
  }

  void ReadString() {
    token_.Kind = Token::Kind::String;
    for (++at_; at_ < text_.size() && text_[at_] != '"'; ++at_) {
      if (text_[at_] == '\\' && at_ + 1 < text_.size()) ++at_;
      token_.Text += text_[at_];
    }
    if (at_ == text_.size()) return Fault("a string without end");
    ++at_;
  }

  std::string Take() {
    std::string text = token_.Text;
    Advance();
    return text;
  }

  bool IsMark(std::string_view mark) const { return token_.Kind == Token::Kind::Mark && token_.Text == mark; }
  bool IsWord(std::string_view word) const { return token_.Kind == Token::Kind::Word && token_.Text == word; }

  void Expect(std::string_view mark) {
    if (!IsMark(mark)) Fault("'" + token_.Text + "' where '" + std::string(mark) + "' is due");
    Advance();
  }

  void ReadStatement() {
    if (IsWord("ROUTE")) return ReadRoute();
    if (IsWord("PROTO")) return ReadProto();
    if (IsWord("PROFILE") || IsWord("COMPONENT")) {
      Advance();
      return Advance();
    }
    if (token_.Kind != Token::Kind::Word) return Fault("'" + Take() + "' where a node is due");
    ReadNodeStatement(-1);
  }

  void ReadRoute() {
    Advance();
    const std::string from = Take();
    if (Take() != "TO") Fault("a ROUTE without TO");
    const std::string to = Take();
    for (const std::string& end : {from, to}) {
      const std::string name = end.substr(0, end.find('.'));
      if (!defined_.contains(name)) Fault("a ROUTE names " + name + ", which is not defined before");
    }
    scene_.Routes.push_back(from + " TO " + to);
  }

  /// The interface and the body are taken as they stand.
  void ReadProto() {
    Advance();
    prototypes_.insert(Take());
    SkipBlock("[", "]");
    SkipBlock("{", "}");
  }

  void SkipBlock(std::string_view open, std::string_view close) {
    Expect(open);
    for (int depth = 1; depth > 0 && token_.Kind != Token::Kind::End; Advance())
      depth += IsMark(open) ? 1 : IsMark(close) ? -1 : 0;
  }

  void Define(const std::string& name) {
    if (!IsLegalName(name)) Fault("'" + name + "' is no name");
    defined_.insert(name);
  }

  void ReadNodeStatement(int parent) {
    ReadNode node;
    node.Parent = parent;
    if (IsWord("USE")) {
      Advance();
      node.Use = Take();
      if (!defined_.contains(node.Use)) Fault("USE of " + node.Use + ", which is not defined before");
      scene_.Nodes.push_back(std::move(node));
      return;
    }
    if (IsWord("DEF")) {
      Advance();
      Define(node.Def = Take());
    }
    node.Type = Take();
    if (!FieldsOfTypes().contains(node.Type) && !prototypes_.contains(node.Type))
      Fault("'" + node.Type + "' is no node type");
    const auto number = scene_.Nodes.size();
    scene_.Nodes.push_back(std::move(node));
    Expect("{");
    while (!IsMark("}") && token_.Kind != Token::Kind::End && scene_.Faults.size() < 20)
      ReadField(static_cast<int>(number));
    Expect("}");
    CheckValues(number);
  }

  void ReadField(int node) {
    if (token_.Kind != Token::Kind::Word) return Fault("'" + Take() + "' where a field is due");
    const std::string type = scene_.Nodes[static_cast<std::size_t>(node)].Type;
    const std::string name = Take();
    if (name == "ROUTE" || name == "PROTO") Fault("a " + name + " inside a node");
    if (type == "Script" && IsOneOf(name, "eventIn eventOut field exposedField inputOnly outputOnly initializeOnly "
                                          "inputOutput")) {
      Advance();
      Advance();
      if (IsOneOf(name, "field exposedField initializeOnly inputOutput")) ReadValue(node, "");
      return;
    }
    const auto fields = FieldsOfTypes().find(type);
    if (fields != FieldsOfTypes().end() && !IsOneOf(name, fields->second)) Fault(type + " has no field " + name);
    ReadValue(node, name);
  }

  void ReadValue(int node, const std::string& field) {
    std::vector<std::string> values;
    if (IsMark("[")) {
      Advance();
      while (!IsMark("]") && token_.Kind != Token::Kind::End && scene_.Faults.size() < 20)
        ReadItem(node, values);
      Expect("]");
    } else {
      ReadItem(node, values);
      while (IsScalar())
        values.push_back(Take());
    }
    if (!values.empty()) scene_.Nodes[static_cast<std::size_t>(node)].Fields[field] = Joined(values);
  }

  bool IsScalar() const {
    return token_.Kind == Token::Kind::String ||
           (token_.Kind == Token::Kind::Word && (IsOneOf(token_.Text, "TRUE FALSE NULL") || IsNumber(token_.Text)));
  }

  void ReadItem(int node, std::vector<std::string>& values) {
    if (IsScalar())
      values.push_back(Take());
    else if (IsWord("ROUTE") || IsWord("PROTO"))
      Fault("a " + Take() + " inside a list");
    else if (token_.Kind == Token::Kind::Word)
      ReadNodeStatement(node);
    else
      Fault("'" + Take() + "' where a value is due");
  }

  void CheckValues(std::size_t number) {
    const ReadNode& node = scene_.Nodes[number];
    const auto count = [&](const char* field) {
      const auto at = node.Fields.find(field);
      return at == node.Fields.end() ? 0 : Words(at->second).size();
    };
    const std::size_t width = node.Type == "OrientationInterpolator" ? 4 : node.Type == "PositionInterpolator" ? 3 : 0;
    if (width != 0 && count("key") * width != count("keyValue")) Fault("keys and key values do not match");
    if (node.Type == "IndexedFaceSet") CheckIndices(number);
  }

  void CheckIndices(std::size_t number) {
    for (std::size_t child = number + 1; child < scene_.Nodes.size(); ++child) {
      const ReadNode& list = scene_.Nodes[child];
      if (list.Parent != static_cast<int>(number)) continue;
      const bool isCoordinate = list.Type == "Coordinate";
      const auto points = list.Fields.find("point");
      const std::size_t numbers = points == list.Fields.end() ? 0 : Words(points->second).size();
      const long size = static_cast<long>(numbers / (isCoordinate ? 3 : 2));
      for (const std::string& index : Words(scene_.Nodes[number].Fields[isCoordinate ? "coordIndex" : "texCoordIndex"]))
        if (std::stol(index) < -1 || std::stol(index) >= size) return Fault("index " + index + " is out of range");
    }
  }

  std::string_view text_;
  std::size_t at_ = 0;
  Token token_;
  ReadScene scene_;
  std::set<std::string> defined_, prototypes_;
};

/// Elements that stand for no node of the text.
constexpr std::string_view frame = "Group MultiTexture texture NavigationInfo";

void ReadElement(const pugi::xml_node& element, int parent, ReadScene& scene) {
  if (element.name() == std::string_view("ROUTE")) {
    const auto value = [&](const char* name) { return std::string(element.attribute(name).value()); };
    scene.Routes.push_back(value("fromNode") + "." + value("fromField") + " TO " + value("toNode") + "." +
                           value("toField"));
    return;
  }
  int number = parent;
  if (!IsOneOf(element.name(), frame)) {
    ReadNode node;
    node.Type = element.name();
    node.Parent = parent;
    for (const pugi::xml_attribute& attribute : element.attributes()) {
      const std::string_view name = attribute.name();
      if (name == "info" && *attribute.value() == 0) continue; // an empty list, which the text leaves out
      std::string& value = name == "DEF" ? node.Def : name == "USE" ? node.Use : node.Fields[std::string(name)];
      value = attribute.value();
    }
    number = static_cast<int>(scene.Nodes.size());
    scene.Nodes.push_back(std::move(node));
  }
  for (const pugi::xml_node& child : element.children())
    ReadElement(child, number, scene);
}

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

std::string ReadScene::OwnerOf(const ReadNode& node) const {
  for (int above = node.Parent; above >= 0; above = Nodes[static_cast<std::size_t>(above)].Parent)
    if (!Nodes[static_cast<std::size_t>(above)].Def.empty()) return Nodes[static_cast<std::size_t>(above)].Def;
  return {};
}

const ReadNode* ReadScene::Find(std::string_view def) const {
  const auto at = std::find_if(Nodes.begin(), Nodes.end(), [&](const ReadNode& node) { return node.Def == def; });
  return at == Nodes.end() ? nullptr : &*at;
}

ReadScene ReadVrml(std::string_view text) { return VrmlReader(text).Read(); }

ReadScene ReadX3D(const std::string& text) {
  ReadScene scene;
  pugi::xml_document document;
  const pugi::xml_parse_result result = document.load_buffer(text.data(), text.size());
  if (!result) scene.Faults.push_back(std::string(result.description()) + " at " + std::to_string(result.offset));
  for (const pugi::xml_node& node : document.child("X3D").child("Scene").children())
    ReadElement(node, -1, scene);
  return scene;
}

std::vector<std::string> Describe(const ReadScene& scene) {
  std::vector<std::string> lines;
  for (const ReadNode& node : scene.Nodes) {
    // Scripts declare their fields in ways of their own; a text's USE does not say the type.
    if (IsOneOf(node.Type, frame) || IsOneOf(node.Type, "Script field") || MovesTextures(node.Def)) continue;
    const std::string type = node.Use.empty() ? node.Type : "USE";
    std::string line = type + " '" + node.Def + node.Use + "' in '" + scene.OwnerOf(node) + "'";
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

} // namespace quarvel::test
