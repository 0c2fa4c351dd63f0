#include "packages/package.h"

#include "base/file_name.h"
#include "images/bytes.h"

#include <algorithm>

namespace quarvel {
namespace {

constexpr std::uint32_t packageTag = 0x9E2A83C1;
constexpr std::size_t headerSize = 36;
constexpr std::uint32_t hasStateFrame = 0x02000000;
constexpr std::size_t deepestPath = 16; ///< groups within groups
constexpr std::size_t longestName = 64; ///< of the engine's names; longer ones would let a small file cause long lists

PackageResult Refused(std::string reason) { return {std::nullopt, std::move(reason)}; }

/// Names have a length from version 64 on, and end at a zero before.
std::string_view ReadName(ObjectReader& reader, Bytes file, int version) {
  if (version >= 64) {
    const std::string_view text = TextOf(reader.Take(reader.Count(1)));
    return text.substr(0, text.find('\0'));
  }
  const std::string_view rest = TextOf(file.subspan(reader.At(), reader.Left()));
  const std::string_view text = rest.substr(0, rest.find('\0'));
  reader.Skip(text.size() + 1);
  return text;
}

bool ReadNames(Package& package, std::uint32_t count, std::uint32_t offset) {
  ObjectReader reader(package.File, offset, package.File.size());
  if (!reader.Has(std::uint64_t{count} * 5)) return false;
  package.Names.reserve(count);
  for (std::uint32_t i = 0; i < count && !reader.Failed(); ++i) {
    const std::string_view name = ReadName(reader, package.File, package.Version);
    package.Names.push_back(name.size() <= longestName ? name : std::string_view());
    reader.Skip(4); // flags
  }
  return !reader.Failed();
}

bool ReadImports(Package& package, std::uint32_t count, std::uint32_t offset) {
  ObjectReader reader(package.File, offset, package.File.size());
  if (!reader.Has(std::uint64_t{count} * 7)) return false;
  package.Imports.resize(count);
  for (PackageImport& import : package.Imports) {
    reader.Index(); // the package of the class
    import.Class = reader.Index();
    import.Outer = reader.S32();
    import.Name = reader.Index();
  }
  return !reader.Failed();
}

bool ReadExports(Package& package, std::uint32_t count, std::uint32_t offset) {
  ObjectReader reader(package.File, offset, package.File.size());
  if (!reader.Has(std::uint64_t{count} * 12)) return false;
  package.Exports.resize(count);
  for (PackageExport& object : package.Exports) {
    object.Class = reader.Index();
    reader.Index(); // what a class derives from
    object.Outer = reader.S32();
    object.Name = reader.Index();
    object.Flags = reader.U32();
    const std::int32_t size = reader.Index();
    const std::int32_t at = size == 0 ? 0 : reader.Index();
    object.Intact = size >= 0 && at >= 0 &&
                    static_cast<std::uint64_t>(size) + static_cast<std::uint64_t>(at) <= package.File.size();
    object.Size = object.Intact ? static_cast<std::uint32_t>(size) : 0;
    object.Offset = object.Intact ? static_cast<std::uint32_t>(at) : 0;
  }
  return !reader.Failed();
}

/// Objects lie one after another. Where they do not, reading all of them could take far longer than the file is large,
/// so one that reaches into the next is damaged.
void MarkOverlaps(std::vector<PackageExport>& objects) {
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < objects.size(); ++i)
    if (objects[i].Size > 0) order.push_back(i);
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return std::pair(objects[a].Offset, a) < std::pair(objects[b].Offset, b);
  });
  for (std::size_t i = 1; i < order.size(); ++i) {
    PackageExport& object = objects[order[i - 1]];
    if (object.Offset + object.Size > objects[order[i]].Offset) object.Intact = false;
  }
}

} // namespace

bool LooksLikePackage(Bytes head) { return ByteView(head).U32(0) == packageTag; }

