#include "resources/packed_files.h"

#include "base/level_text.h"
#include "base/text_coding.h"
#include "packages/sound_object.h"

namespace quarvel {

namespace fs = std::filesystem;

namespace {

std::string Joined(const std::vector<std::string>& names) {
  std::string joined;
  for (const std::string& name : names)
    joined += (joined.empty() ? "" : ", ") + name;
  return joined;
}

/// What the scene shows of a texture that the engine draws anew for every frame, or in several pictures.
std::optional<FindingCode> WhatIsShown(const TexturePicture& picture) {
  if (picture.Kind == PictureKind::Still) return FindingCode::PackedStill;
  if (picture.Kind == PictureKind::Source) return FindingCode::PackedSource;
  if (picture.IsAnimated) return FindingCode::PackedFirstFrame;
  return std::nullopt;
}

} // namespace

PackedFiles::PackedFiles(const fs::path& inputFile, Report& report) : report_(report) {
  std::error_code error;
  fs::path own = inputFile;
  if (!IsPackageExtension(FoldName(ExtensionOf(Utf8Path(inputFile.filename()))))) own.replace_extension(".unr");
  if (fs::is_regular_file(own, error)) ownPackage_ = own;
}

PackageLibrary& PackedFiles::LibraryOf(const FileIndex& files) {
  std::unique_ptr<PackageLibrary>& library = libraries_[&files];
  if (library) return *library;
  library = std::make_unique<PackageLibrary>();
  library->AddFolders(files, report_);
  if (!ownPackage_.empty()) library->AddOwn(ownPackage_, report_);
  library->Sort();
  return *library;
}

PackageObject PackedFiles::Find(const PackageLibrary& library, const ResourceReference& reference,
                                PackageLibrary::Kind kind, PackedObject& found) {
  const PackageLibrary::Match match = library.Find(reference, kind);
  if (!match) return {};
  const fs::path file = library.PathOf(*match.Object.In);
  const ObjectRef object = RefOfExport(match.Object.Export);
  found.Package = Utf8Path(file.filename());
  found.Found.Path = file / PathOfUtf8(ToUtf8(FullName(*match.Object.In, object, {})));
  found.Found.Folder = library.FolderOf(*match.Object.In);
  found.Found.Name = FileNameOf(ObjectName(*match.Object.In, object));
  if (!match.Others.empty())
    report_.AddDetail(FindingCode::PackedInSeveral, reference.Text, found.Package, Joined(match.Others));
  return match.Object;
}

std::optional<PackedTexture> PackedFiles::FindTexture(const FileIndex& files, const ResourceReference& reference) {
  const PackageLibrary& library = LibraryOf(files);
  PackedTexture texture;
  const PackageObject object = Find(library, reference, PackageLibrary::Kind::Texture, texture);
  if (!object) return std::nullopt;
  TexturePicture picture = ReadTexturePicture(object, library.Imports());
  if (!picture) {
    texture.Error = picture.Error;
    return texture;
  }
  if (const auto shown = WhatIsShown(picture)) report_.Add(*shown, reference.Text);
  if (!picture.MissingPalette.empty()) report_.Add(FindingCode::PackedInGreys, reference.Text, picture.MissingPalette);
  texture.Picture = std::move(*picture.Picture);
  texture.Masked = picture.Masked;
  return texture;
}

std::optional<PackedSound> PackedFiles::FindSound(const FileIndex& files, const ResourceReference& reference) {
  PackedSound sound;
  const PackageObject object = Find(LibraryOf(files), reference, PackageLibrary::Kind::Sound, sound);
  if (!object) return std::nullopt;
  const auto read = ReadSound(*object.In, object.In->Exports[object.Export]);
  if (read) sound.File = read->File;
  if (!read)
    sound.Error = "it is damaged";
  else if (!IsWave(read->File))
    sound.Error = "it is no WAVE sound";
  return sound;
}

} // namespace quarvel
