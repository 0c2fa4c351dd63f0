#include "resources/package_library.h"

#include "base/ascii_text.h"
#include "base/file_name.h"
#include "base/text_coding.h"
#include "packages/property_text.h"
#include "packages/sound_object.h"

#include <algorithm>
#include <array>
#include <optional>
#include <tuple>

namespace quarvel {

namespace fs = std::filesystem;

namespace {

constexpr std::array<std::string_view, 4> packageExtensions{"utx", "uax", "u", "unr"};

std::optional<PackageLibrary::Kind> KindOf(std::string_view className) {
  if (IsTextureClass(className)) return PackageLibrary::Kind::Texture;
  if (IsSoundClass(className)) return PackageLibrary::Kind::Sound;
  if (SameText(className, "Palette")) return PackageLibrary::Kind::Palette;
  return std::nullopt;
}

} // namespace

bool IsPackageExtension(std::string_view extension) {
  return std::find(packageExtensions.begin(), packageExtensions.end(), extension) != packageExtensions.end();
}

void PackageLibrary::AddFolders(const FileIndex& files, Report& report) {
  std::vector<const IndexedFile*> found;
  for (const IndexedFile& file : files.Files())
    if (IsPackageExtension(file.Extension)) found.push_back(&file);
  const auto rank = [](const IndexedFile* file) { return std::tie(file->Root, file->Folder, file->Key, file->Name); };
  std::sort(found.begin(), found.end(), [&](auto* a, auto* b) { return rank(a) < rank(b); });
  for (const IndexedFile* file : found)
    Add(files.PathOf(*file), file->Folder, report);
}

void PackageLibrary::Add(const fs::path& file, const fs::path& folder, Report& report) {
  PackageResult read = OpenPackage(file);
  if (!read) return report.Add(FindingCode::PackagePassedOver, Utf8Path(file.filename()), read.Error);
  std::string name = FoldName(read.Value->Name);
  packages_.push_back({file, folder, std::move(name), std::move(*read.Value)});
  AddObjects(static_cast<std::uint32_t>(packages_.size() - 1));
}

void PackageLibrary::AddObjects(std::uint32_t number) {
  const Package& package = packages_[number].Content;
  // Many objects are of a few classes.
  std::map<ObjectRef, std::optional<Kind>> kinds;
  for (std::size_t i = 0; i < package.Exports.size(); ++i) {
    const auto [kind, isNew] = kinds.try_emplace(package.Exports[i].Class);
    if (isNew) kind->second = KindOf(ClassName(package, RefOfExport(i)));
    if (!kind->second) continue;
    const std::string_view name = ObjectName(package, RefOfExport(i));
    if (!name.empty()) objects_.push_back({FoldName(name), number, static_cast<std::uint32_t>(i), *kind->second});
  }
}

void PackageLibrary::AddOwn(const fs::path& file, Report& report) {
  const fs::path absolute = AbsolutePath(file);
  for (std::size_t i = 0; i < packages_.size(); ++i)
    if (packages_[i].File == absolute) own_ = static_cast<std::ptrdiff_t>(i);
  if (own_ >= 0) return;
  const std::size_t before = packages_.size();
  Add(absolute, {}, report);
  if (packages_.size() > before) own_ = static_cast<std::ptrdiff_t>(before);
}

void PackageLibrary::Sort() {
  std::sort(objects_.begin(), objects_.end(), [](const Entry& a, const Entry& b) {
    return std::tie(a.Key, a.Package, a.Export) < std::tie(b.Key, b.Package, b.Export);
  });
}

bool PackageLibrary::IsOfPackage(const Entry& entry, const std::string& foldedName) const {
  if (packages_[entry.Package].FoldedName == foldedName) return true;
  return own_ == static_cast<std::ptrdiff_t>(entry.Package) && SameText(foldedName, OwnPackageName);
}

int PackageLibrary::UnmatchedGroups(const Entry& entry, const ResourceReference& reference) const {
  const std::vector<std::string_view> path = ObjectPath(packages_[entry.Package].Content, RefOfExport(entry.Export));
  int unmatched = 0;
  for (std::size_t i = 1; i < reference.Folders.size(); ++i)
    unmatched += std::none_of(path.begin(), path.end(),
                              [&](std::string_view part) { return FoldName(part) == FoldName(reference.Folders[i]); });
  return unmatched;
}

PackageLibrary::Match PackageLibrary::Find(const ResourceReference& reference, Kind kind) const {
  const std::string key = FoldName(reference.Name);
  const std::string package = FoldName(reference.Package());
  using Rank = std::tuple<bool, int>; // of another package, unmatched groups; then the order of the packages
  std::optional<Rank> best;
  const Entry* found = nullptr;
  std::vector<std::uint32_t> asGood;
  const auto first = std::lower_bound(objects_.begin(), objects_.end(), key,
                                      [](const Entry& entry, const std::string& wanted) { return entry.Key < wanted; });
  for (auto at = first; at != objects_.end() && at->Key == key; ++at) {
    if (at->Kind != kind) continue;
    const Rank rank(!IsOfPackage(*at, package), UnmatchedGroups(*at, reference));
    if (best && rank == *best && at->Package != found->Package) asGood.push_back(at->Package);
    if (best && rank >= *best) continue;
    best = rank;
    found = &*at;
    asGood.clear();
  }
  Match match;
  if (!found) return match;
  match.Object = {&packages_[found->Package].Content, found->Export};
  asGood.erase(std::unique(asGood.begin(), asGood.end()), asGood.end());
  for (const std::uint32_t other : asGood)
    match.Others.push_back(Utf8Path(packages_[other].File.filename()));
  return match;
}

ImportFinder PackageLibrary::Imports() const {
  return [this](const Package& package, ObjectRef import) -> PackageObject {
    const auto kind = KindOf(ClassName(package, import));
    const ResourceReference reference = ParseReference(FullName(package, import, {}));
    if (!kind || reference.Folders.empty()) return {};
    const PackageObject object = Find(reference, *kind).Object;
    const bool isThatPackage = object && FoldName(object.In->Name) == FoldName(reference.Package());
    return isThatPackage ? object : PackageObject{};
  };
}

const PackageLibrary::Loaded* PackageLibrary::Find(const Package& package) const {
  const auto found = std::find_if(packages_.begin(), packages_.end(),
                                  [&](const Loaded& loaded) { return &loaded.Content == &package; });
  return found == packages_.end() ? nullptr : &*found;
}

fs::path PackageLibrary::PathOf(const Package& package) const {
  const Loaded* loaded = Find(package);
  return loaded ? loaded->File : fs::path();
}

fs::path PackageLibrary::FolderOf(const Package& package) const {
  const Loaded* loaded = Find(package);
  return loaded ? loaded->Folder : fs::path();
}

} // namespace quarvel
