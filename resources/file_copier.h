#pragma once

#include "base/report.h"
#include "images/image.h"
#include "images/image_size.h"
#include "resources/destination.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace quarvel {

/// How an image changes on its way to the destination.
struct ImageConversion {
  ImageType Type = ImageType::Png;
  Transparency Alpha = Transparency::Kept;
};

/// A file that lies in no folder, but in a package. Its bytes are made when they are first needed.
class PackedContent {
 public:
  using Bytes = std::vector<std::uint8_t>;

  /// `make` yields no bytes when it fails. `imageSize` is that of an image.
  explicit PackedContent(std::function<Bytes()> make, std::optional<ImageSize> imageSize = {})
      : make_(std::move(make)), imageSize_(imageSize) {}

  const Bytes& Get() {
    if (!bytes_) bytes_ = make_();
    return *bytes_;
  }
  const std::optional<ImageSize>& Size() const { return imageSize_; }

 private:
  std::function<Bytes()> make_;
  std::optional<ImageSize> imageSize_;
  std::optional<Bytes> bytes_;
};

/// One file to bring to its destination.
struct CopyJob {
  FoundFile Found;
  std::string Name;    ///< the name that it gets there, in UTF-8
  std::string Package; ///< put in front of the name when a different file has it; may be empty
  std::string Variant; ///< tells apart the images that one file can become ("masked"); may be empty
  std::optional<ImageConversion> Conversion;
  std::shared_ptr<PackedContent> Packed = {}; ///< of a file in a package, of which `Found.Path` is a mere name
};

/// Copies and converts files, and keeps different files from taking each other's place.
class FileCopier {
 public:
  explicit FileCopier(Report& report) : report_(report) {}

  OutputFolders& Folders() { return folders_; }
  const OutputFolders& Folders() const { return folders_; }

  /// Brings a file to its destination, unless one of that name is there already and may stay. An image that cannot be
  /// read is copied as it is. Returns the URL.
  std::string Copy(const Destination& destination, const CopyJob& job);
  /// The same for a file in a package. Returns where it went.
  Placement CopyPacked(const Destination& destination, const CopyJob& job);
  /// The same for a place that is already decided.
  std::string CopyTo(const Placement& placement, const CopyJob& job, bool overwrite);

  const std::vector<std::string>& Errors() const { return errors_; }
  int FilesWritten() const { return filesWritten_; }

 private:
  enum class Result { Written, Unreadable, Failed };

  Placement PlaceUnclaimed(const Destination& destination, const CopyJob& job);
  bool Take(const Placement& placement, const CopyJob& job);
  void NoteDifference(const Placement& placement, const CopyJob& job);
  Result Write(const Placement& placement, const CopyJob& job);
  Result WriteConverted(const Placement& placement, const CopyJob& job);
  Result WritePacked(const Placement& placement, const CopyJob& job);
  Result WriteVerbatim(const Placement& placement, const CopyJob& job);
  Result Fail(const Placement& placement, const std::string& reason);

  Report& report_;
  OutputFolders folders_;
  std::set<std::string> written_; ///< owners whose file this run has written already
  std::vector<std::string> errors_;
  int filesWritten_ = 0;
};

} // namespace quarvel