PackageResult ReadPackage(Bytes file, std::string name) {
  const ByteView header(file);
  if (!LooksLikePackage(file)) return Refused("is no package");
  if (!header.Has(0, headerSize)) return Refused("ends within its header");
  Package package;
  package.Version = static_cast<int>(header.U16(4));
  if (package.Version < FirstPackageVersion || package.Version > LastPackageVersion)
    return Refused("is a package of version " + std::to_string(package.Version) + "; versions " +
                   std::to_string(FirstPackageVersion) + " to " + std::to_string(LastPackageVersion) + " can be read");
  package.File = file;
  if (!ReadNames(package, header.U32(12), header.U32(16))) return Refused("has a damaged table of names");
  if (!ReadExports(package, header.U32(20), header.U32(24))) return Refused("has a damaged table of objects");
  if (!ReadImports(package, header.U32(28), header.U32(32))) return Refused("has a damaged table of imports");
  MarkOverlaps(package.Exports);
  package.Name = std::move(name);
  return {std::move(package), {}};
}

PackageResult OpenPackage(const std::filesystem::path& file) {
  auto mapping = MappedFile::Open(file);
  if (!mapping) return Refused("cannot be read");
  PackageResult result = ReadPackage(mapping->Content(), Utf8Path(file.stem()));
  if (!result) return result;
  result.Value->Mapping = std::move(mapping);
  return result;
}

std::string_view NameAt(const Package& package, std::int32_t index) {
  if (index < 0 || static_cast<std::size_t>(index) >= package.Names.size()) return {};
  return package.Names[static_cast<std::size_t>(index)];
}

const PackageExport* ExportOf(const Package& package, ObjectRef object) {
  if (object <= 0 || static_cast<std::size_t>(object) > package.Exports.size()) return nullptr;
  return &package.Exports[static_cast<std::size_t>(object) - 1];
}

const PackageImport* ImportOf(const Package& package, ObjectRef object) {
  const std::int64_t index = -static_cast<std::int64_t>(object) - 1;
  if (index < 0 || static_cast<std::uint64_t>(index) >= package.Imports.size()) return nullptr;
  return &package.Imports[static_cast<std::size_t>(index)];
}

std::string_view ObjectName(const Package& package, ObjectRef object) {
  if (const PackageExport* found = ExportOf(package, object)) return NameAt(package, found->Name);
  if (const PackageImport* found = ImportOf(package, object)) return NameAt(package, found->Name);
  return {};
}

std::string_view ClassName(const Package& package, ObjectRef object) {
  if (const PackageExport* found = ExportOf(package, object))
    return found->Class == 0 ? "Class" : ObjectName(package, found->Class);
  if (const PackageImport* found = ImportOf(package, object)) return NameAt(package, found->Class);
  return {};
}

std::vector<std::string_view> ObjectPath(const Package& package, ObjectRef object) {
  std::vector<std::string_view> path;
  while (object != 0) {
    if (path.size() == deepestPath) return {};
    path.push_back(ObjectName(package, object));
    if (path.back().empty()) return {};
    const PackageExport* exported = ExportOf(package, object);
    object = exported ? exported->Outer : ImportOf(package, object)->Outer;
  }
  std::reverse(path.begin(), path.end());
  return path;
}

std::string FullName(const Package& package, ObjectRef object, std::string_view packageName) {
  std::string name(object > 0 ? packageName : std::string_view());
  for (const std::string_view part : ObjectPath(package, object)) {
    if (!name.empty()) name += '.';
    name += part;
  }
  return name;
}

ObjectReader ReadObject(const Package& package, const PackageExport& object) {
  ObjectReader reader(package.File, object.Offset, std::size_t{object.Offset} + object.Size);
  if (!object.Intact || object.Size == 0) reader.Fail();
  if ((object.Flags & hasStateFrame) == 0) return reader;
  const std::int32_t node = reader.Index();
  reader.Index();  // the state
  reader.Skip(12); // the probe mask and the latent action
  if (node != 0) reader.Index();
  return reader;
}

} // namespace quarvel
