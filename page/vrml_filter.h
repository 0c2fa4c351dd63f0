#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>

namespace quarvel {

struct FilteredVrml {
  std::string Text;
  std::set<std::string> Dropped; ///< the types of the nodes that were taken out
};

/// The name that takes the place of an address in a node's field: "image", or the type of the node in lower case; empty
/// for none.
using RenameAddress = std::function<std::string(const std::string& url, std::string_view nodeType)>;

/// Goes through a scene in VRML97 or X3D's classic encoding (ISO/IEC 14772-1, annex A): nodes that hold code and
/// external prototypes become empty groups, routes to them go, links lead nowhere, and addresses are renamed.
FilteredVrml FilterVrml(std::string_view text, const RenameAddress& rename);

} // namespace quarvel
