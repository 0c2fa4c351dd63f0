#pragma once

#include "base/file_name.h"
#include "base/report.h"
#include "images/image.h"
#include "resources/destination.h"
#include "resources/file_index.h"
#include "resources/package_library.h"

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace quarvel {

/// What was found in a package for a reference.
struct PackedObject {
  FoundFile Found;     ///< `Path` is the package's with the object's name below it; `Name` has no extension
  std::string Package; ///< the package's file name
  std::string Error;   ///< why it cannot be read: a clause without a full stop; else empty
};

struct PackedTexture : PackedObject {
  Image Picture;
  bool Masked = false; ///< transparent where its palette index is 0, on every face
};

struct PackedSound : PackedObject {
  Bytes File; ///< a whole .wav file; stays valid as long as the object that found it
};

/// Finds textures and sounds in the packages of search paths, and tells what is special about them. Packages are
/// indexed when the first is looked for.
class PackedFiles {
 public:
  /// `inputFile` is the level. Its own package is `inputFile` itself, or the level of that name beside it.
  PackedFiles(const std::filesystem::path& inputFile, Report& report);

  std::optional<PackedTexture> FindTexture(const FileIndex& files, const ResourceReference& reference);
  std::optional<PackedSound> FindSound(const FileIndex& files, const ResourceReference& reference);

 private:
  PackageLibrary& LibraryOf(const FileIndex& files);
  PackageObject Find(const PackageLibrary& library, const ResourceReference& reference, PackageLibrary::Kind kind,
                     PackedObject& found);

  std::filesystem::path ownPackage_; ///< empty for none
  Report& report_;
  std::map<const FileIndex*, std::unique_ptr<PackageLibrary>> libraries_;
};

} // namespace quarvel
