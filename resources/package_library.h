#pragma once

#include "base/reference.h"
#include "base/report.h"
#include "packages/package.h"
#include "packages/texture_object.h"
#include "resources/file_index.h"

#include <cstdint>
#include <deque>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// True for the extensions that package files have (folded, without the point).
bool IsPackageExtension(std::string_view extension);

/// The packages of a search path, and the objects in them that a scene can use, by name. Only the tables of a package
/// are read for that; its objects when they are asked for.
class PackageLibrary {
 public:
  enum class Kind : std::uint8_t { Texture, Sound, Palette };

  /// An object that fits a reference, and the other packages in which one of that name lies that fits as well.
  struct Match {
    PackageObject Object;
    std::vector<std::string> Others;

    explicit operator bool() const { return static_cast<bool>(Object); }
  };

  PackageLibrary() = default;
  PackageLibrary(const PackageLibrary&) = delete;
  PackageLibrary& operator=(const PackageLibrary&) = delete;

  /// Adds the packages of an index: in the order of its roots, then by path. Those that cannot be read are reported.
  void AddFolders(const FileIndex& files, Report& report);
  /// Adds the level's own package, whose objects it calls MyLevel's. One that is there already is only noted as such.
  void AddOwn(const std::filesystem::path& file, Report& report);
  /// Makes what was added findable. Adding afterwards needs another call.
  void Sort();

  /// The object of a reference: of the package that it names, else of the first one that has such an object. Within a
  /// package the one in the group that it names comes first.
  Match Find(const ResourceReference& reference, Kind kind) const;

  /// Follows imports into the packages of this library. It has to outlive the function.
  ImportFinder Imports() const;

  std::filesystem::path PathOf(const Package& package) const;
  /// The folder of a package, relative to its root; empty for the level's own.
  std::filesystem::path FolderOf(const Package& package) const;
  std::size_t Packages() const { return packages_.size(); }
  std::size_t Objects() const { return objects_.size(); }

 private:
  struct Loaded {
    std::filesystem::path File;
    std::filesystem::path Folder; ///< relative to its root
    std::string FoldedName;
    Package Content;
  };
  struct Entry {
    std::string Key; ///< the folded name
    std::uint32_t Package;
    std::uint32_t Export;
    PackageLibrary::Kind Kind;
  };

  void Add(const std::filesystem::path& file, const std::filesystem::path& folder, Report& report);
  const Loaded* Find(const Package& package) const;
  void AddObjects(std::uint32_t package);
  bool IsOfPackage(const Entry& entry, const std::string& foldedName) const;
  int UnmatchedGroups(const Entry& entry, const ResourceReference& reference) const;

  std::deque<Loaded> packages_; ///< whose addresses stay
  std::vector<Entry> objects_;
  std::ptrdiff_t own_ = -1; ///< which one is the level's own
};

} // namespace quarvel
