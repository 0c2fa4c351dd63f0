#pragma once

#include "base/reference.h"
#include "base/report.h"
#include "base/text_coding.h"
#include "images/image_type.h"
#include "resources/destination.h"
#include "resources/file_copier.h"
#include "resources/file_index.h"
#include "resources/missing_lists.h"
#include "resources/packed_files.h"
#include "settings/resource_kind.h"

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// What a texture is for; each use has its own wanted image type (`ListBMtypeOut`, ...).
enum class TextureUse { Ordinary, Masked, Terrain };

/// The image of a texture as the scene refers to it.
struct TextureFile {
  bool Found = false;
  int Width = 0; ///< pixels; 0 when unknown
  int Height = 0;
  std::string Url;              ///< encoded; also when not found: the name that the scene then waits for
  std::filesystem::path Source; ///< the file in the library; empty when not found
};

/// A sound or other file as the scene refers to it.
struct ResourceFile {
  bool Found = false;
  std::string Url; ///< encoded; also when not found
  std::filesystem::path Source;
};

/// The two files of a mesh. One that the settings do not ask for (`CheckInlineWRL`, `CheckInlineX3D`) is never found.
struct MeshFiles {
  ResourceFile Wrl;
  ResourceFile X3d;

  bool Found() const { return Wrl.Found || X3d.Found; }
};

/// Finds the files that a level refers to in the user's libraries, brings them beside the scene as the settings ask,
/// and keeps account of what was used and what is missing. One object serves one run; each library is walked once, when
/// it is first needed.
class ResourceFiles {
 public:
  /// Relative paths are taken from the current folder. The scene's folder is `textScene`'s; an empty search path, or
  /// one of which no folder exists, means the folder of `inputFile`.
  /// `programData` holds the files that the program brings along, empty for none. `user`, if given, may process events
  /// while a library is walked, and end the walk. `batch` is what the runs of a batch share, nullptr for a run by
  /// itself.
  ResourceFiles(const ConversionSettings& settings, const std::filesystem::path& inputFile,
                const std::filesystem::path& textScene, Report& report, const std::filesystem::path& programData = {},
                RunInterface* user = nullptr, OutputFolders* batch = nullptr);
  /// The end of a run: saves the list of copies, also when it was stopped.
  ~ResourceFiles() { copier_.SaveList(); }
  ResourceFiles(const ResourceFiles&) = delete;
  ResourceFiles& operator=(const ResourceFiles&) = delete;

  /// Full names of textures that the level calls by their own names alone; by folded name.
  void KnowTextures(std::map<std::string, std::string> fullNames) { fullNames_ = std::move(fullNames); }
  /// From now on images that browsers show (jpg, gif) are copied as they are, where no transparency is to be added.
  void KeepWebImages() { keepsWebImages_ = true; }

  /// The image of a texture, by reference ("Name", "Package.Group.Name", "Texture'Package.Name'"). The result stays
  /// valid as long as this object. An empty reference and "None" are no texture: not found, no URL, not missed.
  const TextureFile& FindTexture(std::string_view reference, TextureUse use);

  /// The image of a texture where it lies in its library, in any type; not copied. For images that the converter itself
  /// reads (heightmaps). Goes to the missing textures when there is none.
  std::optional<std::filesystem::path> FindTextureSource(std::string_view reference);

  /// A sound file by its name ("hum60.wav"). The reference it comes from, if given, tells files of one name apart by
  /// their folders. A file already at the destination is kept; a missing one is listed by its destination path.
  const ResourceFile& FindSound(std::string_view fileName, std::string_view reference = {});

  /// The files of a mesh by reference; the caller puts "-" behind it where that applies. Looked for in the library,
  /// then in the scene's own folder.
  const MeshFiles& FindMesh(std::string_view reference, bool listWhenMissing);
  /// True when there is a mesh file of this name; for actor classes that have one.
  bool HasMesh(std::string_view name);
  /// The lower-case base names of all mesh files, sorted, each once.
  const std::vector<std::string>& MeshNames();

  /// Finds one file by its full name and copies it into the scene's own folder, whatever the destination options say
  /// about folders: for files that name each other. An image in another type is not taken. One that the libraries have
  /// not comes from the program's own files, and is copied even when the settings ask for no copies, as nobody could
  /// find it there. Goes to the missing list of its kind.
  ResourceFile FindAndCopyFile(std::string_view fileName, ResourceKind kind);

