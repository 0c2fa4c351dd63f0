#include "core/page_run.h"

#include "base/ascii_text.h"
#include "base/file_name.h"
#include "core/run_failure.h"
#include "images/image_type.h"
#include "page/page_maker.h"
#include "page/page_parts.h"
#include "page/string_field.h"
#include "resources/file_index.h"
#include "resources/program_data.h"

#include <cstdlib>
#include <memory>
#include <optional>

namespace quarvel {

namespace fs = std::filesystem;

namespace {

fs::path MakeTemporaryFolder() {
  std::error_code error;
  std::string pattern = (fs::temp_directory_path(error) / "quarvel-page-XXXXXX").string();
  if (error || !mkdtemp(pattern.data())) throw RunFailed{"no temporary folder can be made for the page"};
  return pattern;
}

ViewerFiles ReadViewerFor(const ConversionSettings& settings) {
  const fs::path script =
      settings.TextViewer.empty() ? FindViewer(FindProgramData(ProgramPath())) : PathOfUserText(settings.TextViewer);
  if (script.empty())
    throw RunFailed{"a page needs the viewer X_ITE: fetch it with scripts/fetch_viewer.sh, or name its x_ite.min.js "
                    "with --viewer"};
  ViewerFiles viewer = ReadViewer(script);
  if (!viewer.Error.empty()) throw RunFailed{viewer.Error};
  return viewer;
}

DestinationOptions PageDestination(const DestinationOptions& options) {
  DestinationOptions inside;
  inside.UEd3Behavior = options.UEd3Behavior;
  return inside;
}

/// A library of files, read when it is first asked.
class FolderLibrary {
 public:
  explicit FolderLibrary(std::string searchPath) : searchPath_(std::move(searchPath)) {}

  std::optional<fs::path> Find(const std::string& name) {
    if (searchPath_.empty()) return std::nullopt;
    if (!index_) index_.emplace(SplitSearchPath(searchPath_).Existing);
    for (const IndexedFile& file : index_->Find(StemOf(name)))
      if (SameText(file.Name, name)) return index_->PathOf(file);
    return std::nullopt;
  }

 private:
  std::string searchPath_;
  std::optional<FileIndex> index_;
};

/// Images and sounds of mesh files stand beside the mesh, or where those of the level are.
FindPageFile FindWithLibraries(const ConversionSettings& settings) {
  const auto textures = std::make_shared<FolderLibrary>(settings.TextSearchPathTxt);
  const auto sounds = std::make_shared<FolderLibrary>(settings.TextSearchPathSnd);
  return [=](std::string_view url, const fs::path& folder) -> std::optional<fs::path> {
    if (auto found = FindBelow(url, folder)) return found;
    const std::string name = Utf8Path(PathOfUtf8(DecodeUrl(url)).filename());
    if (IsSoundName(name)) return sounds->Find(name);
    return ImageTypeOfExtension(ExtensionOf(name)) == ImageType::Unknown ? std::nullopt : textures->Find(name);
  };
}

} // namespace

fs::path PageFileName(const fs::path& outFile) { return outFile.parent_path() / (outFile.stem().string() + ".html"); }

ConversionSettings PageSettings(const ConversionSettings& settings) {
  ConversionSettings page = settings;
  page.CheckConforming = true;
  page.CheckOutputFlyThru = true;
  page.CheckPageOnly = page.CheckMakePage = page.CheckXMLtoo = page.CheckMakePreloadScript = false;
  page.OptionVRML97 = true;
  page.OptionFlux = page.OptionContact = false;
  page.CheckAppendDash = false;
  page.CheckEnclose = false;
  page.CheckRescanFile = settings.CheckPageOnly && settings.CheckRescanFile;
  page.TextureDest = PageDestination(settings.TextureDest);
  page.SoundDest = PageDestination(settings.SoundDest);
  page.MeshDest = PageDestination(settings.MeshDest);
  page.ListBMtypeOut = page.ListMaskedBMtypeOut = page.ListTerrainBMtypeOut = "png";
  return page;
}

PageRun::PageRun(const fs::path& outFile, const ConversionSettings& settings, const fs::path& typed)
    : page_(PageFileName(outFile)), atLink_(page_ == typed ? AtLink::Follow : AtLink::Replace),
      viewer_(ReadViewerFor(settings)) {
  std::error_code error;
  if (!page_.parent_path().empty()) fs::create_directories(page_.parent_path(), error);
  if (error) throw RunFailed{page_.string() + " cannot be written: its folder cannot be made: " + error.message()};
  if (const std::string why = WhyNotWritable(page_, atLink_); !why.empty())
    throw RunFailed{page_.string() + " cannot be written: " + why};
  folder_ = MakeTemporaryFolder();
}

PageRun::~PageRun() {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

fs::path PageRun::Write(const ConversionSettings& settings, const fs::path& sky, const std::string& levelName,
                        Report& findings) {
  const PageInput input{fs::path(SceneFile()).replace_extension(".x3d"), sky, levelName, settings.TextScale,
                        FindWithLibraries(settings)};
  const MadePage made = MakePage(input, viewer_, findings);
  if (!made.Error.empty()) throw RunFailed{page_.string() + " is not written: " + made.Error};
  if (const std::string why = WriteWholeFile(page_, made.Html, atLink_); !why.empty())
    throw RunFailed{page_.string() + " cannot be written: " + why};
  return page_;
}

} // namespace quarvel
