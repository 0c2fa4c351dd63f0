#include "resources/lookup.h"

#include "base/file_name.h"
#include "base/text_coding.h"

#include <algorithm>
#include <array>
#include <optional>
#include <tuple>

namespace quarvel {
namespace {

/// Farther than any folder.
constexpr int nowhere = 1'000'000;

std::string WithoutPackage(const ResourceReference& reference) {
  std::string name;
  for (std::size_t i = 1; i < reference.Folders.size(); ++i)
    name += reference.Folders[i] + ".";
  return name + reference.Name;
}

/// Base names that carry the package in front: "Package.Group.Name", "Package.Name".
std::vector<std::string> QualifiedNames(const ResourceReference& reference) {
  std::vector<std::string> names;
  if (reference.Folders.size() > 1) names.push_back(reference.Text);
  if (!reference.Folders.empty()) names.push_back(reference.Package() + "." + reference.Name);
  return names;
}

std::vector<std::string> PlainNames(const ResourceReference& reference) {
  if (reference.Folders.size() < 2) return {reference.Name};
  return {WithoutPackage(reference), reference.Name};
}

} // namespace

FolderFit FitOf(const FileIndex& index, const IndexedFile& file, const ResourceReference& reference) {
  if (reference.Folders.empty()) return {};
  const std::vector<std::string> around = FoldersAround(file, index.Roots()[file.Root]);
  FolderFit fit{static_cast<int>(around.size()), 0, true};
  for (std::size_t i = 0; i < reference.Folders.size(); ++i) {
    const auto found = std::find(around.begin(), around.end(), FoldName(reference.Folders[i]));
    if (found == around.end()) {
      ++fit.UnmatchedParts;
      continue;
    }
    fit.Distance = std::min(fit.Distance, static_cast<int>(found - around.begin()));
    if (i == 0) fit.OtherPackage = false;
  }
  // How deep a file lies must not tell files apart that fit nothing.
  if (fit.UnmatchedParts == static_cast<int>(reference.Folders.size())) fit.Distance = nowhere;
  return fit;
}

namespace {

/// The best of the files that were looked at.
class BestFile {
 public:
  BestFile(const FileIndex& index, const ResourceReference& reference, std::span<const std::string_view> extensions,
           const std::function<bool(const IndexedFile&)>& refused)
      : index_(index), reference_(reference), extensions_(extensions), refused_(refused) {}

  const IndexedFile* Get() const { return best_; }

  void ConsiderAll(const std::string& name, std::size_t nameRank) {
    const auto files = index_.Find(name);
    const std::vector<NearFile>* crowd = reference_.Folders.empty() ? nullptr : index_.Crowd(name);
    if (crowd && ConsiderNear(files, *crowd, nameRank)) return;
    for (const IndexedFile& file : files)
      Consider(file,
               crowd ? FolderFit{nowhere, static_cast<int>(reference_.Folders.size()), true}
                     : FitOf(index_, file, reference_),
               nameRank);
  }

 private:
  bool Consider(const IndexedFile& file, const FolderFit& fit, std::size_t nameRank) {
    const auto extension = std::find(extensions_.begin(), extensions_.end(), file.Extension);
    if (extension == extensions_.end()) return false;
    const std::tuple rank(fit, nameRank, extension - extensions_.begin());
    if ((rank_ && !(rank < *rank_)) || (refused_ && refused_(file))) return false;
    rank_ = rank;
    best_ = &file;
    return true;
  }

  /// Those around which a folder is named like a part of the reference, from the nearest on, until one is fit.
  bool ConsiderNear(std::span<const IndexedFile> files, const std::vector<NearFile>& crowd, std::size_t nameRank) {
    constexpr int deepest = 64;
    bool found = false;
    for (int distance = 0; distance < deepest && !found; ++distance)
      for (const std::string& part : reference_.Folders) {
        const auto [from, to] =
            std::equal_range(crowd.begin(), crowd.end(), NearFile{FoldName(part), distance, 0},
                             [](const NearFile& a, const NearFile& b) {
                               return std::tie(a.Folder, a.Distance) < std::tie(b.Folder, b.Distance);
                             });
        for (auto near = from; near != to; ++near)
          found |= Consider(files[near->File], FitOf(index_, files[near->File], reference_), nameRank);
      }
    return found;
  }

  const FileIndex& index_;
  const ResourceReference& reference_;
  std::span<const std::string_view> extensions_;
  const std::function<bool(const IndexedFile&)>& refused_;
  const IndexedFile* best_ = nullptr;
  std::optional<std::tuple<FolderFit, std::size_t, std::ptrdiff_t>> rank_;
};

} // namespace

const IndexedFile* FindReferenced(const FileIndex& index, const ResourceReference& reference, bool qualified,
                                  std::span<const std::string_view> extensions,
                                  const std::function<bool(const IndexedFile&)>& refused) {
  BestFile best(index, reference, extensions, refused);
  for (const std::string& name : qualified ? QualifiedNames(reference) : std::vector<std::string>()) {
    best.ConsiderAll(name, 0);
    if (best.Get()) return best.Get();
  }
  const std::vector<std::string> names = PlainNames(reference);
  for (std::size_t i = 0; i < names.size(); ++i)
    best.ConsiderAll(names[i], i);
  return best.Get();
}

std::vector<std::string_view> ImageExtensions(ImageType wanted) {
  std::vector<std::string_view> extensions{"png", "jpg", "jpeg", "gif", "bmp", "tga", "dds", "pcx"};
  std::stable_partition(extensions.begin(), extensions.end(),
                        [wanted](std::string_view extension) { return ImageTypeOfExtension(extension) == wanted; });
  return extensions;
}

} // namespace quarvel
