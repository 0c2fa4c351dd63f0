#include "core/package_extraction.h"

#include "base/file_name.h"
#include "base/level_text.h"
#include "base/output_file.h"
#include "base/text_coding.h"
#include "images/image_file.h"
#include "packages/sound_object.h"
#include "packages/texture_object.h"
#include "resources/package_library.h"

#include <algorithm>
#include <fstream>
#include <set>

namespace quarvel {

namespace fs = std::filesystem;

namespace {

/// A texture may show another one, so many small objects could name one large picture again and again. No package
/// comes near this many pixels for each of its bytes.
constexpr std::uint64_t mostPixelsPerByte = 64;
constexpr std::uint64_t pixelsOfAnyPackage = 64ULL << 20;

class Extraction {
 public:
  Extraction(const Package& package, fs::path folder, const std::vector<std::string>& names, ImportFinder imports,
             ExtractionResult& result)
      : package_(package), folder_(std::move(folder)), imports_(std::move(imports)), result_(result),
        pixelsLeft_(pixelsOfAnyPackage + package.File.size() * mostPixelsPerByte) {
    for (const std::string& name : names)
      wanted_.insert({FoldName(name), name});
  }

  void Run() {
    for (std::size_t i = 0; i < package_.Exports.size(); ++i) {
      const std::string_view className = ClassName(package_, RefOfExport(i));
      const bool isTexture = IsTextureClass(className);
      if ((!isTexture && !IsSoundClass(className)) || !IsWanted(i)) continue;
      isTexture ? WriteTexture(i) : WriteSound(i);
    }
    for (const auto& [folded, name] : wanted_)
      if (!found_.contains(folded)) result_.Errors.push_back(package_.Name + " holds no texture or sound " + name);
  }

 private:
  bool IsWanted(std::size_t object) {
    if (wanted_.empty()) return true;
    bool wanted = false;
    for (const std::string& name : {FoldName(ObjectName(package_, RefOfExport(object))),
                                    FoldName(FullName(package_, RefOfExport(object), {})), FoldName(NameOf(object))})
      if (wanted_.contains(name)) {
        found_.insert(name);
        wanted = true;
      }
    return wanted;
  }

  std::string NameOf(std::size_t object) const { return FullName(package_, RefOfExport(object), package_.Name); }

  /// The object's own name; where another one has taken it, the name with its groups.
  fs::path FileOf(std::size_t object, const std::string& extension) {
    std::string name = FileNameOf(ObjectName(package_, RefOfExport(object)));
    if (taken_.contains(FoldName(name + extension))) name = FileNameOf(FullName(package_, RefOfExport(object), {}));
    const std::string first = name;
    for (int number = 2; !taken_.insert(FoldName(name + extension)).second; ++number)
      name = first + "_" + std::to_string(number);
    return folder_ / PathOfUtf8(name + extension);
  }

  void WriteTexture(std::size_t object) {
    TexturePicture picture = ReadTexturePicture({&package_, object}, imports_);
    if (!picture) return Fail(object, "cannot be read: " + picture.Error);
    const auto pixels =
        static_cast<std::uint64_t>(picture.Picture->Width) * static_cast<std::uint64_t>(picture.Picture->Height);
    if (pixels > pixelsLeft_) return Fail(object, "was left out: the package's pictures are out of proportion to it");
    pixelsLeft_ -= pixels;
    if (!picture.MissingPalette.empty())
      result_.Notes.push_back(NameOf(object) + " " + TextOf(FindingCode::PackedInGreys, {picture.MissingPalette}));
    if (picture.Kind == PictureKind::Still)
      result_.Notes.push_back(NameOf(object) + " has no pixels: a still was made from its palette");
    const Image image = ToRgba(std::move(*picture.Picture), picture.Masked ? Transparency::Masked : Transparency::Kept);
    const fs::path file = FileOf(object, ".png");
    if (!WriteImageFile(image, ImageType::Png, file)) return Fail(object, "could not be written to " + Utf8Path(file));
    result_.FilesWritten.push_back(file);
  }

  void WriteSound(std::size_t object) {
    const auto sound = ReadSound(package_, package_.Exports[object]);
    if (!sound) return Fail(object, "cannot be read: it is damaged");
    if (!IsWave(sound->File)) return Fail(object, "is no WAVE sound");
    const fs::path file = FileOf(object, ".wav");
    if (const std::string why = WriteWholeFile(file, std::span<const std::uint8_t>(sound->File)); !why.empty())
      return Fail(object, "could not be written to " + Utf8Path(file) + ": " + why);
    result_.FilesWritten.push_back(file);
  }

  void Fail(std::size_t object, const std::string& reason) { result_.Errors.push_back(NameOf(object) + " " + reason); }

  const Package& package_;
  fs::path folder_;
  ImportFinder imports_;
  ExtractionResult& result_;
  std::uint64_t pixelsLeft_;
  std::map<std::string, std::string> wanted_; ///< as typed, by folded name
  std::set<std::string> found_;
  std::set<std::string> taken_; ///< file names, folded
};

} // namespace

ExtractionResult ExtractPackage(const fs::path& file, const fs::path& folder, const std::vector<std::string>& names) {
  ExtractionResult result;
  const PackageResult package = OpenPackage(file);
  std::error_code error;
  if (package) fs::create_directories(folder, error);
  if (!package) result.Errors.push_back(Utf8Path(file) + " " + package.Error);
  if (error) result.Errors.push_back(Utf8Path(folder) + " cannot be made: " + error.message());
  if (!result.Errors.empty()) return result;
  PackageLibrary others;
  Report passedOver; // packages that nobody asked for
  others.AddFolders(FileIndex({AbsolutePath(file).parent_path()}, Walk::FolderOnly), passedOver);
  others.Sort();
  Extraction(*package.Value, folder, names, others.Imports(), result).Run();
  return result;
}

} // namespace quarvel
