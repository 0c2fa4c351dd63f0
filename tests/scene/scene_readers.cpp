#include "tests/scene/scene_readers.h"

#include "tests/scene/node_rules.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <pugixml.hpp>
#include <set>

namespace quarvel::test {

namespace {

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

struct Token {
  enum class Kind { End, Word, String, Mark } Kind = Kind::End;
  std::string Text;
};

/// What both kinds of readers check of the nodes that were read.
class SceneChecker {
 public:
  SceneChecker(ReadScene& scene, SceneEncoding encoding) : scene_(scene), encoding_(encoding) {}

  /// `where` begins the fault.
  void CheckNode(std::size_t number, const std::string& where) {
    const ReadNode& node = scene_.Nodes[number];
    for (const auto& [field, value] : node.Fields) {
      const auto numbers = static_cast<std::size_t>(NumbersOf(node.Type, field));
      const auto words = Words(value);
      const bool isWrong =
          numbers != 0 && (words.size() != numbers || !std::all_of(words.begin(), words.end(), IsNumber));
      if (isWrong) Fault(where + node.Type + "." + field + " is " + value);
    }
    if (node.Type.find("Interpolator") != node.Type.npos) CheckKeys(node, where);
    if (node.Type == "IndexedFaceSet") CheckIndices(number, where);
  }

  /// `nodes` are the types of the names; those of scripts stand with their events in `scriptFields`.
  void CheckRoute(const std::string& from, const std::string& to, const std::string& where) {
    CheckEnd(from, true, where);
    CheckEnd(to, false, where);
  }

  void DeclareScriptField(const std::string& script, const std::string& name) {
    scriptFields_.insert(script + "." + name);
  }

 private:
  void Fault(const std::string& what) { scene_.Faults.push_back(what); }

  void CheckEnd(const std::string& end, bool sends, const std::string& where) {
    const std::size_t point = end.find('.');
    const std::string name = end.substr(0, point), event = point == end.npos ? "" : end.substr(point + 1);
    const ReadNode* node = scene_.Find(name);
    if (node == nullptr) return Fault(where + "a ROUTE names " + name + ", which is not defined before");
    if (node->Type == "Script" && scriptFields_.contains(name + "." + event)) return;
    const bool known = encoding_ == SceneEncoding::Vrml97 && node->Type == "BooleanFilter"
                           ? IsOneOf(event, "set_boolean inputTrue inputFalse inputNegate")
                       : sends ? SendsEvent(node->Type, event, encoding_)
                               : TakesEvent(node->Type, event, encoding_);
    if (!known) Fault(where + node->Type + (sends ? " does not send " : " does not take ") + event);
  }

  static std::size_t CountOf(const ReadNode& node, const char* field) {
    const auto at = node.Fields.find(field);
    return at == node.Fields.end() ? 0 : Words(at->second).size();
  }

  void CheckKeys(const ReadNode& node, const std::string& where) {
    const std::size_t width = node.Type == "OrientationInterpolator" ? 4 : node.Type.ends_with("2D") ? 2 : 3;
    if (CountOf(node, "key") * width != CountOf(node, "keyValue")) Fault(where + "keys and key values do not match");
    double last = -1;
    if (const auto keys = node.Fields.find("key"); keys != node.Fields.end())
      for (const std::string& word : Words(keys->second)) {
        const double key = std::strtod(word.c_str(), nullptr);
        if (key < last || key < 0 || key > 1) Fault(where + "the keys do not rise from 0 to 1");
        last = key;
      }
  }

