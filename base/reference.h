#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// What a reference names, without a class, apostrophes and double quotes around it: Texture'Package.Group.Name' gives
/// Package.Group.Name, as that by itself does.
std::string_view ReferencePath(std::string_view reference);

/// The last part of what a reference names: Texture'Package.Group.Name' gives Name.
std::string_view ReferenceName(std::string_view reference);

/// What a level refers to, in UTF-8.
struct ResourceReference {
  std::string Text;                 ///< "Name", "Package.Name" or "Package.Group.Name"
  std::string Name;                 ///< its last part
  std::vector<std::string> Folders; ///< the parts before it, the package first

  std::string Package() const { return Folders.empty() ? std::string() : Folders.front(); }
};

ResourceReference ParseReference(std::string_view reference);

} // namespace quarvel
