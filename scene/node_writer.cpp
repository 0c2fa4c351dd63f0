#include "scene/node_writer.h"

#include "math/number_text.h"
#include "t3d/text_reader.h"

#include <cassert>
#include <cstring>
#include <exception>
#include <new>
#include <stdexcept>

namespace quarvel {

namespace {

constexpr unsigned inText = 1, inDocument = 2;

unsigned ScopeBits(SceneScope scope) {
  return scope == SceneScope::Both ? inText | inDocument : scope == SceneScope::Text ? inText : inDocument;
}

const char* FieldName(const char* line) { return line + std::strspn(line, " "); }

std::size_t IndentOf(std::string_view lead) { return std::min(lead.find_first_not_of(' '), lead.size()); }

std::string Blanks(int count) { return std::string(static_cast<std::size_t>(std::max(count, 0)), ' '); }

/// pugixml does not throw when memory runs out: it gives back nothing, or something without its name.
template <typename Item>
Item Checked(Item item) {
  if (!item || *item.name() == '\0') throw std::bad_alloc();
  return item;
}

pugi::xml_node AppendElement(pugi::xml_node parent, const char* type) { return Checked(parent.append_child(type)); }

/// A null element takes no attributes.
void AddAttribute(pugi::xml_node element, const char* name, const char* value) {
  if (!element) return;
  pugi::xml_attribute attribute = element.attribute(name);
  if (!attribute) attribute = Checked(element.append_attribute(name));
  if (!attribute.set_value(value)) throw std::bad_alloc();
}

void AddAttribute(pugi::xml_node element, const char* name, const std::string& value) {
  AddAttribute(element, name, value.c_str());
}

void AppendRouteLine(std::string& text, const Route& route) {
  text.append("ROUTE ").append(route.FromNode).append(".").append(route.FromField);
  text.append(" TO ").append(route.ToNode).append(".").append(route.ToField).append(LineEnd);
}

} // namespace

SceneNode::SceneNode(SceneWriter& writer, std::size_t depth)
    : writer_(&writer), depth_(depth), exceptions_(std::uncaught_exceptions()) {}

SceneNode::SceneNode(SceneNode&& other) noexcept
    : writer_(std::exchange(other.writer_, nullptr)), depth_(other.depth_), exceptions_(other.exceptions_) {}

SceneNode::~SceneNode() noexcept(false) {
  if (std::uncaught_exceptions() == exceptions_) Close();
}

void SceneNode::Close() {
  if (SceneWriter* writer = std::exchange(writer_, nullptr)) writer->Close(depth_);
}

bool SceneNode::InText() const {
  assert(writer_ != nullptr && writer_->open_.size() == depth_ && "another node is being written");
  return writer_->open_[depth_ - 1].Scope != SceneScope::Document;
}

/// A null element when only the text has the node.
pugi::xml_node SceneNode::Element() const {
  const SceneWriter::OpenNode& node = writer_->open_[depth_ - 1];
  return node.Scope == SceneScope::Text ? pugi::xml_node() : node.Element;
}

void SceneNode::Field(const char* line, const PerScene& value) {
  TextField(line, value.InText);
  AddAttribute(Element(), FieldName(line), std::string(value.InDocument));
}

void SceneNode::Field(const char* line, const std::string& value) {
  TextField(line, value);
  AddAttribute(Element(), FieldName(line), value);
}

void SceneNode::Flag(const char* line, bool value) {
  TextField(line, value ? "TRUE" : "FALSE");
  AddAttribute(Element(), FieldName(line), value ? "true" : "false");
}

void SceneNode::String(const char* line, std::string_view value) {
  if (InText()) writer_->Line(line, " \"", value, "\"");
  AddAttribute(Element(), FieldName(line), std::string(value));
}

void SceneNode::Strings(const char* line, std::string_view value, Brackets brackets) {
  Strings(line, PerScene{value, value}, brackets);
}

void SceneNode::Strings(const char* line, const PerScene& value, Brackets brackets) {
  const bool bracketed = brackets == Brackets::Tight;
  if (InText()) writer_->Line(line, bracketed ? " [\"" : " \"", value.InText, bracketed ? "\"]" : "\"");
  AddAttribute(Element(), FieldName(line), writer_->Quoted(value.InDocument));
}

void SceneNode::List(const char* line, const std::string& values, ListLayout layout) {
  List(line, PerScene{values, values}, layout);
}

void SceneNode::TextList(const char* line, std::string_view values, ListLayout layout) {
  if (!InText()) return;
  if (layout != ListLayout::Lines)
    return writer_->Line(line, " [", values, layout == ListLayout::OneLinePadded ? " ]" : "]");
  const std::string_view indent(line, static_cast<std::size_t>(FieldName(line) - line));
  writer_->Line(line, " [");
  writer_->Line(indent, "  ", values);
  writer_->Line(indent, "]");
}

void SceneNode::List(const char* line, const std::string& values, SceneScope scope) {
  if (scope != SceneScope::Document) TextList(line, values, ListLayout::Lines);
  if (scope != SceneScope::Text) AddAttribute(Element(), FieldName(line), values);
}

void SceneNode::List(const char* line, const PerScene& values, ListLayout layout) {
  TextList(line, values.InText, layout);
  AddAttribute(Element(), FieldName(line), std::string(values.InDocument));
}

void SceneNode::Code(const std::vector<std::string>& lines, std::string_view indent, std::string_view closingIndent) {
  std::string url = "javascript:";
  for (const std::string& line : lines)
    url.append(LineEnd).append(line);
  if (InText()) {
    writer_->Line(indent, "url \"", url);
    writer_->Line(closingIndent, "\"");
  }
  AddAttribute(Element(), "url", writer_->Quoted(url));
}

void SceneNode::TextField(const char* line, std::string_view value) {
  if (InText()) writer_->Line(line, " ", value);
}

void SceneNode::Attribute(const char* name, const std::string& value) { AddAttribute(Element(), name, value); }

void SceneNode::AttributeOrder(std::initializer_list<const char*> names) {
  for (const char* name : names)
    AddAttribute(Element(), name, "");
}

void SceneNode::Children(std::string_view indent, int closing) {
  if (!InText()) return;
  writer_->Line(indent, "children [");
  writer_->open_.back().ChildrenClosing = closing < 0 ? static_cast<int>(indent.size()) : closing;
}

void SceneNode::Nodes(std::string_view line) {
  if (!InText()) return;
  writer_->Line(line, " [");
  writer_->open_.back().ChildrenClosing = static_cast<int>(IndentOf(line));
}

SceneWriter::SceneWriter(TextFile& file, TextEncoding encoding, bool conforming)
    : file_(file), encoding_(encoding), conforming_(conforming) {}

void SceneWriter::BeginDocument(const char* comment) {
  pugi::xml_node declaration = sceneDocument_.append_child(pugi::node_declaration);
  declaration.set_name("xml");
  AddAttribute(declaration, "version", "1.0");
  AddAttribute(declaration, "encoding", "UTF-8");
  sceneDocument_.append_child(pugi::node_comment).set_value(comment);
}

pugi::xml_node SceneWriter::Innermost() const {
  return open_.empty() ? static_cast<const pugi::xml_node&>(sceneDocument_) : open_.back().Element;
}

/// The entry of an MFString as the document has it: the XML encoding wants quotes, which are left out by default.
std::string SceneWriter::Quoted(std::string_view value) const {
  const std::string quote = conforming_ ? "\"" : "";
  return quote + std::string(value) + quote;
}

SceneNode SceneWriter::Push(const char* type, std::string_view def, SceneScope scope, int closing) {
  pugi::xml_node element = Innermost();
  if (scope != SceneScope::Text) {
    element = AppendElement(element, type);
    if (!def.empty()) AddAttribute(element, "DEF", std::string(def));
  }
  if (scope != SceneScope::Document) ++openInText_;
  open_.push_back({element, scope, closing, -1, false});
  return {*this, open_.size()};
}

SceneNode SceneWriter::Open(std::string_view lead, const char* type, std::string_view def, const NodeForm& form) {
  if (form.Scope != SceneScope::Document) {
    sceneText_.append(lead);
    if (!def.empty()) sceneText_.append("DEF ").append(def).append(" ");
    sceneText_.append(type);
    if (form.BraceBelow)
      sceneText_.append(LineEnd).append(lead.substr(0, IndentOf(lead)));
    else
      sceneText_.append(static_cast<std::size_t>(form.BeforeBrace), ' ');
    sceneText_.append("{").append(static_cast<std::size_t>(form.AfterBrace), ' ').append(LineEnd);
  }
  if (form.Routed && !def.empty()) Define(def, form.Scope);
  return Push(type, def, form.Scope, form.Closing < 0 ? static_cast<int>(IndentOf(lead)) : form.Closing);
}

SceneNode SceneWriter::OpenOnlyChild(std::string_view lead, const char* type, std::string_view def) {
  SceneNode node = Open(std::string(lead) + "children [ ", type, def);
  open_.back().IsOnlyChild = true;
  return node;
}

void SceneWriter::OneFieldNode(std::string_view lead, const char* type, const char* field, const std::string& value) {
  Line(lead, type, " { ", field, " ", value, " }");
  AddAttribute(AppendElement(Innermost(), type), field, value);
}

void SceneWriter::OneListNode(std::string_view lead, const char* type, std::string_view def, const char* field,
                              const std::string& values, SceneScope scope) {
  if (scope != SceneScope::Document) {
    if (def.empty())
      Line(lead, type, " { ", field, " [");
    else
      Line(lead, "DEF ", def, " ", type, " { ", field, " [");
    Line(values, "]");
    Line(lead.substr(0, IndentOf(lead)), "}");
  }
  if (scope == SceneScope::Text) return;
  pugi::xml_node element = AppendElement(Innermost(), type);
  if (!def.empty()) AddAttribute(element, "DEF", std::string(def));
  AddAttribute(element, field, values);
}

void SceneWriter::Use(std::string_view lead, const char* type, const std::string& name, SceneScope scope) {
  if (scope != SceneScope::Document) Line(lead, "USE ", name);
  if (scope != SceneScope::Text) AddAttribute(AppendElement(Innermost(), type), "USE", name);
}

void SceneWriter::DeclarePrototype(const char* name, std::span<const char* const> lines) {
  if (!prototypes_.insert(name).second) return;
  for (const char* line : lines)
    Line(line);
}

void SceneWriter::Close(std::size_t depth) {
  if (open_.size() != depth) throw std::logic_error("the nodes of a scene are closed out of order");
  const OpenNode node = open_.back();
  open_.pop_back();
  if (node.Scope == SceneScope::Document) return;
  --openInText_;
  if (node.ChildrenClosing >= 0) Line(Blanks(node.ChildrenClosing), "]");
  Line(Blanks(node.Closing), node.IsOnlyChild ? "} ]" : "}");
}

void SceneWriter::Define(std::string_view name, SceneScope scope) { defined_[std::string(name)] |= ScopeBits(scope); }

bool SceneWriter::IsDefined(std::string_view name, SceneScope scope) const {
  const auto at = defined_.find(std::string(name));
  return at != defined_.end() && (at->second & ScopeBits(scope)) == ScopeBits(scope);
}

void SceneWriter::Flush() {
  if (sceneText_.empty()) return;
  file_.AppendLine(sceneText_);
  sceneText_.clear();
}

void SceneWriter::FlushLines() {
  file_.Append(sceneText_);
  sceneText_.clear();
}

/// A ROUTE stands outside all nodes, behind the two that it names.
bool SceneWriter::MayRoute(const Route& route) const {
  return openInText_ == 0 && !route.InText && route.Scope != SceneScope::Document &&
         IsDefined(route.FromNode, SceneScope::Text) && IsDefined(route.ToNode, SceneScope::Text);
}

void SceneWriter::AddRoute(Route route) {
  route.InText = MayRoute(route);
  if (route.InText) AppendRouteLine(sceneText_, route);
  pendingRoutes_.push_back(std::move(route));
}

void SceneWriter::WriteReadyRoutes() {
  for (Route& route : pendingRoutes_) {
    if (!MayRoute(route)) continue;
    route.InText = true;
    AppendRouteLine(sceneText_, route);
  }
}

void SceneWriter::FinishRoutes(Report& report) {
  if (openInText_ != 0) throw std::logic_error("a node of the scene was not closed");
  for (const Route& route : pendingRoutes_) {
    const bool wanted = route.Scope != SceneScope::Text;
    const bool possible =
        IsDefined(route.FromNode, SceneScope::Document) && IsDefined(route.ToNode, SceneScope::Document);
    if (wanted && possible) {
      pugi::xml_node element = AppendElement(Innermost(), "ROUTE");
      AddAttribute(element, "fromNode", route.FromNode);
      AddAttribute(element, "fromField", route.FromField);
      AddAttribute(element, "toNode", route.ToNode);
      AddAttribute(element, "toField", route.ToField);
    }
    if ((wanted && !possible) || (route.Scope != SceneScope::Document && !route.InText))
      report.Add(FindingCode::RouteLeftOut, route.FromNode, route.ToNode, route.ToField);
  }
}

void AddScriptField(SceneWriter& writer, const std::string& name, const std::string& type, const char* accessType,
                    const std::string& value) {
  SceneNode field = writer.Open("", "field", {}, {.Scope = SceneScope::Document});
  field.Attribute("name", name);
  field.Attribute("type", type);
  field.Attribute("accessType", accessType);
  if (!SameText(value, NoValue)) field.Attribute("value", value);
}

void AddRoute(SceneWriter& writer, const std::string& fromNode, const std::string& fromField, const std::string& toNode,
              const std::string& toField, SceneScope scope) {
  writer.AddRoute({fromNode, fromField, toNode, toField, scope, false});
}

void WritePassable(SceneNode& collision, const char* line) {
  SceneWriter& writer = collision.Writer();
  const std::string indent(line, FieldName(line));
  collision.TextField(writer.Conforming() && writer.IsX3DClassic() ? (indent + "enabled").c_str() : line, "FALSE");
  collision.Attribute(writer.Conforming() ? "enabled" : "collide", "false");
  if (writer.IsX3DClassic() && !writer.Conforming())
    writer.NoteQuirk("the field \"collide\" in the .x3dv, which X3D calls \"enabled\"");
}

void WriteTimeSensor(SceneWriter& writer, const std::string& name, double cycleInterval, Cycles cycles) {
  SceneNode node = writer.Open("", "TimeSensor", name);
  node.Field(" cycleInterval", FormatGeneral(cycleInterval));
  node.Flag(" loop", cycles == Cycles::Endless);
  node.Flag(" enabled", true);
}

} // namespace quarvel
