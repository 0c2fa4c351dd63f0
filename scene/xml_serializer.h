#pragma once

#include "scene/text_file.h"

#include <filesystem>
#include <pugixml.hpp>
#include <string>

namespace quarvel {

/// What the document's writing found that a strict XML reader refuses (XML 1.0, clauses 2.2, 2.4 and 3.1).
struct XMLFaults {
  bool Markup = false;     ///< an apostrophe, ampersand or less-than sign inside an attribute value
  bool Characters = false; ///< a control character, or bytes that are not UTF-8
};

/// Writes a document: one tag a line, one blank of indentation a level, attributes in single quotes. As held in the
/// tree, or escaped and in UTF-8 when `conforming`. False when the file cannot be written; completing it is left to the
/// caller.
bool SaveXML(const pugi::xml_document& document, TextFile& file, bool conforming, XMLFaults& faults);

/// Writes a node and everything below it, `depth` levels deep.
void WriteXMLNode(const pugi::xml_node& node, TextFile& file, int depth, bool conforming, XMLFaults& faults);

} // namespace quarvel
