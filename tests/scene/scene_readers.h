#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel::test {

/// A node of a scene that was read back.
struct ReadNode {
  std::string Type, Def, Use;
  int Parent = -1;                           ///< index in ReadScene::Nodes
  std::map<std::string, std::string> Fields; ///< what is not a node: the values joined by blanks, without quotes
};

/// A scene file as a strict viewer sees it.
struct ReadScene {
  std::vector<ReadNode> Nodes; ///< in file order
  std::vector<std::string> Routes;
  std::vector<std::string> Faults; ///< what such a viewer refuses, with the line

  /// The nearest DEF name above a node; "" when there is none.
  std::string OwnerOf(const ReadNode& node) const;
  const ReadNode* Find(std::string_view def) const;
};

/// Reads VRML97 or the classic encoding of X3D (ISO/IEC 14772-1, clause A; 19776-2), as the first line says. Faults
/// are: what is no VRML, numbers that are none or too many, node types and fields that the encoding does not have,
/// nodes where they may not stand, names that are not allowed or there twice, USE and ROUTE of names not defined
/// before, events that a node does not have, a ROUTE or PROTO inside a node, indices out of range, keys that do not
/// rise or have no values.
ReadScene ReadVrml(std::string_view text);

/// Reads the XML encoding of X3D, and finds the same faults there. Elements that only this encoding has (the document's
/// frame) are left out.
ReadScene ReadX3D(const std::string& text);

/// One line for each node and route that both encodings of a scene must hold alike, sorted. Fields at their default
/// that one of them leaves out are left out.
std::vector<std::string> Describe(const ReadScene& scene);

/// The lines of Describe that only one of two scenes has.
std::vector<std::string> Differences(const ReadScene& text, const ReadScene& document);

/// Faults of an X3D scene without those that the default layout is to have, which `CheckConforming` avoids.
std::vector<std::string> WithoutQuirks(std::vector<std::string> faults);

} // namespace quarvel::test
