#include "resources/file_index.h"

#include "base/file_name.h"
#include "base/text_coding.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace quarvel {

namespace fs = std::filesystem;

namespace {

fs::path Canonical(const fs::path& folder) {
  std::error_code error;
  fs::path canonical = fs::canonical(folder, error);
  return error ? folder : canonical;
}

bool ByKeyThenPath(const IndexedFile& a, const IndexedFile& b) {
  if (const int order = a.Key.compare(b.Key); order != 0) return order < 0;
  if (a.Root != b.Root) return a.Root < b.Root;
  if (const int order = a.Folder.compare(b.Folder); order != 0) return order < 0;
  return a.Name < b.Name;
}

} // namespace

/// One walk over the trees of an index. Links to folders are followed last, so that a file is indexed by its real path
/// where it has one below the roots.
class FolderWalk {
 public:
  FolderWalk(FileIndex& index, Walk walk, RunInterface* user) : index_(index), walk_(walk), user_(user) {}

  void WalkRoot(std::size_t root) {
    pending_.push_back({root, {}, Canonical(index_.roots_[root])});
    while (!pending_.empty() && !stopped_) {
      const Folder folder = std::move(pending_.back());
      pending_.pop_back();
      ReadFolder(folder);
      if (!pending_.empty() || links_.empty()) continue;
      const auto first =
          std::min_element(links_.begin(), links_.end(), ByPath); // whatever order the folder lists them in
      pending_.push_back(std::move(*first));
      links_.erase(first);
    }
  }

 private:
  struct Folder {
    std::size_t Root;
    fs::path Relative;
    fs::path Real; ///< tells folders apart that are reached in several ways
  };

  static bool ByPath(const Folder& a, const Folder& b) { return a.Relative < b.Relative; }

  void ReadFolder(const Folder& folder) {
    if (!seen_.insert(folder.Real.native()).second) return;
    std::error_code error;
    fs::directory_iterator at(index_.roots_[folder.Root] / folder.Relative, error);
    if (error) index_.unreadable_.push_back(folder.Relative.empty() ? index_.roots_[folder.Root] : folder.Relative);
    for (; !error && at != fs::directory_iterator(); at.increment(error)) {
      if (index_.files_.size() >= FileIndex::MaxFiles) index_.complete_ = false;
      if (!index_.complete_ || IsStopped()) return;
      TakeEntry(folder, *at);
    }
  }

  bool IsStopped() {
    constexpr unsigned entriesBetweenLooks = 64;
    if (user_ && entries_++ % entriesBetweenLooks == 0) {
      user_->ProcessEvents();
      stopped_ = stopped_ || user_->StopRequested();
    }
    return stopped_;
  }

  void TakeEntry(const Folder& folder, const fs::directory_entry& entry) {
    const fs::path name = entry.path().filename();
    if (name.empty() || name.native().front() == '.') return;
    std::error_code error;
    if (entry.is_symlink(error)) {
      if (!entry.is_directory(error)) return TakeFile(folder, entry, name);
      if (walk_ == Walk::Tree) links_.push_back({folder.Root, folder.Relative / name, Canonical(entry.path())});
    } else if (entry.is_directory(error)) {
      if (walk_ == Walk::Tree) pending_.push_back({folder.Root, folder.Relative / name, folder.Real / name});
    } else {
      TakeFile(folder, entry, name);
    }
  }

  void TakeFile(const Folder& folder, const fs::directory_entry& entry, const fs::path& name) {
    std::error_code error;
    if (!entry.is_regular_file(error)) return;
    IndexedFile file;
    file.Name = Utf8Path(name);
    file.Key = FoldName(file.Name);
    const std::size_t point = file.Key.rfind('.');
    if (point != std::string::npos) {
      file.Extension = file.Key.substr(point + 1);
      file.Key.resize(point);
    }
    file.Folder = folder.Relative;
    file.Root = folder.Root;
    index_.files_.push_back(std::move(file));
  }

  FileIndex& index_;
  Walk walk_;
  RunInterface* user_;
  unsigned entries_ = 0;
  bool stopped_ = false;
  std::vector<Folder> pending_;
  std::vector<Folder> links_;
  std::set<fs::path::string_type> seen_;
};

FileIndex::FileIndex(std::vector<fs::path> roots, Walk walk, RunInterface* user) : roots_(std::move(roots)) {
  FolderWalk folders(*this, walk, user);
  for (std::size_t root = 0; root < roots_.size(); ++root)
    folders.WalkRoot(root);
  std::sort(files_.begin(), files_.end(), ByKeyThenPath);
  NoteCrowds();
  std::sort(unreadable_.begin(), unreadable_.end());
}

std::vector<std::string> FoldersAround(const IndexedFile& file, const fs::path& root) {
  std::vector<std::string> names;
  for (const auto& part : file.Folder)
    if (!part.empty()) names.push_back(FoldName(Utf8Path(part)));
  std::reverse(names.begin(), names.end());
  names.push_back(FoldName(Utf8Path(root.filename())));
  return names;
}

/// Comparing the folders of all files of one name for every reference to it would take the square of their number.
void FileIndex::NoteCrowds() {
  constexpr std::size_t crowd = 16;
  for (auto first = files_.begin(); first != files_.end();) {
    const auto last =
        std::find_if(first, files_.end(), [&](const IndexedFile& file) { return file.Key != first->Key; });
    if (static_cast<std::size_t>(last - first) > crowd) {
      std::vector<NearFile>& near = crowds_[first->Key];
      for (auto file = first; file != last; ++file) {
        const std::vector<std::string> around = FoldersAround(*file, roots_[file->Root]);
        for (std::size_t i = 0; i < around.size(); ++i)
          near.push_back({around[i], static_cast<int>(i), static_cast<std::size_t>(file - first)});
      }
      std::sort(near.begin(), near.end(), [](const NearFile& a, const NearFile& b) {
        return std::tie(a.Folder, a.Distance, a.File) < std::tie(b.Folder, b.Distance, b.File);
      });
    }
    first = last;
  }
}

const std::vector<NearFile>* FileIndex::Crowd(std::string_view baseName) const {
  if (crowds_.empty()) return nullptr;
  const auto found = crowds_.find(FoldName(baseName));
  return found == crowds_.end() ? nullptr : &found->second;
}

std::span<const IndexedFile> FileIndex::Find(std::string_view baseName) const {
  const std::string key = FoldName(baseName);
  const auto first =
      std::lower_bound(files_.begin(), files_.end(), key,
                       [](const IndexedFile& file, const std::string& wanted) { return file.Key < wanted; });
  auto last = first;
  while (last != files_.end() && last->Key == key)
    ++last;
  return {first, last};
}

fs::path FileIndex::PathOf(const IndexedFile& file) const {
  return roots_[file.Root] / file.Folder / PathOfUtf8(file.Name);
}

SearchFolders SplitSearchPath(std::string_view searchPath) {
  SearchFolders folders;
  while (!searchPath.empty()) {
    const std::size_t end = searchPath.find(';');
    const std::string_view item = searchPath.substr(0, end);
    searchPath = end == std::string_view::npos ? std::string_view() : searchPath.substr(end + 1);
    const fs::path folder = PathOfUserText(item);
    if (folder.empty()) continue;
    std::error_code error;
    const fs::path absolute = AbsolutePath(folder);
    auto& list = fs::is_directory(absolute, error) ? folders.Existing : folders.Missing;
    if (std::find(list.begin(), list.end(), absolute) == list.end()) list.push_back(absolute);
  }
  return folders;
}

} // namespace quarvel