  /// A face set's own lists, those in its MultiTextureCoordinate among them.
  void CheckIndices(std::size_t number, const std::string& where) {
    const auto& parentOf = [&](const ReadNode& node) { return static_cast<std::size_t>(node.Parent); };
    for (std::size_t child = number + 1; child < scene_.Nodes.size(); ++child) {
      const ReadNode& list = scene_.Nodes[child];
      if (list.Parent < static_cast<int>(number)) return;
      const bool isInside = scene_.Nodes[parentOf(list)].Type == "MultiTextureCoordinate";
      if (parentOf(list) != number && !isInside) continue;
      if (list.Type == "Coordinate") CheckList(number, list, "point", 3, "coordIndex", where);
      if (list.Type == "TextureCoordinate") CheckList(number, list, "point", 2, "texCoordIndex", where);
      if (list.Type == "Color") CheckList(number, list, "color", 3, "colorIndex", where);
      if (list.Type == "ColorRGBA") CheckList(number, list, "color", 4, "colorIndex", where);
    }
  }

  void CheckList(std::size_t number, const ReadNode& list, const char* field, std::size_t width,
                 const std::string& indexField, const std::string& where) {
    const std::size_t count = CountOf(list, field);
    if (count % width != 0) return Fault(where + list.Type + " holds " + std::to_string(count) + " numbers");
    for (const std::string& index : Words(scene_.Nodes[number].Fields[indexField]))
      if (std::stol(index) < -1 || std::stol(index) >= static_cast<long>(count / width))
        return Fault(where + indexField + " " + index + " is out of range");
    const auto ends = [&](const std::string& name) {
      std::vector<std::size_t> faces;
      const std::vector<std::string> indices = Words(scene_.Nodes[number].Fields[name]);
      for (std::size_t at = 0; at < indices.size(); ++at)
        if (indices[at] == "-1") faces.push_back(at);
      return faces;
    };
    // Without its own indices, a list has those of the coordinates.
    if (!ends(indexField).empty() && ends(indexField) != ends("coordIndex"))
      Fault(where + indexField + " has other faces than coordIndex");
  }

  ReadScene& scene_;
  SceneEncoding encoding_;
  std::set<std::string> scriptFields_;
};

class VrmlReader {
 public:
  explicit VrmlReader(std::string_view text)
      : text_(text), encoding_(text.starts_with("#X3D") ? SceneEncoding::X3DClassic : SceneEncoding::Vrml97),
        checker_(scene_, encoding_) {
    Advance();
  }

  ReadScene Read() {
    while (token_.Kind != Token::Kind::End && scene_.Faults.size() < 20)
      ReadStatement();
    return std::move(scene_);
  }

 private:
  std::string Where() {
    const auto at = [&](std::size_t place) { return text_.begin() + static_cast<std::ptrdiff_t>(place); };
    line_ += std::count(at(counted_), at(at_), '\n');
    counted_ = at_;
    return "line " + std::to_string(line_) + ": ";
  }
  void Fault(const std::string& what) { scene_.Faults.push_back(Where() + what); }

