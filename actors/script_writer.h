#pragma once

#include "scene/node_writer.h"

#include <string>
#include <string_view>

namespace quarvel {

/// What a script's field is in the document where that differs from the text.
struct DocumentField {
  std::string Type;
  std::string Value;
};

/// Declares a field of the script that was just begun. `line` is the text's whole line, such as
/// "field SFInt32 lastSound -1": keyword (eventIn, eventOut or field), type, name and value; the document's declaration
/// is read off it. X3D calls the keywords inputOnly, outputOnly and initializeOnly, which a conforming scene writes.
void WriteScriptField(const SceneNode& script, std::string_view line, const DocumentField& inDocument = {});

} // namespace quarvel
