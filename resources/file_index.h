#pragma once

#include "base/run_interface.h"

#include <cstddef>
#include <filesystem>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// A file of a library.
struct IndexedFile {
  std::string Key;              ///< the folded base name, without the extension
  std::string Extension;        ///< folded, without the point
  std::filesystem::path Folder; ///< relative to its root
  std::string Name;             ///< the file's own name, with its extension, in UTF-8
  std::size_t Root = 0;         ///< which of the index's roots it lies below
};

/// A file whose folder, or one further up, bears a name.
struct NearFile {
  std::string Folder;   ///< the folded name
  int Distance = 0;     ///< folders between that one and the file
  std::size_t File = 0; ///< its place among those of its base name
};

/// The folded names of the folders around a file, the nearest first; the last is the name of the root itself.
std::vector<std::string> FoldersAround(const IndexedFile& file, const std::filesystem::path& root);

/// How far a walk goes.
enum class Walk { Tree, FolderOnly };

/// The files of one or several folder trees by base name. Hidden files and folders are left out; links that lead back
/// to a folder already walked, and folders that cannot be read, are passed over.
class FileIndex {
 public:
  /// More files than any library has; a walk that meets more (the input lies in the root of a disk) ends there.
  static constexpr std::size_t MaxFiles = 500'000;

  FileIndex() = default;
  /// `user`, if given, may process events on the way and end the walk.
  explicit FileIndex(std::vector<std::filesystem::path> roots, Walk walk = Walk::Tree, RunInterface* user = nullptr);

  /// The files with this base name, compared without regard to case; ordered by root, then by path.
  std::span<const IndexedFile> Find(std::string_view baseName) const;

  /// Of a base name that many files share, what the folders around them are called; sorted by folder, then distance.
  /// Null for other names.
  const std::vector<NearFile>* Crowd(std::string_view baseName) const;

  /// Every file, ordered by base name.
  std::span<const IndexedFile> Files() const { return files_; }
  const std::vector<std::filesystem::path>& Roots() const { return roots_; }
  std::filesystem::path PathOf(const IndexedFile& file) const;
  bool Complete() const { return complete_; } ///< false when the walk ended at `MaxFiles`
  /// Folders that could not be read.
  const std::vector<std::filesystem::path>& Unreadable() const { return unreadable_; }

 private:
  friend class FolderWalk;
  void NoteCrowds();

  std::vector<std::filesystem::path> roots_;
  std::vector<IndexedFile> files_;
  std::vector<std::filesystem::path> unreadable_;
  std::map<std::string, std::vector<NearFile>> crowds_;
  bool complete_ = true;
};

/// The folders of a search path: joined with ";", "/" and "\" both understood.
struct SearchFolders {
  std::vector<std::filesystem::path> Existing; ///< absolute; each once
  std::vector<std::filesystem::path> Missing;
};

SearchFolders SplitSearchPath(std::string_view searchPath);

} // namespace quarvel
