#include "resources/resource_files.h"

#include "resources/image_size.h"
#include "resources/lookup.h"

#include <algorithm>
#include <array>

namespace quarvel {

namespace fs = std::filesystem;

namespace {

FoundFile Located(const FileIndex& index, const IndexedFile& file) {
  return {index.PathOf(file), file.Folder, file.Name};
}

std::string StemOf(const std::string& name) { return name.substr(0, name.rfind('.')); }

std::string ExtensionOf(const std::string& name) {
  const std::size_t point = name.rfind('.');
  return point == std::string::npos ? std::string() : name.substr(point + 1);
}

/// The last part of a path typed with either separator.
std::string_view LastPart(std::string_view path) {
  const std::size_t separator = path.find_last_of("/\\");
  return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

/// What to put in front of the second of two files of one name.
std::string Distinction(const FoundFile& found, const std::string& package) {
  if (!package.empty()) return package;
  return Utf8Path(found.Path.parent_path().filename());
}

} // namespace

bool ResourceFiles::FoldedLess::operator()(const std::string& a, const std::string& b) const {
  return FoldName(a) < FoldName(b);
}

ResourceFiles::ResourceFiles(const ConversionSettings& settings, const fs::path& inputFile, const fs::path& textScene,
                             Report& report)
    : settings_(settings), inputFolder_(AbsolutePath(inputFile).parent_path()),
      sceneFolder_(AbsolutePath(textScene).parent_path()), sceneFolderAsGiven_(textScene.parent_path()),
      report_(report), textureDestination_(settings.TextureDest, sceneFolder_, "textures"),
      soundDestination_(settings.SoundDest, sceneFolder_, "sounds"),
      meshDestination_(settings.MeshDest, sceneFolder_, "meshes") {
  ClaimSceneFiles(textScene);
}

/// No mesh may take the place of the scene that is being written.
void ResourceFiles::ClaimSceneFiles(const fs::path& textScene) {
  std::string stem = Utf8Path(textScene.stem());
  std::vector<std::string> stems{stem};
  if (stem.size() > 1 && stem.back() == '-') stems.push_back(stem.substr(0, stem.size() - 1));
  for (const std::string& name : stems)
    for (const char* extension : {".wrl", ".x3d", ".x3dv", ".xml"})
      output_.Claim(sceneFolder_ / PathOfUtf8(name + extension), "the scene");
}

const FileIndex& ResourceFiles::IndexOfFolders(std::vector<fs::path> folders) {
  const auto known = indexes_.find(folders);
  if (known != indexes_.end()) return known->second;
  FileIndex index(folders);
  for (const fs::path& folder : index.Unreadable())
    report_.Add(Utf8Path(folder), "folder cannot be read");
  if (!index.Complete())
    report_.Add(Utf8Path(folders.front()),
                "holds too many files, only the first " + std::to_string(FileIndex::MaxFiles) + " were looked at");
  return indexes_.emplace(std::move(folders), std::move(index)).first->second;
}

const FileIndex& ResourceFiles::IndexOf(ResourceKind kind) {
  const auto known = indexOfKind_.find(kind);
  if (known != indexOfKind_.end()) return *known->second;
  const std::string& path = kind == ResourceKind::Texture ? settings_.TextSearchPathTxt
                            : kind == ResourceKind::Sound ? settings_.TextSearchPathSnd
                                                          : settings_.TextSearchPathMesh;
  SearchFolders folders = SplitSearchPath(path);
  for (const fs::path& missing : folders.Missing)
    report_.Add(Utf8Path(missing), folders.Existing.empty()
                                       ? "search folder does not exist, the input's folder was searched instead"
                                       : "search folder does not exist");
  if (folders.Existing.empty()) folders.Existing.push_back(inputFolder_);
  const FileIndex& index = IndexOfFolders(std::move(folders.Existing));
  indexOfKind_.emplace(kind, &index);
  return index;
}

const FileIndex& ResourceFiles::SceneFolderIndex() {
  if (!sceneFolderIndex_) sceneFolderIndex_.emplace(std::vector<fs::path>{sceneFolder_}, Walk::FolderOnly);
  return *sceneFolderIndex_;
}

Destination& ResourceFiles::DestinationOf(ResourceKind kind) {
  return kind == ResourceKind::Texture ? textureDestination_
         : kind == ResourceKind::Sound ? soundDestination_
                                       : meshDestination_;
}

ResourceFiles::NameList& ResourceFiles::MissingOf(ResourceKind kind) {
  return kind == ResourceKind::Texture ? missingTextures_
         : kind == ResourceKind::Sound ? missingSounds_
                                       : missingMeshes_;
}

ImageType ResourceFiles::WantedType(TextureUse use) const { return ImageTypeOfExtension(WantedExtension(use)); }

std::string ResourceFiles::WantedExtension(TextureUse use) const {
  const std::string& text = use == TextureUse::Masked    ? settings_.ListMaskedBMtypeOut
                            : use == TextureUse::Terrain ? settings_.ListTerrainBMtypeOut
                                                         : settings_.ListBMtypeOut;
  return text.empty() ? "png" : FoldName(text);
}

const TextureFile& ResourceFiles::FindTexture(std::string_view reference, TextureUse use) {
  const ResourceReference parsed = ParseReference(reference);
  const auto [at, isNew] = textures_.try_emplace({FoldName(parsed.Text), use});
  if (!isNew || parsed.Name.empty() || FoldName(parsed.Text) == "none") return at->second;
  at->second = LookUpTexture(parsed, use);
  if (usedTextureUrlSet_.insert(at->second.Url).second) usedTextureUrls_.push_back(at->second.Url);
  return at->second;
}

TextureFile ResourceFiles::LookUpTexture(const ResourceReference& reference, TextureUse use) {
  TextureFile texture;
  const FileIndex& index = IndexOf(ResourceKind::Texture);
  const IndexedFile* file =
      FindReferenced(index, reference, Qualified(ResourceKind::Texture), ImageExtensions(WantedType(use)));
  if (!file) {
    missingTextures_.insert(reference.Text);
    texture.Url = textureDestination_.PlaceByName(reference.Name + "." + WantedExtension(use)).Url;
    return texture;
  }
  const FoundFile found = Located(index, *file);
  texture.Found = true;
  texture.Source = found.Path;
  NoteTextureSize(texture);
  texture.Url = PlaceTexture(found, reference, use);
  return texture;
}

void ResourceFiles::NoteTextureSize(TextureFile& texture) {
  const auto size = ReadImageSize(texture.Source);
  if (!size) {
    report_.Add(Utf8Path(texture.Source.filename()), "the size of the image is unknown, its header cannot be read");
    return;
  }
  texture.Width = size->Width;
  texture.Height = size->Height;
}

std::string ResourceFiles::PlaceTexture(const FoundFile& found, const ResourceReference& reference, TextureUse) {
  return CopyVerbatim(ResourceKind::Texture, found, reference.Package());
}

std::optional<fs::path> ResourceFiles::FindTextureSource(std::string_view reference) {
  const ResourceReference parsed = ParseReference(reference);
  if (parsed.Name.empty() || FoldName(parsed.Text) == "none") return std::nullopt;
  const FileIndex& index = IndexOf(ResourceKind::Texture);
  const IndexedFile* file =
      FindReferenced(index, parsed, Qualified(ResourceKind::Texture), ImageExtensions(ImageType::Bmp));
  if (file) return index.PathOf(*file);
  missingTextures_.insert(parsed.Text);
  return std::nullopt;
}

const ResourceFile& ResourceFiles::FindSound(std::string_view fileName, std::string_view reference) {
  const std::string name = ToUtf8(LastPart(fileName));
  const auto [at, isNew] = sounds_.try_emplace(FoldName(name));
  if (isNew && !name.empty()) at->second = LookUpSound(name, reference);
  return at->second;
}

ResourceFile ResourceFiles::LookUpSound(const std::string& name, std::string_view reference) {
  const DestinationOptions& options = soundDestination_.Options();
  const Placement expected = soundDestination_.PlaceByName(name);
  if (const auto existing = output_.Existing(expected.Folder, name); existing && !options.DestOverwrite) {
    Placement kept = expected;
    kept.Name = output_.AlignCase(expected.Folder, *existing, name);
    return {true, kept.Name == name ? expected.Url : soundDestination_.PlaceByName(kept.Name).Url, kept.File()};
  }
  ResourceReference parsed = ParseReference(reference);
  parsed.Name = StemOf(name);
  parsed.Text = parsed.Name;
  const FileIndex& index = IndexOf(ResourceKind::Sound);
  const std::string extension = FoldName(ExtensionOf(name));
  const std::array<std::string_view, 1> extensions{extension};
  const IndexedFile* file = FindReferenced(index, parsed, false, extensions);
  if (!file) {
    missingSounds_.insert(Utf8Path(sceneFolderAsGiven_ / expected.File().lexically_relative(sceneFolder_)));
    return {false, expected.Url, {}};
  }
  FoundFile found = Located(index, *file);
  const fs::path source = found.Path;
  if (!options.DestDoCopy) return {true, soundDestination_.UrlInLibrary(found), source};
  return {true, CopyTo(soundDestination_.Place(found, name), found, options), source};
}

const MeshFiles& ResourceFiles::FindMesh(std::string_view reference, bool listWhenMissing) {
  const ResourceReference parsed = ParseReference(reference);
  const auto [at, isNew] = meshes_.try_emplace(FoldName(parsed.Text));
  if (parsed.Name.empty()) return at->second;
  if (isNew) {
    if (settings_.CheckInlineWRL) at->second.Wrl = LookUpMesh(parsed, "wrl");
    if (settings_.CheckInlineX3D) at->second.X3d = LookUpMesh(parsed, "x3d");
  }
  if (listWhenMissing && !at->second.Found()) missingMeshes_.insert(parsed.Text);
  return at->second;
}

ResourceFile ResourceFiles::LookUpMesh(const ResourceReference& reference, std::string_view extension) {
  const std::array<std::string_view, 1> extensions{extension};
  for (const FileIndex* index : {&IndexOf(ResourceKind::Mesh), &SceneFolderIndex()}) {
    const IndexedFile* file = FindReferenced(*index, reference, Qualified(ResourceKind::Mesh), extensions);
    if (!file) continue;
    const FoundFile found = Located(*index, *file);
    if (output_.OwnerOf(found.Path) == "the scene") continue;
    return {true, CopyVerbatim(ResourceKind::Mesh, found, reference.Package()), found.Path};
  }
  return {};
}

bool ResourceFiles::HasMesh(std::string_view name) {
  const std::vector<std::string>& names = MeshNames();
  return std::binary_search(names.begin(), names.end(), FoldName(name));
}

const std::vector<std::string>& ResourceFiles::MeshNames() {
  if (meshNames_) return *meshNames_;
  std::vector<std::string> names;
  for (const FileIndex* index : {&IndexOf(ResourceKind::Mesh), &SceneFolderIndex()})
    for (const IndexedFile& file : index->Files()) {
      const bool wanted = (file.Extension == "wrl" && settings_.CheckInlineWRL) ||
                          (file.Extension == "x3d" && settings_.CheckInlineX3D);
      if (wanted && output_.OwnerOf(index->PathOf(file)) != "the scene") names.push_back(file.Key);
    }
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return meshNames_.emplace(std::move(names));
}

ResourceFile ResourceFiles::FindAndCopyFile(std::string_view fileName, ResourceKind kind) {
  const std::string name = ToUtf8(LastPart(fileName));
  DestinationOptions options = DestinationOf(kind).Options();
  options.DestPathBehavior = 0;
  const Destination beside(options, sceneFolder_, {});
  const Placement placement = beside.PlaceByName(name);
  const FileIndex& index = IndexOf(kind);
  const std::string extension = FoldName(ExtensionOf(name));
  for (const IndexedFile& file : index.Find(StemOf(name))) {
    if (file.Extension != extension) continue;
    const FoundFile found = Located(index, file);
    if (!options.DestDoCopy) return {true, beside.UrlInLibrary(found), found.Path};
    return {true, CopyTo(placement, found, options), found.Path};
  }
  if (output_.Existing(placement.Folder, name)) return {true, placement.Url, placement.File()};
  MissingOf(kind).insert(name);
  return {false, placement.Url, {}};
}

std::string ResourceFiles::CopyVerbatim(ResourceKind kind, const FoundFile& found, const std::string& package) {
  const Destination& destination = DestinationOf(kind);
  if (!destination.Options().DestDoCopy) return destination.UrlInLibrary(found);
  return CopyTo(PlaceUnclaimed(destination, found, found.Name, package), found, destination.Options());
}

Placement ResourceFiles::PlaceUnclaimed(const Destination& destination, const FoundFile& found, const std::string& name,
                                        const std::string& package) {
  const std::string owner = Utf8Path(found.Path);
  const std::string distinct = Distinction(found, package) + "." + name;
  for (int number = 0;; ++number) {
    const std::string tried = number == 0   ? name
                              : number == 1 ? distinct
                                            : StemOf(distinct) + "_" + std::to_string(number) + "." + ExtensionOf(name);
    Placement placement = destination.Place(found, tried);
    const std::string other = output_.OwnerOf(placement.File());
    const bool same = !other.empty() && other != owner && SameContent(found.Path, PathOfUtf8(other));
    if (same || output_.Claim(placement.File(), owner)) return placement;
  }
}

std::string ResourceFiles::CopyTo(const Placement& placement, const FoundFile& found,
                                  const DestinationOptions& options) {
  if (placement.File() == found.Path) return placement.Url;
  if (const auto existing = output_.Existing(placement.Folder, placement.Name); existing && !options.DestOverwrite) {
    output_.AlignCase(placement.Folder, *existing, placement.Name);
    return placement.Url;
  }
  if (WriteCopy(placement, found)) output_.Note(placement.Folder, placement.Name);
  return placement.Url;
}

bool ResourceFiles::WriteCopy(const Placement& placement, const FoundFile& found) {
  std::error_code error;
  if (fs::equivalent(placement.File(), found.Path, error)) return true;
  error.clear();
  fs::create_directories(placement.Folder, error);
  if (!error) fs::copy_file(found.Path, placement.File(), fs::copy_options::overwrite_existing, error);
  if (!error) {
    ++filesCopied_;
    return true;
  }
  errors_.push_back(Utf8Path(placement.File()) + " could not be written: " + error.message());
  report_.Add(placement.Name, "could not be copied: " + error.message());
  return false;
}

} // namespace quarvel
