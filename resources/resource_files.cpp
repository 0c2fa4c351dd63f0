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

/// The last part of a path typed with either separator.
std::string_view LastPart(std::string_view path) {
  const std::size_t separator = path.find_last_of("/\\");
  return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

constexpr const char* SceneOwner = "the scene";

std::string VariantOf(TextureUse use) { return use == TextureUse::Masked ? "masked" : "opaque"; }

/// The folders in which resources of a kind are searched, as typed.
const std::string& SearchPath(const ConversionSettings& settings, ResourceKind kind) {
  return settings.*InfoOf(kind).SearchPath;
}

Destination DestinationOf(const ConversionSettings& settings, ResourceKind kind, const fs::path& sceneFolder) {
  return {settings.*InfoOf(kind).Destination, sceneFolder, InfoOf(kind).Many};
}

} // namespace

bool ResourceFiles::FoldedLess::operator()(const std::string& a, const std::string& b) const {
  return FoldName(a) < FoldName(b);
}

ResourceFiles::ResourceFiles(const ConversionSettings& settings, const fs::path& inputFile, const fs::path& textScene,
                             Report& report, const fs::path& programData, RunInterface* user)
    : settings_(settings), inputFolder_(AbsolutePath(inputFile).parent_path()), programData_(programData),
      sceneFolder_(AbsolutePath(textScene).parent_path()), sceneFolderAsGiven_(textScene.parent_path()),
      report_(report), user_(user), destinations_(DestinationOf(settings, ResourceKind::Texture, sceneFolder_),
                                                  DestinationOf(settings, ResourceKind::Sound, sceneFolder_),
                                                  DestinationOf(settings, ResourceKind::Mesh, sceneFolder_)),
      copier_(report), packed_(inputFile, report) {
  ClaimSceneFiles(textScene);
}

/// No mesh may take the place of the scene that is being written.
void ResourceFiles::ClaimSceneFiles(const fs::path& textScene) {
  std::string stem = Utf8Path(textScene.stem());
  std::vector<std::string> stems{stem};
  if (stem.size() > 1 && stem.back() == '-') stems.push_back(stem.substr(0, stem.size() - 1));
  for (const std::string& name : stems)
    for (const char* extension : {".wrl", ".x3d", ".x3dv", ".xml"})
      copier_.Folders().Claim(sceneFolder_ / PathOfUtf8(name + extension), SceneOwner);
}

bool ResourceFiles::IsSceneFile(const fs::path& file) const { return copier_.Folders().OwnerOf(file) == SceneOwner; }

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
    lists[kind].assign(missing_[kind].begin(), missing_[kind].end());
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
      FindReferenced(index, reference, Qualified(ResourceKind::Texture), ImageExtensions(WantedType(use)));
  if (!file) texture = LookUpPackedTexture(reference, use);
  if (texture.Found) return texture;
  if (!file) {
    missing_[ResourceKind::Texture].insert(reference.Text);
    texture.Url =
        destinations_[ResourceKind::Texture].PlaceByName(FileNameOf(reference.Name) + "." + WantedExtension(use)).Url;
    return texture;
  }
  const FoundFile found = EarlierVariant(Located(index, *file), use);
  texture.Found = true;
  texture.Source = found.Path;
  NoteTextureSize(texture);
  texture.Url = CopyTexture(found, reference, use);
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
  job.Packed = std::make_shared<PackedContent>(
      [picture = std::move(packed.Picture), alpha, wanted] { return EncodeImage(ToRgba(picture, alpha), wanted); },
      size);
  const Placement placement = copier_.CopyPacked(destinations_[ResourceKind::Texture], job);
  texture.Url = placement.Url;
  texture.Source = placement.File();
  return texture;
}

