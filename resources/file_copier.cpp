#include "resources/file_copier.h"

#include "base/file_name.h"
#include "base/level_text.h"
#include "base/output_file.h"
#include "base/text_coding.h"
#include "images/image_file.h"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace quarvel {

namespace fs = std::filesystem;

namespace {

/// A job that copies the file as it is.
CopyJob AsFound(CopyJob job) {
  job.Name = job.Found.Name;
  job.Variant.clear();
  job.Conversion.reset();
  return job;
}

std::string Numbered(const CopyJob& job, const std::string& ending) {
  const std::string package = job.Package.empty() ? Utf8Path(job.Found.Path.parent_path().filename()) : job.Package;
  return FileNameOf(package + "." + StemOf(job.Name)) + ending + "." + ExtensionOf(job.Name);
}

std::string VariantName(const CopyJob& job) {
  return StemOf(job.Name) + "_" + job.Variant + "." + ExtensionOf(job.Name);
}

/// Whether a copy of this job may bear that name.
bool IsNameOf(const CopyJob& job, const std::string& name) {
  if (name == job.Name || (!job.Variant.empty() && name == VariantName(job))) return true;
  return ExtensionOf(name) == ExtensionOf(job.Name) && name.starts_with(StemOf(Numbered(job, "")));
}

bool IsSource(const Placement& placement, const CopyJob& job) {
  return !job.Packed && FoldName(Utf8Path(placement.File())) == FoldName(Utf8Path(job.Found.Path));
}

FileBytes ReadSource(const CopyJob& job) {
  if (job.Packed) return {job.Packed->Get(), job.Packed->Get().empty() ? "it cannot be made" : ""};
  FileBytes read;
  std::error_code error;
  const std::uintmax_t size = fs::file_size(job.Found.Path, error);
  errno = 0;
  std::ifstream stream(job.Found.Path, std::ios::binary);
  if (error || !stream.is_open()) return {{}, error ? error.message() : std::generic_category().message(errno)};
  read.Bytes.resize(static_cast<std::size_t>(size));
  stream.read(reinterpret_cast<char*>(read.Bytes.data()), static_cast<std::streamsize>(size));
  if (!stream) read.Error = std::generic_category().message(errno != 0 ? errno : EIO);
  return read;
}

std::string HashOfBytes(const std::vector<std::uint8_t>& bytes) {
  return HashOf(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

/// A scene that this program wrote, to judge by its head.
bool IsScene(const fs::path& file) {
  const std::string extension = FoldName(ExtensionOf(Utf8Path(file.filename())));
  if (extension != "wrl" && extension != "x3dv" && extension != "x3d" && extension != "xml") return false;
  std::string head(256, '\0');
  std::ifstream stream(file, std::ios::binary);
  stream.read(head.data(), static_cast<std::streamsize>(head.size()));
  return head.find("# Converted by Quarvel") != head.npos || head.find("Converted with Quarvel") != head.npos;
}

std::string PathWithin(const FoundFile& found) { return Utf8Path(found.Folder / PathOfUtf8(found.Name)); }

} // namespace

/// The source of a job, of which the bytes are read when they are first needed.
struct FileCopier::Source {
  const CopyJob& Job;
  CopyOrigin Origin;
  FileBytes Read;

  const FileBytes& Bytes() {
    if (Read.Bytes.empty() && Read.Error.empty()) Read = ReadSource(Job);
    return Read;
  }
};

std::string FileCopier::HashOfSource(const CopyJob& job, FileBytes& bytes) {
  if (job.Packed && !job.Packed->Hash().empty()) return job.Packed->Hash();
  std::string& hash = hashes_[Utf8Path(job.Found.Path)];
  if (!hash.empty()) return hash;
  bytes = ReadSource(job);
  if (bytes.Error.empty()) hash = HashOfBytes(bytes.Bytes);
  return hash;
}

CopyResult FileCopier::Copy(const Destination& destination, const CopyJob& job) {
  Source source{job, {PathWithin(job.Found), job.Variant, {}}, {}};
  source.Origin.Hash = HashOfSource(job, source.Read);
  if (!source.Read.Error.empty()) return {destination.Place(job.Found, job.Name).Url, {}, source.Read.Error};
  Standing standing = Standing::Taken;
  const Placement placement = ChoosePlace(destination, source, destination.Options().DestOverwrite, standing);
  if (standing == Standing::Free && job.Conversion && !source.Bytes().Error.empty())
    return {placement.Url, {}, source.Read.Error};
  if (standing == Standing::Free && job.Conversion) {
    const ImageResult image = ReadImage(source.Bytes().Bytes, "." + ExtensionOf(job.Found.Name));
    if (!image) {
      report_.Add(FindingCode::ImageNotConverted, job.Found.Name, image.Error);
      folders_.Release(placement.File());
      return Copy(destination, AsFound(job));
    }
  }
  return Bring(placement, standing, source);
}

CopyResult FileCopier::CopyTo(const Placement& placement, const CopyJob& job, bool overwrite) {
  Source source{job, {PathWithin(job.Found), job.Variant, {}}, {}};
  source.Origin.Hash = HashOfSource(job, source.Read);
  if (!source.Read.Error.empty()) return {placement.Url, {}, source.Read.Error};
  const Standing standing = Judge(placement, source, overwrite);
  if (standing == Standing::Taken) {
    report_.Add(FindingCode::DifferentFileKept, placement.Name);
    return {placement.Url, placement.File(), {}};
  }
  return Bring(placement, standing, source);
}

CopyResult FileCopier::Bring(const Placement& placement, Standing standing, Source& source) {
  folders_.Claim(placement.File(), source.Origin.Key());
  if (standing == Standing::Free && !Write(placement, source)) {
    if (!source.Read.Error.empty()) return {placement.Url, {}, source.Read.Error};
    return {placement.Url, placement.File(), {}};
  }
  const bool isLibrarys =
      standing == Standing::Kept && library_.IsLibraryFile && library_.IsLibraryFile(placement.File());
  if (!IsSource(placement, source.Job) && !isLibrarys) list_.Note(placement.File(), source.Origin);
  return {placement.Url, placement.File(), {}};
}

/// A copy that is listed keeps its name. Else the plain name is tried, then those that tell it from others.
Placement FileCopier::ChoosePlace(const Destination& destination, Source& source, bool overwrite, Standing& standing) {
  const CopyJob& job = source.Job;
  for (const fs::path& copy : list_.CopiesOf(source.Origin.Key())) {
    const Placement placement = destination.Place(job.Found, Utf8Path(copy.filename()));
    if (placement.File() != copy || !IsNameOf(job, placement.Name)) continue;
    if ((standing = Judge(placement, source, overwrite)) != Standing::Taken) return placement;
  }
  const auto isPlace = [&](const Placement& placement) {
    return (standing = Judge(placement, source, overwrite)) != Standing::Taken;
  };
  const Placement plain = destination.Place(job.Found, job.Name);
  const bool isAnothers = library_.IsNameOfAnother && library_.IsNameOfAnother(plain.Folder, job);
  if (!isAnothers && isPlace(plain)) return plain;
  if (IsOther(plain, source)) {
    const Placement variant = destination.Place(job.Found, VariantName(job));
    if (isPlace(variant)) return variant;
  }
  const Placement qualified = destination.Place(job.Found, Numbered(job, ""));
  if (isPlace(qualified)) return qualified;
  int& number = nextNumbers_.try_emplace(FoldName(Utf8Path(qualified.File())), 2).first->second;
  for (;; ++number) {
    const Placement placement = destination.Place(job.Found, Numbered(job, "_" + std::to_string(number)));
    if (isPlace(placement)) return placement;
  }
}

/// Whether the place is had by another image of the same source.
bool FileCopier::IsOther(const Placement& placement, const Source& source) const {
  if (source.Job.Variant.empty()) return false;
  if (IsSource(placement, source.Job)) return true;
  const CopyOrigin* listed = list_.Find(placement.File());
  return folders_.OwnerOf(placement.File()).starts_with(source.Origin.Hash + "|") ||
         (listed && listed->Hash == source.Origin.Hash);
}

FileCopier::Standing FileCopier::Judge(const Placement& placement, Source& source, bool overwrite) {
  if (IsSource(placement, source.Job)) return source.Job.Conversion ? Standing::Taken : Standing::Kept;
  const std::string owner = folders_.OwnerOf(placement.File());
  if (!owner.empty()) return owner == source.Origin.Key() ? Standing::Kept : Standing::Taken;
  const auto existing = folders_.Existing(placement.Folder, placement.Name);
  if (!existing) return Standing::Free;
  const fs::path there = placement.Folder / PathOfUtf8(*existing);
  if (const CopyOrigin* listed = list_.Find(there)) {
    const bool changed = listed->Source == source.Origin.Source && listed->Variant == source.Origin.Variant;
    if (listed->Key() != source.Origin.Key()) return overwrite && changed ? Standing::Free : Standing::Taken;
    if (overwrite) return Standing::Free;
  } else if (source.Job.Conversion || !HoldsBytes(there, source.Bytes().Bytes)) {
    if (overwrite && MayReplace(there)) return Standing::Free;
    if (!library_.IsLibraryFile || !library_.IsLibraryFile(there))
      report_.Add(FindingCode::DifferentFileKept, placement.Name);
    return Standing::Taken;
  }
  folders_.AlignCase(placement.Folder, *existing, placement.Name);
  return Standing::Kept;
}

bool FileCopier::MayReplace(const fs::path& file) const {
  std::error_code error;
  if (fs::symlink_status(file, error).type() != fs::file_type::regular) return false;
  return !(library_.IsLibraryFile && library_.IsLibraryFile(file)) && !IsScene(file);
}

bool FileCopier::Write(const Placement& placement, Source& source) {
  const FileBytes& read = source.Bytes();
  if (!read.Error.empty()) return false;
  std::error_code error;
  fs::create_directories(placement.Folder, error);
  if (error) return Fail(placement, error.message()), false;
  std::vector<std::uint8_t> converted;
  if (const auto& conversion = source.Job.Conversion) {
    ImageResult image = ReadImage(read.Bytes, "." + ExtensionOf(source.Job.Found.Name));
    converted = EncodeImage(ToRgba(std::move(*image.Picture), conversion->Alpha), conversion->Type);
    if (converted.empty()) return Fail(placement, "the image cannot be written in this type"), false;
  }
  const std::string why = WriteWholeFile(placement.File(), std::span(converted.empty() ? read.Bytes : converted));
  if (!why.empty()) return Fail(placement, why), false;
  ++filesWritten_;
  folders_.Note(placement.Folder, placement.Name);
  return true;
}

void FileCopier::Fail(const Placement& placement, const std::string& reason) {
  errors_.push_back(Utf8Path(placement.File()) + " cannot be written: " + reason);
  report_.Add(FindingCode::NotWritten, placement.Name, reason);
}

void FileCopier::SaveList() {
  if (const std::string why = list_.Save(); !why.empty())
    errors_.push_back(std::string(CopyList::FileName) + " cannot be written: " + why);
}

} // namespace quarvel