  /// What was looked for and not found; sorted, each once.
  MissingResources Missing() const;

  /// The URLs of all textures that were asked for, in order of first use, each once.
  const std::vector<std::string>& UsedTextureUrls() const { return usedTextureUrls_; }

  /// Files that could not be written, one sentence each without a full stop.
  const std::vector<std::string>& Errors() const { return copier_.Errors(); }
  /// Saves the list of copies beside the scene.
  void SaveCopyList() { copier_.SaveList(); }
  /// How many files this run wrote.
  int FilesCopied() const { return copier_.FilesWritten(); }

 private:
  /// Names compared without regard to case, listed as they were first met.
  using NameList = std::map<std::string, std::string>; ///< by folded name

  const FileIndex& IndexOf(ResourceKind kind);
  const FileIndex& SceneFolderIndex();
  const FileIndex& IndexOfFolders(std::vector<std::filesystem::path> folders);
  bool Qualified(ResourceKind kind) const { return destinations_[kind].Options().UEd3Behavior; }

  ImageType WantedType(TextureUse use) const;
  std::string WantedExtension(TextureUse use) const;
  TextureFile LookUpTexture(const ResourceReference& reference, TextureUse use);
  TextureFile LookUpPackedTexture(const ResourceReference& reference, TextureUse use);
  TextureFile CopyPackedTexture(PackedTexture texture, const ResourceReference& reference, TextureUse use);
  bool IsUsable(const PackedObject& packed, const ResourceReference& reference, ResourceKind kind);
  const IndexedFile* FindInLibrary(const FileIndex& index, const ResourceReference& reference, bool qualified,
                                   std::span<const std::string_view> extensions);
  bool IsLibraryFile(const std::filesystem::path& file) const;
  bool IsNameOfAnother(const std::filesystem::path& folder, const CopyJob& job) const;
  void NoteMissing(ResourceKind kind, const std::string& name) { missing_[kind].try_emplace(FoldName(name), name); }
  bool IsUnreadable(ResourceKind kind, const CopyResult& copied, const FoundFile& found, const std::string& name);
  std::optional<ImageConversion> ConversionOf(const FoundFile& found, TextureUse use);
  CopyResult CopyTexture(const FoundFile& found, const ResourceReference& reference, TextureUse use);
  void NoteTextureSize(TextureFile& texture);

  ResourceFile LookUpSound(const std::string& name, std::string_view reference);
  ResourceFile LookUpPackedSound(const ResourceReference& reference, const std::string& copyName);
  struct MeshMatch {
    std::optional<FoundFile> File;
    bool InPackage = false;
  };
  MeshFiles LookUpMesh(const ResourceReference& reference);
  MeshMatch MatchMesh(const ResourceReference& reference, std::string_view extension);
  ResourceFile CopyMesh(const ResourceReference& reference, const MeshMatch& match);
  void ClaimSceneFiles(const std::filesystem::path& textScene);

  CopyResult CopyVerbatim(ResourceKind kind, const FoundFile& found, const std::string& package);
  bool IsSceneFile(const std::filesystem::path& file) const;

  const ConversionSettings settings_;
  std::filesystem::path inputFolder_;
  std::filesystem::path programData_;
  std::filesystem::path sceneFolder_;
  std::filesystem::path sceneFolderAsGiven_;
  bool keepsWebImages_ = false;
  Report& report_;
  RunInterface* user_;

  PerKind<Destination> destinations_;
  std::vector<std::filesystem::path> scenes_; ///< of this run
  OutputFolders ownFolders_;                  ///< of a run outside a batch
  FileCopier copier_;
  PackedFiles packed_;
  std::map<std::string, std::string> fullNames_;
  std::map<std::vector<std::filesystem::path>, FileIndex> indexes_;
  PerKind<const FileIndex*> indexOfKind_; ///< null until it is needed
  std::optional<FileIndex> sceneFolderIndex_;

  std::map<std::pair<std::string, TextureUse>, TextureFile> textures_;
  std::map<std::string, ResourceFile> sounds_;
  std::map<std::string, MeshFiles> meshes_;
  std::optional<std::vector<std::string>> meshNames_;
  PerKind<NameList> missing_;
  std::vector<std::string> usedTextureUrls_;
  std::set<std::string> usedTextureUrlSet_;
};

} // namespace quarvel
