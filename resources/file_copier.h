#pragma once

#include "base/report.h"
#include "images/image.h"
#include "images/image_size.h"
#include "resources/copy_list.h"
#include "resources/destination.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
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

  /// `make` yields no bytes when it fails. `imageSize` is that of an image. `hash` tells the content without making it;
  /// empty for the hash of the bytes.
  explicit PackedContent(std::function<Bytes()> make, std::optional<ImageSize> imageSize = {}, std::string hash = {})
      : make_(std::move(make)), imageSize_(imageSize), hash_(std::move(hash)) {}

  const Bytes& Get() {
    if (!bytes_) bytes_ = make_();
    return *bytes_;
  }
  const std::optional<ImageSize>& Size() const { return imageSize_; }
  const std::string& Hash() const { return hash_; }

 private:
  std::function<Bytes()> make_;
  std::optional<ImageSize> imageSize_;
  std::string hash_;
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

/// The bytes of a source, or why there are none: the reason as the system words it.
struct FileBytes {
  std::vector<std::uint8_t> Bytes;
  std::string Error;
};

/// What became of a job.
struct CopyResult {
  std::string Url;
  std::filesystem::path File;
  std::string Unreadable; ///< why the source cannot be read; empty when it can
};

/// What a copier asks about the user's libraries.
struct LibraryQueries {
  /// Whether a file is one of a library's own.
  std::function<bool(const std::filesystem::path& file)> IsLibraryFile;
  /// Whether a library has another file in that folder that a copy of this name is to be kept for.
  std::function<bool(const std::filesystem::path& folder, const CopyJob& job)> IsNameOfAnother;
};

/// Copies and converts files. A copy belongs to the bytes of its source: a file that is there with other bytes is never
/// taken for it, and only replaced where the settings say so and nobody else has a right to it. Within a batch the
/// claims tell who has a file, across runs the list of copies.
class FileCopier {
 public:
  FileCopier(OutputFolders& folders, const std::filesystem::path& sceneFolder, LibraryQueries library, Report& report)
      : folders_(folders), list_(sceneFolder), library_(std::move(library)), report_(report) {}

  OutputFolders& Folders() { return folders_; }
  const CopyList& List() const { return list_; }

  /// Brings a file to its destination, unless its copy is there already; when another file has the name, under one of
  /// its own. An image of which the pixels cannot be read is copied as it is.
  CopyResult Copy(const Destination& destination, const CopyJob& job);
  /// The same for a place that is already decided: what is there with other bytes stays and is used.
  CopyResult CopyTo(const Placement& placement, const CopyJob& job, bool overwrite);

  /// Saves the list of copies; a failure is among the errors.
  void SaveList();

  /// Files that could not be written, one sentence each without a full stop.
  const std::vector<std::string>& Errors() const { return errors_; }
  int FilesWritten() const { return filesWritten_; }

 private:
  /// How a place stands to a job.
  enum class Standing {
    Free, ///< the copy is to be written there
    Kept, ///< it is there
    Taken ///< by something else
  };
  struct Source;

  Placement ChoosePlace(const Destination& destination, Source& source, bool overwrite, Standing& standing);
  Standing Judge(const Placement& placement, Source& source, bool overwrite);
  bool MayReplace(const std::filesystem::path& file) const;
  bool IsOther(const Placement& placement, const Source& source) const;
  CopyResult Bring(const Placement& placement, Standing standing, Source& source);
  bool Write(const Placement& placement, Source& source);
  void Fail(const Placement& placement, const std::string& reason);
  std::string HashOfSource(const CopyJob& job, FileBytes& bytes);

  OutputFolders& folders_;
  CopyList list_;
  LibraryQueries library_;
  Report& report_;
  std::map<std::string, std::string> hashes_; ///< by path
  std::map<std::string, int> nextNumbers_;    ///< by the name in front of the number
  std::vector<std::string> errors_;
  int filesWritten_ = 0;
};

} // namespace quarvel
