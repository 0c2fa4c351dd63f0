#include "resources/lookup.h"

#include "base/file_name.h"
#include "base/text_coding.h"

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

const IndexedFile* FindReferenced(const FileIndex& index, const ResourceReference& reference, bool qualified,
                                  std::span<const std::string_view> extensions,
                                  const std::function<bool(const IndexedFile&)>& refused) {
  const IndexedFile* best = nullptr;
  std::optional<std::tuple<FolderFit, std::size_t, std::ptrdiff_t>> bestRank;
  const auto consider = [&](const std::string& name, std::size_t nameRank) {
    for (const IndexedFile& file : index.Find(name)) {
      const auto extension = std::find(extensions.begin(), extensions.end(), file.Extension);
      if (extension == extensions.end() || (refused && refused(file))) continue;
      const std::tuple rank(FitOf(index, file, reference), nameRank, extension - extensions.begin());
      if (bestRank && !(rank < *bestRank)) continue;
      bestRank = rank;
      best = &file;
    }
  };
  for (const std::string& name : qualified ? QualifiedNames(reference) : std::vector<std::string>()) {
    consider(name, 0);
    if (best) return best;
  }
  const std::vector<std::string> names = PlainNames(reference);
  for (std::size_t i = 0; i < names.size(); ++i)
    consider(names[i], i);
  return best;
}

std::vector<std::string_view> ImageExtensions(ImageType wanted) {
  std::vector<std::string_view> extensions{"png", "jpg", "jpeg", "gif", "bmp", "tga", "dds", "pcx"};
  std::stable_partition(extensions.begin(), extensions.end(),
                        [wanted](std::string_view extension) { return ImageTypeOfExtension(extension) == wanted; });
  return extensions;
}

} // namespace quarvel
