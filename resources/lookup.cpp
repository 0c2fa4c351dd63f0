#include "resources/lookup.h"

#include <algorithm>
#include <array>
#include <optional>
#include <tuple>

namespace quarvel {
namespace {

/// The folded names of the folders around a file, the nearest first; the last is the name of the root itself.
std::vector<std::string> FoldersAround(const FileIndex& index, const IndexedFile& file) {
  std::vector<std::string> names;
  for (const auto& part : file.Folder)
    if (!part.empty()) names.push_back(FoldName(Utf8Path(part)));
  std::reverse(names.begin(), names.end());
  names.push_back(FoldName(Utf8Path(index.Roots()[file.Root].filename())));
  return names;
}

std::string WithoutPackage(const ResourceReference& reference) {
  std::string name;
  for (std::size_t i = 1; i < reference.Folders.size(); ++i)
    name += reference.Folders[i] + ".";
  return name + reference.Name;
}

} // namespace

FolderFit FitOf(const FileIndex& index, const IndexedFile& file, const ResourceReference& reference) {
  if (reference.Folders.empty()) return {};
  const std::vector<std::string> around = FoldersAround(index, file);
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
  if (fit.UnmatchedParts == static_cast<int>(reference.Folders.size())) fit.Distance = 1'000'000;
  return fit;
}

std::vector<std::string> BaseNames(const ResourceReference& reference, bool qualified) {
  std::vector<std::string> names;
  if (qualified && reference.Folders.size() > 1) names.push_back(reference.Text);
  if (qualified && !reference.Folders.empty()) names.push_back(reference.Package() + "." + reference.Name);
  if (reference.Folders.size() > 1) names.push_back(WithoutPackage(reference));
  names.push_back(reference.Name);
  return names;
}

const IndexedFile* FindReferenced(const FileIndex& index, const ResourceReference& reference, bool qualified,
                                  std::span<const std::string_view> extensions,
                                  const std::function<bool(const IndexedFile&)>& refused) {
  for (const std::string& name : BaseNames(reference, qualified)) {
    const IndexedFile* best = nullptr;
    std::optional<std::tuple<FolderFit, std::ptrdiff_t>> bestRank;
    for (const IndexedFile& file : index.Find(name)) {
      const auto extension = std::find(extensions.begin(), extensions.end(), file.Extension);
      if (extension == extensions.end() || (refused && refused(file))) continue;
      const std::tuple rank(FitOf(index, file, reference), extension - extensions.begin());
      if (bestRank && !(rank < *bestRank)) continue;
      bestRank = rank;
      best = &file;
    }
    if (best) return best;
  }
  return nullptr;
}

std::vector<std::string_view> ImageExtensions(ImageType wanted) {
  std::vector<std::string_view> extensions{"png", "jpg", "jpeg", "gif", "bmp", "tga", "dds", "pcx"};
  std::stable_partition(extensions.begin(), extensions.end(),
                        [wanted](std::string_view extension) { return ImageTypeOfExtension(extension) == wanted; });
  return extensions;
}

} // namespace quarvel
