#pragma once

#include "settings/conversion_settings.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>

namespace quarvel {

/// A file found in a library.
struct FoundFile {
  std::filesystem::path Path;   ///< absolute
  std::filesystem::path Folder; ///< its folder relative to the library's root
  std::string Name;             ///< its file name in UTF-8
};

/// The folders that the runs of a batch copy files into: which names they hold, whatever the letter case, and which of
/// these have been given away, and to what.
class OutputFolders {
 public:
  /// The name, in its own letter case, of a file that is already there.
  std::optional<std::string> Existing(const std::filesystem::path& folder, const std::string& name);
  /// Renames a file that differs from `name` in letter case only. Returns the name that the file has now.
  std::string AlignCase(const std::filesystem::path& folder, const std::string& existing, const std::string& name);
  /// Remembers a file that was just written.
  void Note(const std::filesystem::path& folder, const std::string& name);

  /// Gives the file, however its folder is named, to `owner` unless another one has it; true when `owner` has it now.
  bool Claim(const std::filesystem::path& file, const std::string& owner);
  void Release(const std::filesystem::path& file);
  /// Keeps a file from everybody: an input, a scene or a report of the batch.
  void Reserve(const std::filesystem::path& file) { Claim(file, "|reserved"); }
  /// Who has the file; empty when nobody.
  std::string OwnerOf(const std::filesystem::path& file) const;

 private:
  std::string KeyOf(const std::filesystem::path& file) const;
  using Names = std::map<std::string, std::set<std::string>>; ///< by folded name
  Names& NamesIn(const std::filesystem::path& folder);

  std::map<std::filesystem::path, Names> folders_;
  std::map<std::string, std::string> owners_;
  mutable std::map<std::filesystem::path, std::filesystem::path> real_; ///< the folders without links
};

/// Where a file goes, and what the scene calls it.
struct Placement {
  std::filesystem::path Folder;
  std::string Name; ///< UTF-8
  std::string Url;

  std::filesystem::path File() const;
};

/// The destination of one kind of files ("textures", "sounds" or "meshes").
class Destination {
 public:
  Destination(const DestinationOptions& options, std::filesystem::path sceneFolder, std::string kindFolder)
      : options_(options), sceneFolder_(std::move(sceneFolder)), kindFolder_(std::move(kindFolder)) {}

  const DestinationOptions& Options() const { return options_; }
  /// Where a found file goes when it is copied under the given name.
  Placement Place(const FoundFile& found, const std::string& name) const;
  /// Where a file goes of which nothing but the name is known.
  Placement PlaceByName(const std::string& name) const;
  /// The URL of a file that stays in its library: relative to the scene, or below the address put in front.
  std::string UrlInLibrary(const FoundFile& found) const;

 private:
  Placement PlaceIn(const std::filesystem::path& subfolder, const std::string& name) const;
  std::filesystem::path Subfolder(const FoundFile& found) const;

  DestinationOptions options_;
  std::filesystem::path sceneFolder_; ///< absolute
  std::string kindFolder_;
};

/// True when a file holds these bytes.
bool HoldsBytes(const std::filesystem::path& file, std::span<const std::uint8_t> bytes);

} // namespace quarvel
