#include "resources/file_copier.h"

#include "base/file_name.h"
#include "base/level_text.h"
#include "base/output_file.h"
#include "base/text_coding.h"
#include "images/image_file.h"
#include "images/image_size.h"

namespace quarvel {

namespace fs = std::filesystem;

namespace {

std::string OwnerName(const CopyJob& job) {
  const std::string path = Utf8Path(job.Found.Path);
  return job.Variant.empty() ? path : path + "|" + job.Variant;
}

/// A job that copies the file as it is.
CopyJob AsFound(CopyJob job) {
  job.Name = job.Found.Name;
  job.Variant.clear();
  job.Conversion.reset();
  return job;
}

/// True when a file is what converting would write there: an earlier run did.
bool HoldsConversion(const fs::path& file, const CopyJob& job) {
  ImageResult image = ReadImageFile(job.Found.Path);
  if (!image) return false;
  const std::vector<std::uint8_t> bytes =
      EncodeImage(ToRgba(std::move(*image.Picture), job.Conversion->Alpha), job.Conversion->Type);
  return !bytes.empty() && HoldsBytes(file, bytes);
}

/// The name to try when a different file has the first choice, or the first few.
std::string NextName(const CopyJob& job, bool sameSource, int attempt) {
  const std::string stem = StemOf(job.Name);
  const std::string extension = "." + ExtensionOf(job.Name);
  if (sameSource && attempt == 1) return stem + "_" + job.Variant + extension;
  const std::string package = job.Package.empty() ? Utf8Path(job.Found.Path.parent_path().filename()) : job.Package;
  return FileNameOf(package + "." + stem) + (attempt > 1 ? "_" + std::to_string(attempt) : std::string()) + extension;
}

} // namespace

std::string FileCopier::Copy(const Destination& destination, const CopyJob& job) {
  const Placement placement = PlaceUnclaimed(destination, job);
  if (placement.File() == job.Found.Path) return placement.Url;
  const bool overwrite = destination.Options().DestOverwrite && !written_.contains(OwnerName(job));
  if (!job.Conversion) return CopyTo(placement, job, overwrite);
  if (const auto existing = folders_.Existing(placement.Folder, placement.Name); existing && !overwrite)
    return CopyTo(placement, job, overwrite);
  if (Write(placement, job) != Result::Unreadable) return placement.Url;
  folders_.Release(placement.File());
  return Copy(destination, AsFound(job));
}

Placement FileCopier::CopyPacked(const Destination& destination, const CopyJob& job) {
  Placement placement = PlaceUnclaimed(destination, job);
  CopyTo(placement, job, destination.Options().DestOverwrite && !written_.contains(OwnerName(job)));
  return placement;
}

std::string FileCopier::CopyTo(const Placement& placement, const CopyJob& job, bool overwrite) {
  if (placement.File() == job.Found.Path) return placement.Url;
  const auto existing = folders_.Existing(placement.Folder, placement.Name);
  if (!existing || overwrite) {
    Write(placement, job);
  } else {
    folders_.AlignCase(placement.Folder, *existing, placement.Name);
    NoteDifference(placement, job);
  }
  return placement.Url;
}

Placement FileCopier::PlaceUnclaimed(const Destination& destination, const CopyJob& job) {
  Placement placement = destination.Place(job.Found, job.Name);
  if (Take(placement, job)) return placement;
  const std::string other = folders_.OwnerOf(placement.File());
  const bool sameSource = !job.Variant.empty() && (other.empty() || other.starts_with(Utf8Path(job.Found.Path) + "|"));
  for (int attempt = 1;; ++attempt) {
    placement = destination.Place(job.Found, NextName(job, sameSource, attempt));
    if (Take(placement, job)) return placement;
  }
}

bool FileCopier::Take(const Placement& placement, const CopyJob& job) {
  const bool ontoItself = FoldName(Utf8Path(placement.File())) == FoldName(Utf8Path(job.Found.Path));
  if (ontoItself && job.Conversion) return false;
  if (folders_.Claim(placement.File(), OwnerName(job))) return true;
  if (job.Packed) return HoldsBytes(placement.File(), job.Packed->Get());
  return job.Conversion ? HoldsConversion(placement.File(), job) : SameContent(job.Found.Path, placement.File());
}

/// A file of an earlier run is usually the same; one that plainly is not should not pass unnoticed.
void FileCopier::NoteDifference(const Placement& placement, const CopyJob& job) {
  bool differs = false;
  if (job.Packed && !job.Packed->Size()) {
    differs = !HoldsBytes(placement.File(), job.Packed->Get());
  } else if (job.Conversion || job.Packed) {
    const auto there = ReadImageSize(placement.File());
    const auto wanted = job.Packed ? job.Packed->Size() : ReadImageSize(job.Found.Path);
    differs = there && wanted && *there != *wanted;
  } else {
    std::error_code error;
    const auto there = fs::file_size(placement.File(), error);
    const auto wanted = error ? there : fs::file_size(job.Found.Path, error);
    differs = !error && there != wanted;
  }
  if (differs) report_.Add(FindingCode::DifferentFileKept, placement.Name);
}

FileCopier::Result FileCopier::Write(const Placement& placement, const CopyJob& job) {
  std::error_code error;
  if (fs::equivalent(placement.File(), job.Found.Path, error)) return Result::Written;
  error.clear();
  fs::create_directories(placement.Folder, error);
  if (error) return Fail(placement, error.message());
  const Result result = job.Packed       ? WritePacked(placement, job)
                        : job.Conversion ? WriteConverted(placement, job)
                                         : WriteVerbatim(placement, job);
  if (result != Result::Written) return result;
  ++filesWritten_;
  written_.insert(OwnerName(job));
  folders_.Note(placement.Folder, placement.Name);
  return result;
}

FileCopier::Result FileCopier::WriteConverted(const Placement& placement, const CopyJob& job) {
  ImageResult image = ReadImageFile(job.Found.Path);
  if (!image) {
    report_.Add(FindingCode::ImageNotConverted, job.Found.Name, image.Error);
    return Result::Unreadable;
  }
  const Image rgba = ToRgba(std::move(*image.Picture), job.Conversion->Alpha);
  if (!WriteImageFile(rgba, job.Conversion->Type, placement.File())) return Fail(placement, "writing failed");
  return Result::Written;
}

FileCopier::Result FileCopier::WritePacked(const Placement& placement, const CopyJob& job) {
  const PackedContent::Bytes& bytes = job.Packed->Get();
  if (bytes.empty()) return Fail(placement, "the image could not be encoded");
  const std::string why = WriteWholeFile(placement.File(), std::span(bytes));
  return why.empty() ? Result::Written : Fail(placement, why);
}

FileCopier::Result FileCopier::WriteVerbatim(const Placement& placement, const CopyJob& job) {
  std::error_code error;
  const bool isNew = !fs::exists(placement.File(), error);
  error.clear();
  fs::copy_file(job.Found.Path, placement.File(), fs::copy_options::overwrite_existing, error);
  std::error_code ignored;
  if (error) {
    if (isNew) fs::remove(placement.File(), ignored);
    return Fail(placement, error.message());
  }
  // Libraries on read-only media yield copies that a later run could not replace.
  fs::permissions(placement.File(), fs::perms::owner_write, fs::perm_options::add, ignored);
  return Result::Written;
}

FileCopier::Result FileCopier::Fail(const Placement& placement, const std::string& reason) {
  errors_.push_back(Utf8Path(placement.File()) + " could not be written: " + reason);
  report_.Add(FindingCode::NotWritten, placement.Name, reason);
  return Result::Failed;
}

} // namespace quarvel