  void SkipBlanksAndComments() {
    for (;;) {
      at_ = std::min(text_.find_first_not_of(WordSeparators, at_), text_.size());
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
    ReadNodeStatement(-1, "");
  }

  void ReadRoute() {
    Advance();
    const std::string from = Take();
    if (Take() != "TO") Fault("a ROUTE without TO");
    const std::string to = Take();
    checker_.CheckRoute(from, to, Where());
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
    // In VRML97 the last of several holds (ISO/IEC 14772-1, clause 4.6.2).
    if (!defined_.insert(name).second && encoding_ != SceneEncoding::Vrml97) Fault(name + " is defined twice");
  }

  void CheckPlace(int parent, const std::string& field, const std::string& type) {
    const std::string above = parent < 0 ? "" : scene_.Nodes[static_cast<std::size_t>(parent)].Type;
    if (above == "Script" || prototypes_.contains(type)) return;
    if (!MayHold(above, field, type)) Fault("a " + type + " in " + (above.empty() ? "the scene" : above + "." + field));
  }

  void ReadNodeStatement(int parent, const std::string& field) {
    ReadNode node;
    node.Parent = parent;
    if (IsWord("USE")) {
      Advance();
      node.Use = Take();
      if (const ReadNode* used = scene_.Find(node.Use))
        CheckPlace(parent, field, used->Type);
      else
        Fault("USE of " + node.Use + ", which is not defined before");
      scene_.Nodes.push_back(std::move(node));
      return;
    }
    if (IsWord("DEF")) {
      Advance();
      Define(node.Def = Take());
    }
    node.Type = Take();
    if (!IsNodeType(node.Type, encoding_) && !prototypes_.contains(node.Type))
      Fault("'" + node.Type + "' is no node type");
    CheckPlace(parent, field, node.Type);
    const auto number = scene_.Nodes.size();
    scene_.Nodes.push_back(std::move(node));
    Expect("{");
    while (!IsMark("}") && token_.Kind != Token::Kind::End && scene_.Faults.size() < 20)
      ReadField(static_cast<int>(number));
    Expect("}");
    checker_.CheckNode(number, Where());
  }

  void ReadField(int node) {
    if (token_.Kind != Token::Kind::Word) return Fault("'" + Take() + "' where a field is due");
    const std::string type = scene_.Nodes[static_cast<std::size_t>(node)].Type;
    const std::string name = Take();
    if (name == "ROUTE" || name == "PROTO") Fault("a " + name + " inside a node");
    const bool isX3D = encoding_ == SceneEncoding::X3DClassic;
    if (type == "Script" &&
        IsOneOf(name, isX3D ? "inputOnly outputOnly initializeOnly inputOutput" : "eventIn eventOut field")) {
      Advance();
      checker_.DeclareScriptField(scene_.Nodes[static_cast<std::size_t>(node)].Def, Take());
      if (IsOneOf(name, "field initializeOnly inputOutput")) ReadValue(node, "");
      return;
    }
    if (!HasField(type, name, encoding_) && !prototypes_.contains(type)) Fault(type + " has no field " + name);
    ReadValue(node, name);
  }

  void ReadValue(int node, const std::string& field) {
    std::vector<std::string> values;
    if (IsMark("[")) {
      Advance();
      while (!IsMark("]") && token_.Kind != Token::Kind::End && scene_.Faults.size() < 20)
        ReadItem(node, field, values);
      Expect("]");
    } else {
      ReadItem(node, field, values);
      while (IsScalar())
        values.push_back(Take());
    }
    if (!values.empty()) scene_.Nodes[static_cast<std::size_t>(node)].Fields[field] = Joined(values);
  }

  bool IsScalar() const {
    return token_.Kind == Token::Kind::String ||
           (token_.Kind == Token::Kind::Word && (IsOneOf(token_.Text, "TRUE FALSE NULL") || IsNumber(token_.Text)));
  }

  void ReadItem(int node, const std::string& field, std::vector<std::string>& values) {
    if (IsScalar())
      values.push_back(Take());
    else if (IsWord("ROUTE") || IsWord("PROTO"))
      Fault("a " + Take() + " inside a list");
    else if (token_.Kind == Token::Kind::Word)
      ReadNodeStatement(node, field);
    else
      Fault("'" + Take() + "' where a value is due");
  }

  std::string_view text_;
  std::size_t at_ = 0, counted_ = 0; ///< where the reader is; up to where the lines are counted
  std::ptrdiff_t line_ = 1;
  SceneEncoding encoding_;
  Token token_;
  ReadScene scene_;
  SceneChecker checker_;
  std::set<std::string> defined_, prototypes_;
};

class X3DReader {
 public:
  ReadScene Read(const pugi::xml_node& root) {
    for (const pugi::xml_node& node : root.children())
      ReadElement(node, -1, "");
    for (const auto& [from, to] : routes_) // both ends may stand behind a ROUTE
      checker_.CheckRoute(from, to, "");
    for (std::size_t number = 0; number < scene_.Nodes.size(); ++number)
      checker_.CheckNode(number, scene_.Nodes[number].Def + ": ");
    return std::move(scene_);
  }

 private:
  void Fault(const std::string& what) { scene_.Faults.push_back(what); }

