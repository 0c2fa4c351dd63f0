#pragma once

#include "base/reference.h"
#include "images/image_type.h"
#include "resources/file_index.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// How closely the folders around a file fit the group and package of a reference. Smaller is better.
struct FolderFit {
  int Distance = 0;       ///< folders between the file and the nearest one of a fitting name
  int UnmatchedParts = 0; ///< parts of the reference that no folder around the file is named like
  bool OtherPackage = true;

  auto operator<=>(const FolderFit&) const = default;
};

FolderFit FitOf(const FileIndex& index, const IndexedFile& file, const ResourceReference& reference);

/// The file of a reference among those with one of the extensions: with `qualified` first one whose own name carries
/// the package ("Package.Group.Name", "Package.Name"), then one named "Group.Name" or like the last part alone. Several
/// are told apart by the nearest folder that is named like group or package, then by those two names, then by the order
/// of the extensions, then by path. Null when there is none. Files that are `refused` are passed over.
const IndexedFile* FindReferenced(const FileIndex& index, const ResourceReference& reference, bool qualified,
                                  std::span<const std::string_view> extensions,
                                  const std::function<bool(const IndexedFile&)>& refused = {});

/// The extensions of images in order of preference, the wanted type's first.
std::vector<std::string_view> ImageExtensions(ImageType wanted);

} // namespace quarvel
