#include "resources/destination.h"

#include "base/file_name.h"
#include "base/text_coding.h"
#include "resources/url.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace quarvel {

namespace fs = std::filesystem;

OutputFolders::Names& OutputFolders::NamesIn(const fs::path& folder) {
  const auto [at, isNew] = folders_.try_emplace(folder);
  if (!isNew) return at->second;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    const std::string name = Utf8Path(entry->path().filename());
    at->second[FoldName(name)].insert(name);
  }
  return at->second;
}

std::optional<std::string> OutputFolders::Existing(const fs::path& folder, const std::string& name) {
  const Names& names = NamesIn(folder);
  const auto found = names.find(FoldName(name));
  if (found == names.end()) return std::nullopt;
  return found->second.contains(name) ? name : *found->second.begin();
}

std::string OutputFolders::AlignCase(const fs::path& folder, const std::string& existing, const std::string& name) {
  if (existing == name) return name;
  std::error_code error;
  fs::rename(folder / PathOfUtf8(existing), folder / PathOfUtf8(name), error);
  if (error) return existing;
  auto& names = NamesIn(folder)[FoldName(name)];
  names.erase(existing);
  names.insert(name);
  return name;
}

void OutputFolders::Note(const fs::path& folder, const std::string& name) {
  NamesIn(folder)[FoldName(name)].insert(name);
}

std::string OutputFolders::KeyOf(const fs::path& file) const {
  const fs::path folder = AbsolutePath(file).parent_path();
  const auto [at, isNew] = real_.try_emplace(folder);
  if (isNew) {
    std::error_code error;
    at->second = fs::weakly_canonical(AbsolutePath(folder), error);
    if (error) at->second = AbsolutePath(folder);
  }
  return FoldName(Utf8Path(at->second / file.filename()));
}

bool OutputFolders::Claim(const fs::path& file, const std::string& owner) {
  return owners_.try_emplace(KeyOf(file), owner).first->second == owner;
}

void OutputFolders::Release(const fs::path& file) { owners_.erase(KeyOf(file)); }

std::string OutputFolders::OwnerOf(const fs::path& file) const {
  const auto found = owners_.find(KeyOf(file));
  return found == owners_.end() ? std::string() : found->second;
}

fs::path Placement::File() const { return Folder / PathOfUtf8(Name); }

Placement Destination::PlaceIn(const fs::path& subfolder, const std::string& name) const {
  Placement placement;
  placement.Folder = subfolder.empty() ? sceneFolder_ : sceneFolder_ / subfolder;
  placement.Name = name;
  placement.Url = UrlPrefix(options_.DestPrependPath) + EncodeUrlPath(Utf8Path(subfolder / PathOfUtf8(name)));
  return placement;
}

fs::path Destination::Subfolder(const FoundFile& found) const {
  if (options_.DestPathBehavior == 1) return kindFolder_;
  if (options_.DestPathBehavior != 2) return {};
  // A file that already lies below the scene is there by an earlier run, or by the user's arrangement.
  if (!LiesWithin(found.Path, sceneFolder_)) return found.Folder;
  const fs::path relative = found.Path.parent_path().lexically_relative(sceneFolder_);
  return relative == "." ? fs::path() : relative;
}

Placement Destination::Place(const FoundFile& found, const std::string& name) const {
  return PlaceIn(Subfolder(found), name);
}

Placement Destination::PlaceByName(const std::string& name) const {
  return PlaceIn(options_.DestPathBehavior == 1 ? fs::path(kindFolder_) : fs::path(), name);
}

std::string Destination::UrlInLibrary(const FoundFile& found) const {
  if (!UrlPrefix(options_.DestPrependPath).empty()) return Place(found, found.Name).Url;
  const fs::path relative = found.Path.lexically_relative(sceneFolder_);
  return EncodeUrlPath(relative.empty() ? found.Name : Utf8Path(relative));
}

bool HoldsBytes(const fs::path& file, std::span<const std::uint8_t> bytes) {
  std::error_code error;
  if (fs::file_size(file, error) != bytes.size() || error) return false;
  std::ifstream stream(file, std::ios::binary);
  return std::equal(bytes.begin(), bytes.end(), std::istreambuf_iterator<char>(stream),
                    std::istreambuf_iterator<char>(),
                    [](std::uint8_t a, char b) { return a == static_cast<std::uint8_t>(b); });
}

} // namespace quarvel