  void ReadElement(const pugi::xml_node& element, int parent, const std::string& above) {
    const std::string type = element.name();
    if (type == "ROUTE") return ReadRoute(element);
    if (type == "field" && above == "Script") {
      checker_.DeclareScriptField(scene_.Nodes[static_cast<std::size_t>(parent)].Def,
                                  element.attribute("name").value());
      return;
    }
    if (element.type() != pugi::node_element) return;
    CheckElement(element, above);
    int number = parent;
    if (!IsOneOf(type, FrameTypes) || element.attribute("DEF")) number = AddNode(element, parent);
    for (const pugi::xml_node& child : element.children())
      ReadElement(child, number, type);
  }

  void ReadRoute(const pugi::xml_node& element) {
    const auto value = [&](const char* name) { return std::string(element.attribute(name).value()); };
    routes_.emplace_back(value("fromNode") + "." + value("fromField"), value("toNode") + "." + value("toField"));
    scene_.Routes.push_back(routes_.back().first + " TO " + routes_.back().second);
  }

  void CheckElement(const pugi::xml_node& element, const std::string& above) {
    const std::string type = element.name();
    if (!IsNodeType(type, SceneEncoding::X3DXml)) Fault("'" + type + "' is no node type");
    if (!MayHold(above, "", type)) Fault("a " + type + " in " + (above.empty() ? "the scene" : above));
    for (const pugi::xml_attribute& attribute : element.attributes()) {
      const std::string name = attribute.name(), value = attribute.value();
      if (name == "DEF" && !defined_.emplace(value, type).second) Fault(value + " is defined twice");
      if (name == "USE" && defined_[value] != type) Fault("USE of " + value + ", which is no " + type + " before");
      if (name != "DEF" && name != "USE" && !HasField(type, name, SceneEncoding::X3DXml))
        Fault(type + " has no field " + name);
    }
  }

  int AddNode(const pugi::xml_node& element, int parent) {
    ReadNode node;
    node.Type = element.name();
    node.Parent = parent;
    for (const pugi::xml_attribute& attribute : element.attributes()) {
      const std::string_view name = attribute.name();
      if (name == "info" && *attribute.value() == 0) continue; // an empty list, which the text leaves out
      std::string& value = name == "DEF" ? node.Def : name == "USE" ? node.Use : node.Fields[std::string(name)];
      value = attribute.value();
    }
    scene_.Nodes.push_back(std::move(node));
    return static_cast<int>(scene_.Nodes.size()) - 1;
  }

  ReadScene scene_;
  SceneChecker checker_{scene_, SceneEncoding::X3DXml};
  std::map<std::string, std::string> defined_; ///< types by name
  std::vector<std::pair<std::string, std::string>> routes_;
};

} // namespace

std::string ReadScene::OwnerOf(const ReadNode& node) const {
  for (int above = node.Parent; above >= 0; above = Nodes[static_cast<std::size_t>(above)].Parent)
    if (!Nodes[static_cast<std::size_t>(above)].Def.empty()) return Nodes[static_cast<std::size_t>(above)].Def;
  return {};
}

const ReadNode* ReadScene::Find(std::string_view def) const {
  // The last one of a name holds.
  const auto at = std::find_if(Nodes.rbegin(), Nodes.rend(), [&](const ReadNode& node) { return node.Def == def; });
  return at == Nodes.rend() ? nullptr : &*at;
}

ReadScene ReadVrml(std::string_view text) { return VrmlReader(text).Read(); }

ReadScene ReadX3D(const std::string& text) {
  pugi::xml_document document;
  const pugi::xml_parse_result result = document.load_buffer(text.data(), text.size());
  ReadScene scene = X3DReader().Read(document.child("X3D").child("Scene"));
  if (!result) scene.Faults.push_back(std::string(result.description()) + " at " + std::to_string(result.offset));
  return scene;
}

} // namespace quarvel::test