/// Where the library is the scene's own folder, an earlier run's conversions are in it. One that had to be told apart
/// from another image of the same file ("grate.png", "grate_masked.png") is found again here.
FoundFile ResourceFiles::EarlierVariant(const FoundFile& found, TextureUse use) {
  const fs::path folder = found.Path.parent_path();
  if (destinations_[ResourceKind::Texture].Place(found, found.Name).Folder != folder) return found;
  const std::string name = StemOf(found.Name) + "_" + VariantOf(use) + "." + WantedExtension(use);
  const auto existing = copier_.Folders().Existing(folder, name);
  return existing ? FoundFile{folder / PathOfUtf8(*existing), found.Folder, *existing} : found;
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

std::string ResourceFiles::CopyTexture(const FoundFile& found, const ResourceReference& reference, TextureUse use) {
  if (!destinations_[ResourceKind::Texture].Options().DestDoCopy)
    return destinations_[ResourceKind::Texture].UrlInLibrary(found);
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
      FindReferenced(index, parsed, Qualified(ResourceKind::Texture), ImageExtensions(ImageType::Bmp));
  if (file) return index.PathOf(*file);
  missing_[ResourceKind::Texture].insert(parsed.Text);
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
  if (const auto existing = copier_.Folders().Existing(expected.Folder, copyName); existing && !options.DestOverwrite) {
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
    missing_[ResourceKind::Sound].insert(
        Utf8Path(sceneFolderAsGiven_ / expected.File().lexically_relative(sceneFolder_)));
    return {false, expected.Url, {}};
  }
  FoundFile found = Located(index, *file);
  const fs::path source = found.Path;
  if (!options.DestDoCopy) return {true, destinations_[ResourceKind::Sound].UrlInLibrary(found), source};
  const CopyJob job{found, copyName, {}, {}, {}};
  return {true, copier_.CopyTo(destinations_[ResourceKind::Sound].Place(found, copyName), job, options.DestOverwrite),
          source};
}

ResourceFile ResourceFiles::LookUpPackedSound(const ResourceReference& reference, const std::string& copyName) {
  const auto packed = packed_.FindSound(IndexOf(ResourceKind::Sound), reference);
  if (!packed) return {};
  if (!IsUsable(*packed, reference, ResourceKind::Sound)) return {};
  CopyJob job{packed->Found, copyName, {}, {}, {}, {}};
  job.Packed =
      std::make_shared<PackedContent>([file = packed->File] { return PackedContent::Bytes(file.begin(), file.end()); });
  const Destination& destination = destinations_[ResourceKind::Sound];
  const Placement placement = destination.Place(packed->Found, copyName);
  return {true, copier_.CopyTo(placement, job, destination.Options().DestOverwrite), placement.File()};
}

const MeshFiles& ResourceFiles::FindMesh(std::string_view reference, bool listWhenMissing) {
  const ResourceReference parsed = ParseReference(reference);
  const auto [at, isNew] = meshes_.try_emplace(FoldName(parsed.Text));
  if (parsed.Name.empty()) return at->second;
  if (isNew) {
    if (settings_.CheckInlineWRL) at->second.Wrl = LookUpMesh(parsed, "wrl");
    if (settings_.CheckInlineX3D) at->second.X3d = LookUpMesh(parsed, "x3d");
  }
  if (listWhenMissing && !at->second.Found()) missing_[ResourceKind::Mesh].insert(parsed.Text);
  return at->second;
}

ResourceFile ResourceFiles::LookUpMesh(const ResourceReference& reference, std::string_view extension) {
  const std::array<std::string_view, 1> extensions{extension};
  for (const FileIndex* index : {&IndexOf(ResourceKind::Mesh), &SceneFolderIndex()}) {
    const auto isScene = [&](const IndexedFile& file) { return IsSceneFile(index->PathOf(file)); };
    const IndexedFile* file = FindReferenced(*index, reference, Qualified(ResourceKind::Mesh), extensions, isScene);
    if (!file) continue;
    const FoundFile found = Located(*index, *file);
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
    return {true, copier_.CopyTo(placement, {found, name, {}, {}, {}}, options.DestOverwrite), found.Path};
  }
  std::error_code error;
  if (const fs::path own = programData_ / PathOfUtf8(name); !programData_.empty() && fs::is_regular_file(own, error))
    return {true, copier_.CopyTo(placement, {{own, {}, name}, name, {}, {}, {}}, options.DestOverwrite), own};
  if (copier_.Folders().Existing(placement.Folder, name)) return {true, placement.Url, placement.File()};
  missing_[kind].insert(name);
  return {false, placement.Url, {}};
}

std::string ResourceFiles::CopyVerbatim(ResourceKind kind, const FoundFile& found, const std::string& package) {
  const Destination& destination = destinations_[kind];
  if (!destination.Options().DestDoCopy) return destination.UrlInLibrary(found);
  return copier_.Copy(destination, {found, found.Name, package, {}, {}});
}

} // namespace quarvel
