#include "scene/xml_serializer.h"

#include "base/ascii_text.h"

#include <algorithm>
#include <string_view>

namespace quarvel {

namespace {

bool IsControl(char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\r' && c != '\n'; }

/// Length of the UTF-8 sequence that `text` begins with; 0 when it begins with none.
std::size_t Utf8Length(std::string_view text) {
  const auto first = static_cast<unsigned char>(text.front());
  const std::size_t length = first < 0x80   ? 1
                             : first < 0xc2 ? 0
                             : first < 0xe0 ? 2
                             : first < 0xf0 ? 3
                             : first < 0xf5 ? 4
                                            : 0;
  if (length > text.size()) return 0;
  const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xc0) == 0x80; };
  return std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(std::max<std::size_t>(length, 1)),
                     continues)
             ? length
             : 0;
}

bool HasBadCharacters(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = Utf8Length(text);
    if (length == 0 || IsControl(text.front())) return true;
    text.remove_prefix(length);
  }
  return false;
}

void AppendPlain(std::string& out, std::string_view value, XMLFaults& faults) {
  const auto special = [](char c) {
    return c == '\'' || c == '&' || c == '<' || static_cast<unsigned char>(c) >= 0x80 || IsControl(c);
  };
  if (std::any_of(value.begin(), value.end(), special)) {
    faults.Markup = faults.Markup || value.find_first_of("'&<") != value.npos;
    faults.Characters = faults.Characters || HasBadCharacters(value);
  }
  out += value;
}

/// Line breaks as character references: a reader would turn plain ones into blanks (XML 1.0, clause 3.3.3).
void AppendEscaped(std::string& out, std::string_view value) {
  for (const char c : value) {
    if (c == '&')
      out += "&amp;";
    else if (c == '<')
      out += "&lt;";
    else if (c == '\'')
      out += "&apos;";
    else if (c == '\n')
      out += "&#10;";
    else if (c == '\r')
      continue;
    else if (IsControl(c))
      out += '_';
    else
      AppendCoded(out, std::string_view(&c, 1), TextCoding::Utf8);
  }
}

void AppendValue(std::string& out, std::string_view value, bool conforming, XMLFaults& faults) {
  if (conforming && value.find_first_not_of(" ,-.0123456789") != value.npos)
    AppendEscaped(out, value);
  else
    AppendPlain(out, value, faults);
}

void AppendAttributes(const pugi::xml_node& element, std::string& out, bool conforming, XMLFaults& faults) {
  for (const pugi::xml_attribute& attribute : element.attributes()) {
    out.append(" ").append(attribute.name()).append("='");
    AppendValue(out, attribute.value(), conforming, faults);
    out += '\'';
  }
}

void AppendComment(const pugi::xml_node& comment, std::string& out, bool conforming) {
  out.append(conforming ? "<!-- " : "<!--#comment ").append(comment.value()).append(" -->").append(LineEnd);
}

void AppendDeclaration(const pugi::xml_node& declaration, std::string& out) {
  out.append("<?").append(declaration.name());
  for (const pugi::xml_attribute& attribute : declaration.attributes())
    out.append(" ").append(attribute.name()).append("=\"").append(attribute.value()).append("\"");
  out.append(" ?>").append(LineEnd);
}

} // namespace

void WriteXMLNode(const pugi::xml_node& node, TextFile& file, int depth, bool conforming, XMLFaults& faults) {
  const std::string indent(static_cast<std::size_t>(depth), ' ');
  std::string out = indent;
  if (node.type() == pugi::node_declaration) {
    AppendDeclaration(node, out);
  } else if (node.type() == pugi::node_comment) {
    AppendComment(node, out, conforming);
  } else {
    out.append("<").append(node.name());
    AppendAttributes(node, out, conforming, faults);
    out.append(node.first_child() ? ">" : "/>").append(LineEnd);
  }
  file.Append(out);
  if (!node.first_child()) return;
  for (const pugi::xml_node& child : node.children())
    WriteXMLNode(child, file, depth + 1, conforming, faults);
  file.Append(indent + "</" + node.name() + ">" + std::string(LineEnd));
}

bool SaveXML(const pugi::xml_document& document, TextFile& file, bool conforming, XMLFaults& faults) {
  for (const pugi::xml_node& node : document.children())
    WriteXMLNode(node, file, 0, conforming, faults);
  return file.Flush();
}

} // namespace quarvel
