#include "resources/resource_files.h"

#include "base/file_name.h"
#include "base/level_text.h"
#include "base/text_coding.h"
#include "images/image_file.h"
#include "images/image_size.h"
#include "resources/lookup.h"

#include <algorithm>
#include <array>

namespace quarvel {

namespace fs = std::filesystem;

namespace {

FoundFile Located(const FileIndex& index, const IndexedFile& file) {
  return {index.PathOf(file), file.Folder, file.Name};
}

/// A folder as seen from a library's root, empty for the root itself; nothing when it lies elsewhere.
std::optional<fs::path> FolderBelow(const fs::path& root, const fs::path& folder) {
  if (folder == root) return fs::path();
  fs::path below = folder.lexically_relative(root);
  if (below.empty() || *below.begin() == "..") return std::nullopt;
  return below;
}

/// The last part of a path typed with either separator.
std::string_view LastPart(std::string_view path) {
  const std::size_t separator = path.find_last_of("/\\");
  return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

std::string VariantOf(TextureUse use) { return use == TextureUse::Masked ? "masked" : "opaque"; }

/// What a picture of a package shows, whatever file is made of it.
std::string HashOfPicture(const Image& picture) {
  std::string text = std::to_string(picture.Width) + "x" + std::to_string(picture.Height) + ":";
  text.append(picture.Values.begin(), picture.Values.end());
  for (const Rgba& color : picture.Palette)
    text.append(color.begin(), color.end());
  return HashOf(text);
}

/// The folders in which resources of a kind are searched, as typed.
const std::string& SearchPath(const ConversionSettings& settings, ResourceKind kind) {
  return settings.*InfoOf(kind).SearchPath;
}

Destination DestinationOf(const ConversionSettings& settings, ResourceKind kind, const fs::path& sceneFolder) {
  return {settings.*InfoOf(kind).Destination, sceneFolder, InfoOf(kind).Many};
}

} // namespace

ResourceFiles::ResourceFiles(const ConversionSettings& settings, const fs::path& inputFile, const fs::path& textScene,
                             Report& report, const fs::path& programData, RunInterface* user, OutputFolders* batch)
    : settings_(settings), inputFolder_(AbsolutePath(inputFile).parent_path()), programData_(programData),
      sceneFolder_(AbsolutePath(textScene).parent_path()), sceneFolderAsGiven_(textScene.parent_path()),
      report_(report), user_(user), destinations_(DestinationOf(settings, ResourceKind::Texture, sceneFolder_),
                                                  DestinationOf(settings, ResourceKind::Sound, sceneFolder_),
                                                  DestinationOf(settings, ResourceKind::Mesh, sceneFolder_)),
      copier_(batch ? *batch : ownFolders_, sceneFolder_,
              {[this](const fs::path& file) { return IsLibraryFile(file); },
               [this](const fs::path& folder, const CopyJob& job) { return IsNameOfAnother(folder, job); }},
              report),
      packed_(inputFile, report) {
  ClaimSceneFiles(textScene);
}

/// No mesh may take the place of the scene that is being written.
void ResourceFiles::ClaimSceneFiles(const fs::path& textScene) {
  std::string stem = Utf8Path(textScene.stem());
  std::vector<std::string> stems{stem};
  if (stem.size() > 1 && stem.back() == '-') stems.push_back(stem.substr(0, stem.size() - 1));
  for (const std::string& name : stems)
    for (const char* extension : {".wrl", ".x3d", ".x3dv", ".xml"})
      scenes_.push_back(sceneFolder_ / PathOfUtf8(name + extension));
  for (const fs::path& scene : scenes_)
    copier_.Folders().Reserve(scene);
}

bool ResourceFiles::IsSceneFile(const fs::path& file) const {
  const std::string name = FoldName(Utf8Path(file));
  return std::any_of(scenes_.begin(), scenes_.end(),
                     [&](const fs::path& scene) { return FoldName(Utf8Path(scene)) == name; });
}

/// Whether a file is one of the user's own. Where the library is the scene's folder, copies lie among them.
bool ResourceFiles::IsLibraryFile(const fs::path& file) const {
  if (copier_.List().Find(file)) return false;
  return std::any_of(indexes_.begin(), indexes_.end(), [&](const auto& index) {
    const auto& roots = index.second.Roots();
    return std::any_of(roots.begin(), roots.end(), [&](const fs::path& root) { return LiesWithin(file, root); });
  });
}

/// Copies of images go to their plain names only where no other image of the library has a better right to them, so
/// that the order of references does not matter.
bool ResourceFiles::IsNameOfAnother(const fs::path& folder, const CopyJob& job) const {
  if (!indexOfKind_[ResourceKind::Texture] || job.Found.Path.parent_path() == folder) return false;
  const std::vector<std::string_view> images = ImageExtensions(ImageType::Png);
  if (std::find(images.begin(), images.end(), FoldName(ExtensionOf(job.Name))) == images.end()) return false;
  const FileIndex& index = *indexOfKind_[ResourceKind::Texture];
  std::vector<std::optional<fs::path>> below;
  for (const fs::path& root : index.Roots())
    below.push_back(FolderBelow(root, folder));
  if (std::none_of(below.begin(), below.end(), [](const auto& at) { return at.has_value(); })) return false;
  const auto isAnother = [&](const IndexedFile& file) {
    return file.Folder == below[file.Root] && !copier_.List().Find(index.PathOf(file)) &&
           std::find(images.begin(), images.end(), file.Extension) != images.end();
  };
  const auto files = index.Find(StemOf(job.Name));
  return std::any_of(files.begin(), files.end(), isAnother);
}

/// Copies that lie in the library are found only where nothing else is: what they were made from comes first.
const IndexedFile* ResourceFiles::FindInLibrary(const FileIndex& index, const ResourceReference& reference,
                                                bool qualified, std::span<const std::string_view> extensions) {
  const auto isCopy = [&](const IndexedFile& file) { return copier_.List().Find(index.PathOf(file)) != nullptr; };
  const IndexedFile* file = FindReferenced(index, reference, qualified, extensions, isCopy);
  return file ? file : FindReferenced(index, reference, qualified, extensions);
}

/// A source that cannot be read is as good as missing.
bool ResourceFiles::IsUnreadable(ResourceKind kind, const CopyResult& copied, const FoundFile& found,
                                 const std::string& name) {
  if (copied.Unreadable.empty()) return false;
  report_.Add(FindingCode::UnreadableFile, Utf8Path(found.Path), copied.Unreadable);
  NoteMissing(kind, name);
  return true;
}

const FileIndex& ResourceFiles::IndexOfFolders(std::vector<fs::path> folders) {
  const auto known = indexes_.find(folders);
  if (known != indexes_.end()) return known->second;
  FileIndex index(folders, Walk::Tree, user_);
  for (const fs::path& folder : index.Unreadable())
    report_.Add(FindingCode::UnreadableFolder, Utf8Path(folder));
  if (!index.Complete()) report_.Add(FindingCode::TooManyFiles, Utf8Path(folders.front()), FileIndex::MaxFiles);
  return indexes_.emplace(std::move(folders), std::move(index)).first->second;
}

const FileIndex& ResourceFiles::IndexOf(ResourceKind kind) {
  if (indexOfKind_[kind]) return *indexOfKind_[kind];
  SearchFolders folders = SplitSearchPath(SearchPath(settings_, kind));
  // A default folder that is not there was not asked for.
  const ConversionSettings defaults;
  const bool byDefault = SearchPath(settings_, kind) == SearchPath(defaults, kind);
  for (const fs::path& missing : byDefault ? std::vector<fs::path>() : folders.Missing)
    report_.Add(folders.Existing.empty() ? FindingCode::NoSearchFolderAtAll : FindingCode::NoSearchFolder,
                Utf8Path(missing));
  if (folders.Existing.empty()) folders.Existing.push_back(inputFolder_);
  return *(indexOfKind_[kind] = &IndexOfFolders(std::move(folders.Existing)));
}

const FileIndex& ResourceFiles::SceneFolderIndex() {
  if (!sceneFolderIndex_) sceneFolderIndex_.emplace(std::vector<fs::path>{sceneFolder_}, Walk::FolderOnly);
  return *sceneFolderIndex_;
}

MissingResources ResourceFiles::Missing() const {
  MissingResources lists;
  for (const ResourceKind kind : ResourceKinds)
    for (const auto& [folded, name] : missing_[kind])
      lists[kind].push_back(name);
  return lists;
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
  const auto fullName = parsed.Folders.empty() ? fullNames_.find(FoldName(parsed.Name)) : fullNames_.end();
  at->second = LookUpTexture(fullName == fullNames_.end() ? parsed : ParseReference(fullName->second), use);
  if (usedTextureUrlSet_.insert(at->second.Url).second) usedTextureUrls_.push_back(at->second.Url);
  return at->second;
}

TextureFile ResourceFiles::LookUpTexture(const ResourceReference& reference, TextureUse use) {
  TextureFile texture;
  const FileIndex& index = IndexOf(ResourceKind::Texture);
  const IndexedFile* file =
      FindInLibrary(index, reference, Qualified(ResourceKind::Texture), ImageExtensions(WantedType(use)));
  if (!file) texture = LookUpPackedTexture(reference, use);
  if (texture.Found) return texture;
  if (!file) {
    NoteMissing(ResourceKind::Texture, reference.Text);
    texture.Url =
        destinations_[ResourceKind::Texture].PlaceByName(FileNameOf(reference.Name) + "." + WantedExtension(use)).Url;
    return texture;
  }
  const FoundFile found = Located(index, *file);
  const CopyResult copied = CopyTexture(found, reference, use);
  texture.Url = copied.Url;
  if (IsUnreadable(ResourceKind::Texture, copied, found, reference.Text)) return texture;
  texture.Found = true;
  texture.Source = found.Path;
  NoteTextureSize(texture);
  return texture;
}

TextureFile ResourceFiles::LookUpPackedTexture(const ResourceReference& reference, TextureUse use) {
  auto packed = packed_.FindTexture(IndexOf(ResourceKind::Texture), reference);
  if (!packed) return {};
  if (!IsUsable(*packed, reference, ResourceKind::Texture)) return {};
  return CopyPackedTexture(std::move(*packed), reference, use);
}

bool ResourceFiles::IsUsable(const PackedObject& packed, const ResourceReference& reference, ResourceKind kind) {
  const bool mayCopy = destinations_[kind].Options().DestDoCopy;
  if (!packed.Error.empty())
    report_.Add(FindingCode::PackedUnreadable, reference.Text, packed.Package, packed.Error);
  else if (!mayCopy)
    report_.Add(FindingCode::PackedNotCopied, reference.Text, packed.Package);
  return packed.Error.empty() && mayCopy;
}

TextureFile ResourceFiles::CopyPackedTexture(PackedTexture packed, const ResourceReference& reference, TextureUse use) {
  TextureFile texture{true, packed.Picture.Width, packed.Picture.Height, {}, {}};
  const ImageType wanted = CanWriteImage(WantedType(use)) ? WantedType(use) : ImageType::Png;
  const bool masked = packed.Masked || use == TextureUse::Masked;
  const Transparency alpha = masked ? Transparency::Masked : Transparency::Dropped;
  if (masked && wanted == ImageType::Jpg) report_.Add(FindingCode::MaskedJpg, reference.Text);
  CopyJob job{
      packed.Found, packed.Found.Name + "." + std::string(ExtensionOf(wanted)), reference.Package(), {}, {}, {}};
  if (job.Package.empty()) job.Package = StemOf(packed.Package);
  job.Variant = VariantOf(masked ? TextureUse::Masked : TextureUse::Ordinary);
  const ImageSize size{packed.Picture.Width, packed.Picture.Height};
  std::string hash = HashOfPicture(packed.Picture);
  job.Packed = std::make_shared<PackedContent>(
      [picture = std::move(packed.Picture), alpha, wanted] { return EncodeImage(ToRgba(picture, alpha), wanted); },
      size, std::move(hash));
  const CopyResult copied = copier_.Copy(destinations_[ResourceKind::Texture], job);
  texture.Url = copied.Url;
  texture.Source = copied.File;
  return texture;
}

void ResourceFiles::NoteTextureSize(TextureFile& texture) {
  const auto size = ReadImageSize(texture.Source);
  if (!size) {
    report_.Add(FindingCode::UnknownImageSize, Utf8Path(texture.Source.filename()));
    return;
  }
  texture.Width = size->Width;
  texture.Height = size->Height;
}

std::optional<ImageConversion> ResourceFiles::ConversionOf(const FoundFile& found, TextureUse use) {
  const ImageType wanted = WantedType(use);
  const ImageType type = ImageTypeOfExtension(ExtensionOf(found.Name));
  if (!CanWriteImage(wanted) || !CanReadPixels(type)) return std::nullopt;
  const bool unmasked = use == TextureUse::Masked && HidesTransparency(found.Path);
  const bool shown = keepsWebImages_ && (type == ImageType::Jpg || type == ImageType::Png);
  if ((type == wanted || shown) && !unmasked) return std::nullopt;
  return ImageConversion{wanted, use == TextureUse::Masked ? Transparency::Masked : Transparency::Dropped};
}

CopyResult ResourceFiles::CopyTexture(const FoundFile& found, const ResourceReference& reference, TextureUse use) {
  if (!destinations_[ResourceKind::Texture].Options().DestDoCopy)
    return {destinations_[ResourceKind::Texture].UrlInLibrary(found), found.Path, {}};
  CopyJob job{found, found.Name, reference.Package(), {}, ConversionOf(found, use)};
  if (job.Conversion) {
    job.Name = StemOf(found.Name) + "." + WantedExtension(use);
    if (MayBeTransparent(found.Path)) job.Variant = VariantOf(use);
    if (use == TextureUse::Masked && job.Conversion->Type == ImageType::Jpg && !job.Variant.empty())
      report_.Add(FindingCode::MaskedJpg, found.Name);
  }
  return copier_.Copy(destinations_[ResourceKind::Texture], job);
}

std::optional<fs::path> ResourceFiles::FindTextureSource(std::string_view reference) {
  const ResourceReference parsed = ParseReference(reference);
  if (parsed.Name.empty() || FoldName(parsed.Text) == "none") return std::nullopt;
  const FileIndex& index = IndexOf(ResourceKind::Texture);
  const IndexedFile* file =
      FindInLibrary(index, parsed, Qualified(ResourceKind::Texture), ImageExtensions(ImageType::Bmp));
  if (file) return index.PathOf(*file);
  NoteMissing(ResourceKind::Texture, parsed.Text);
  return std::nullopt;
}

const ResourceFile& ResourceFiles::FindSound(std::string_view fileName, std::string_view reference) {
  const std::string name = ToUtf8(LastPart(fileName));
  const auto [at, isNew] = sounds_.try_emplace(FoldName(name));
  if (isNew && !name.empty()) at->second = LookUpSound(name, reference);
  return at->second;
}

ResourceFile ResourceFiles::LookUpSound(const std::string& name, std::string_view reference) {
  const DestinationOptions& options = destinations_[ResourceKind::Sound].Options();
  const std::string copyName = FileNameOf(StemOf(name)) + "." + FileNameOf(ExtensionOf(name));
  const Placement expected = destinations_[ResourceKind::Sound].PlaceByName(copyName);
  const std::string soundPath = Utf8Path(sceneFolderAsGiven_ / expected.File().lexically_relative(sceneFolder_));
  const auto existing = copier_.Folders().Existing(expected.Folder, copyName);
  // What lies there is the sound, unless it is known to be that of another source.
  const bool isKnown = !copier_.Folders().OwnerOf(expected.File()).empty() || copier_.List().Find(expected.File());
  if (existing && !isKnown && !options.DestOverwrite) {
    Placement kept = expected;
    kept.Name = copier_.Folders().AlignCase(expected.Folder, *existing, copyName);
    return {true, kept.Name == copyName ? expected.Url : destinations_[ResourceKind::Sound].PlaceByName(kept.Name).Url,
            kept.File()};
  }
  ResourceReference parsed = ParseReference(reference);
  ResourceReference packed = parsed;
  packed.Name = parsed.Name = StemOf(name);
  if (packed.Text.empty()) packed.Text = packed.Name;
  parsed.Text = parsed.Name;
  const FileIndex& index = IndexOf(ResourceKind::Sound);
  const std::string extension = FoldName(ExtensionOf(name));
  const std::array<std::string_view, 1> extensions{extension};
  const IndexedFile* file = FindReferenced(index, parsed, false, extensions);
  if (!file && extension == "wav")
    if (ResourceFile sound = LookUpPackedSound(packed, copyName); sound.Found) return sound;
  if (!file) {
    if (existing) return {true, expected.Url, expected.File()};
    NoteMissing(ResourceKind::Sound, soundPath);
    return {false, expected.Url, {}};
  }
  FoundFile found = Located(index, *file);
  const fs::path source = found.Path;
  if (!options.DestDoCopy) return {true, destinations_[ResourceKind::Sound].UrlInLibrary(found), source};
  const CopyJob job{found, copyName, parsed.Package(), {}, {}, {}};
  const CopyResult copied = copier_.Copy(destinations_[ResourceKind::Sound], job);
  return {!IsUnreadable(ResourceKind::Sound, copied, found, soundPath), copied.Url, source};
}

ResourceFile ResourceFiles::LookUpPackedSound(const ResourceReference& reference, const std::string& copyName) {
  const auto packed = packed_.FindSound(IndexOf(ResourceKind::Sound), reference);
  if (!packed) return {};
  if (!IsUsable(*packed, reference, ResourceKind::Sound)) return {};
  CopyJob job{packed->Found, copyName, {}, {}, {}, {}};
  job.Packed =
      std::make_shared<PackedContent>([file = packed->File] { return PackedContent::Bytes(file.begin(), file.end()); });
  const CopyResult copied = copier_.Copy(destinations_[ResourceKind::Sound], job);
  return {copied.Unreadable.empty(), copied.Url, copied.File};
}

const MeshFiles& ResourceFiles::FindMesh(std::string_view reference, bool listWhenMissing) {
  const ResourceReference parsed = ParseReference(reference);
  const auto [at, isNew] = meshes_.try_emplace(FoldName(parsed.Text));
  if (parsed.Name.empty()) return at->second;
  if (isNew) at->second = LookUpMesh(parsed);
  if (listWhenMissing && !at->second.Found()) NoteMissing(ResourceKind::Mesh, parsed.Text);
  return at->second;
}

/// The two files of a mesh. One that lies elsewhere is no other form of one that lies in the package.
MeshFiles ResourceFiles::LookUpMesh(const ResourceReference& reference) {
  const MeshMatch none, wrl = settings_.CheckInlineWRL ? MatchMesh(reference, "wrl") : none;
  const MeshMatch x3d = settings_.CheckInlineX3D ? MatchMesh(reference, "x3d") : none;
  const bool onlyWrl = wrl.InPackage && !x3d.InPackage, onlyX3d = x3d.InPackage && !wrl.InPackage;
  return {CopyMesh(reference, onlyX3d ? none : wrl), CopyMesh(reference, onlyWrl ? none : x3d)};
}

ResourceFiles::MeshMatch ResourceFiles::MatchMesh(const ResourceReference& reference, std::string_view extension) {
  const std::array<std::string_view, 1> extensions{extension};
  for (const FileIndex* index : {&IndexOf(ResourceKind::Mesh), &SceneFolderIndex()}) {
    const auto isScene = [&](const IndexedFile& file) { return IsSceneFile(index->PathOf(file)); };
    const IndexedFile* file = FindReferenced(*index, reference, Qualified(ResourceKind::Mesh), extensions, isScene);
    if (!file) continue;
    const bool isNamed = file->Key.starts_with(FoldName(reference.Package()) + ".");
    const bool inPackage = !reference.Folders.empty() && (isNamed || !FitOf(*index, *file, reference).OtherPackage);
    return {Located(*index, *file), inPackage};
  }
  return {};
}

ResourceFile ResourceFiles::CopyMesh(const ResourceReference& reference, const MeshMatch& match) {
  if (!match.File) return {};
  const CopyResult copied = CopyVerbatim(ResourceKind::Mesh, *match.File, reference.Package());
  const bool found = !IsUnreadable(ResourceKind::Mesh, copied, *match.File, reference.Text);
  return {found, copied.Url, match.File->Path};
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
      if (wanted && !IsSceneFile(index->PathOf(file))) names.push_back(file.Key);
    }
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return meshNames_.emplace(std::move(names));
}

ResourceFile ResourceFiles::FindAndCopyFile(std::string_view fileName, ResourceKind kind) {
  const std::string name = ToUtf8(LastPart(fileName));
  DestinationOptions options = destinations_[kind].Options();
  options.DestPathBehavior = 0;
  const Destination beside(options, sceneFolder_, {});
  const Placement placement = beside.PlaceByName(name);
  const FileIndex& index = IndexOf(kind);
  const std::string extension = FoldName(ExtensionOf(name));
  for (const IndexedFile& file : index.Find(StemOf(name))) {
    if (file.Extension != extension) continue;
    const FoundFile found = Located(index, file);
    if (!options.DestDoCopy) return {true, beside.UrlInLibrary(found), found.Path};
    const CopyResult copied = copier_.CopyTo(placement, {found, name, {}, {}, {}, {}}, options.DestOverwrite);
    return {!IsUnreadable(kind, copied, found, name), copied.Url, found.Path};
  }
  std::error_code error;
  if (const fs::path own = programData_ / PathOfUtf8(name); !programData_.empty() && fs::is_regular_file(own, error))
    return {true, copier_.CopyTo(placement, {{own, {}, name}, name, {}, {}, {}, {}}, options.DestOverwrite).Url, own};
  if (copier_.Folders().Existing(placement.Folder, name)) return {true, placement.Url, placement.File()};
  NoteMissing(kind, name);
  return {false, placement.Url, {}};
}

CopyResult ResourceFiles::CopyVerbatim(ResourceKind kind, const FoundFile& found, const std::string& package) {
  const Destination& destination = destinations_[kind];
  if (!destination.Options().DestDoCopy) return {destination.UrlInLibrary(found), found.Path, {}};
  return copier_.Copy(destination, {found, found.Name, package, {}, {}});
}

} // namespace quarvel
