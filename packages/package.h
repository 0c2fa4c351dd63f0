#pragma once

#include "packages/mapped_file.h"
#include "packages/object_reader.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// The versions of the package format that can be read.
inline constexpr int FirstPackageVersion = 61;
inline constexpr int LastPackageVersion = 69;

/// Refers to an object: 0 none, n > 0 export n - 1, n < 0 import -n - 1.
using ObjectRef = std::int32_t;

/// An object that lies in another package.
struct PackageImport {
  std::int32_t Class = 0; ///< the name of its class, an index of the names
  ObjectRef Outer = 0;    ///< what it lies in: a group or a package; 0 for a package
  std::int32_t Name = 0;
};

/// An object that lies in this package.
struct PackageExport {
  ObjectRef Class = 0; ///< 0 for a class
  ObjectRef Outer = 0; ///< the group that it lies in; 0 for none
  std::int32_t Name = 0;
  std::uint32_t Flags = 0;
  std::uint32_t Size = 0; ///< bytes
  std::uint32_t Offset = 0;
  bool Intact = true; ///< false when its bytes lie outside the file, or reach into those of the next object
};

/// A package: its tables, and the bytes that its objects are read from. Names are bytes as they stand in the file,
/// mostly ASCII.
struct Package {
  std::string Name; ///< the file's name without its extension, UTF-8
  int Version = 0;
  std::optional<MappedFile> Mapping;
  Bytes File;
  std::vector<std::string_view> Names;
  std::vector<PackageImport> Imports;
  std::vector<PackageExport> Exports;
};

/// A package, or the reason why there is none: the end of a sentence that begins with the file's name, without a full
/// stop.
struct PackageResult {
  std::optional<Package> Value;
  std::string Error;

  explicit operator bool() const { return Value.has_value(); }
};

/// Reads the tables of a package file; its objects are read when they are asked for.
PackageResult OpenPackage(const std::filesystem::path& file);
/// The same for a file in memory, which must outlive the package. `name` is the package's.
PackageResult ReadPackage(Bytes file, std::string name);

/// True when the file begins as a package does.
bool LooksLikePackage(Bytes head);

/// The name with this index; empty when there is none, or it is longer than names can be.
std::string_view NameAt(const Package& package, std::int32_t index);

/// The export or import that a reference means; null when there is none.
const PackageExport* ExportOf(const Package& package, ObjectRef object);
const PackageImport* ImportOf(const Package& package, ObjectRef object);
inline ObjectRef RefOfExport(std::size_t index) { return static_cast<ObjectRef>(index) + 1; }

/// An object's own name; empty for none.
std::string_view ObjectName(const Package& package, ObjectRef object);
/// The name of an object's class, "Class" for a class; empty for none.
std::string_view ClassName(const Package& package, ObjectRef object);

/// What an object lies in, outermost first, and its own name: the package (where it is an import's), groups, the name.
/// Empty when the chain of groups is longer than any is, or leads back to itself.
std::vector<std::string_view> ObjectPath(const Package& package, ObjectRef object);
/// The path joined with points; that of an export begins with `package`, when given.
std::string FullName(const Package& package, ObjectRef object, std::string_view packageName);

/// A reader of an export's bytes, behind the state frame that actors have. Failed when the export is not intact.
ObjectReader ReadObject(const Package& package, const PackageExport& object);

} // namespace quarvel
