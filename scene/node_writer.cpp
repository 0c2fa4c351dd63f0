#include "scene/node_writer.h"

#include "math/number_text.h"
#include "t3d/text_reader.h"

#include <cstring>

namespace quarvel {

namespace {

constexpr unsigned inText = 1, inDocument = 2;

unsigned ScopeBits(RouteScope scope) {
  return scope == RouteScope::Both ? inText | inDocument : scope == RouteScope::Text ? inText : inDocument;
}

const char* FieldName(const char* line) { return line + std::strspn(line, " "); }

void AppendRouteLine(std::string& text, const Route& route) {
  text.append("ROUTE ").append(route.FromNode).append(".").append(route.FromField);
  text.append(" TO ").append(route.ToNode).append(".").append(route.ToField).append(LineEnd);
}

} // namespace

void SceneNode::Field(const char* line, const std::string& value) {
  TextField(line, value);
  AddAttribute(element_, FieldName(line), value);
}

void SceneNode::Flag(const char* line, bool value) {
  TextField(line, value ? "TRUE" : "FALSE");
  AddAttribute(element_, FieldName(line), value ? "true" : "false");
}

void SceneNode::String(const char* line, std::string_view value) {
  writer_->Line(line, " \"", value, "\"");
  AddAttribute(element_, FieldName(line), std::string(value));
}

void SceneNode::Strings(const char* line, std::string_view value, std::string_view before, std::string_view after) {
  writer_->Line(line, before, "\"", value, "\"", after);
  const std::string quote = writer_->Conforming() ? "\"" : "";
  AddAttribute(element_, FieldName(line), quote + std::string(value) + quote);
}

void SceneNode::List(const char* line, const std::string& values, std::string_view indent, std::string_view closing) {
  writer_->Line(line, " [");
  writer_->Line(indent, values);
  writer_->Line(closing);
  AddAttribute(element_, FieldName(line), values);
}

void SceneNode::TextField(const char* line, std::string_view value) { writer_->Line(line, " ", value); }

void SceneNode::Attribute(const char* name, const std::string& value) { AddAttribute(element_, name, value); }

void SceneNode::AttributeOrder(std::initializer_list<const char*> names) {
  for (const char* name : names)
    AddAttribute(element_, name, "");
}

SceneWriter::SceneWriter(TextEncoding encoding, bool conforming) : encoding_(encoding), conforming_(conforming) {}

SceneNode SceneWriter::Open(pugi::xml_node parent, std::string_view lead, const char* type, std::string_view def,
                            std::string_view tail) {
  if (!def.empty()) {
    Define(def);
    return OpenUnrouted(parent, lead, type, def, tail);
  }
  Line(lead, type, tail);
  return {*this, parent.append_child(type)};
}

SceneNode SceneWriter::OpenUnrouted(pugi::xml_node parent, std::string_view lead, const char* type,
                                    std::string_view def, std::string_view tail) {
  Line(lead, "DEF ", def, " ", type, tail);
  const pugi::xml_node element = parent.append_child(type);
  AddAttribute(element, "DEF", std::string(def));
  return {*this, element};
}

void SceneWriter::Use(pugi::xml_node parent, std::string_view lead, const char* type, const std::string& name) {
  Line(lead, "USE ", name);
  AddAttribute(parent.append_child(type), "USE", name);
}

void SceneWriter::Define(std::string_view name, RouteScope scope) { defined_[std::string(name)] |= ScopeBits(scope); }

bool SceneWriter::IsDefined(std::string_view name, RouteScope scope) const {
  const auto at = defined_.find(std::string(name));
  return at != defined_.end() && (at->second & ScopeBits(scope)) == ScopeBits(scope);
}

void SceneWriter::Flush(TextFile& file) {
  file.AppendLine(SceneText);
  SceneText.clear();
}

void SceneWriter::WriteReadyRoutes() {
  if (InsideChildren) return;
  for (Route& route : PendingRoutes) {
    if (route.InText || route.Scope == RouteScope::Document) continue;
    route.InText = IsDefined(route.FromNode, RouteScope::Text) && IsDefined(route.ToNode, RouteScope::Text);
    if (route.InText) AppendRouteLine(SceneText, route);
  }
}

void SceneWriter::FinishRoutes(Report& report) {
  for (const Route& route : PendingRoutes) {
    const bool wanted = route.Scope != RouteScope::Text;
    const bool possible =
        IsDefined(route.FromNode, RouteScope::Document) && IsDefined(route.ToNode, RouteScope::Document);
    if (wanted && possible) {
      pugi::xml_node element = Scene.append_child("ROUTE");
      AddAttribute(element, "fromNode", route.FromNode);
      AddAttribute(element, "fromField", route.FromField);
      AddAttribute(element, "toNode", route.ToNode);
      AddAttribute(element, "toField", route.ToField);
    }
    if ((wanted && !possible) || (route.Scope != RouteScope::Document && !route.InText))
      report.Add(route.FromNode, "its route to " + route.ToNode + "." + route.ToField +
                                     " was left out: one of the nodes was never written");
  }
}

void AddAttribute(pugi::xml_node element, const char* name, const std::string& value) {
  pugi::xml_attribute attribute = element.attribute(name);
  if (!attribute) attribute = element.append_attribute(name);
  attribute.set_value(value.c_str());
}

void AddScriptField(pugi::xml_node parent, const std::string& name, const char* type, const char* accessType,
                    const std::string& value) {
  pugi::xml_node field = parent.append_child("field");
  AddAttribute(field, "name", name);
  AddAttribute(field, "type", type);
  AddAttribute(field, "accessType", accessType);
  if (!SameText(value, NoValue)) AddAttribute(field, "value", value);
}

void AddRoute(SceneWriter& writer, const std::string& fromNode, const std::string& fromField, const std::string& toNode,
              const std::string& toField, RouteScope scope) {
  writer.PendingRoutes.push_back({fromNode, fromField, toNode, toField, scope, false});
  Route& route = writer.PendingRoutes.back();
  if (scope == RouteScope::Document || writer.InsideChildren) return;
  route.InText = writer.IsDefined(fromNode, RouteScope::Text) && writer.IsDefined(toNode, RouteScope::Text);
  if (route.InText) AppendRouteLine(writer.SceneText, route);
}

void WritePassable(SceneNode& collision, const char* line) {
  SceneWriter& writer = collision.Writer();
  const std::string indent(line, FieldName(line));
  collision.TextField(writer.Conforming() && writer.IsX3DClassic() ? (indent + "enabled").c_str() : line, "FALSE");
  collision.Attribute(writer.Conforming() ? "enabled" : "collide", "false");
  if (writer.IsX3DClassic() && !writer.Conforming())
    writer.NoteQuirk("the field \"collide\" in the .x3dv, which X3D calls \"enabled\"");
}

void WriteTimeSensor(SceneWriter& writer, const std::string& name, double cycleInterval, bool loop, bool enabled,
                     pugi::xml_node parent) {
  SceneNode node = writer.Open(parent, "", "TimeSensor", name);
  node.Field(" cycleInterval", FormatGeneral(cycleInterval));
  node.Flag(" loop", loop);
  node.Flag(" enabled", enabled);
  writer.Line("}");
}

} // namespace quarvel
