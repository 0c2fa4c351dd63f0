#include "core/conversion_run.h"

#include "actors/baked_light.h"
#include "base/file_identity.h"
#include "base/file_name.h"
#include "core/level_scenes.h"
#include "core/level_source.h"
#include "core/page_run.h"
#include "core/run_failure.h"
#include "core/run_summary.h"
#include "math/number_text.h"
#include "resources/missing_lists.h"
#include "resources/preload_script.h"
#include "resources/program_data.h"
#include "settings/settings_file.h"
#include "t3d/level_check.h"

#include <cerrno>
#include <chrono>
#include <fstream>
#include <new>

namespace quarvel {

namespace {

namespace fs = std::filesystem;

/// A page's own run writes its scene into a folder that nobody sees.
enum class RunPurpose { Files, Page };

std::string Display(const fs::path& path) { return path.string(); }

std::string WhyUnreadable(const fs::path& inFile) {
  std::error_code error;
  const fs::file_status status = fs::status(inFile, error);
  if (status.type() == fs::file_type::not_found) return "does not exist";
  if (fs::is_directory(status)) return "is a folder";
  if (fs::exists(status) && !fs::is_regular_file(status)) return "cannot be read: it is a pipe or a device";
  errno = 0;
  const bool opens = !error && std::ifstream(inFile, std::ios::binary).is_open();
  if (opens) return "cannot be read";
  return "cannot be read: " + (error ? error.message() : SystemReason());
}

/// Reads the level of a game's own file.
std::string LoadPackage(const fs::path& inFile, RunMemory& memory) {
  LevelSource source;
  if (const std::string error = ReadLevelPackage(inFile, source); !error.empty()) throw InputFailed(inFile, error);
  memory.TextureNames = std::move(source.TextureNames);
  memory.SourceFaults = std::move(source.Faults);
  return std::move(source.Text);
}

/// Reads the level unless the text of the last run is to be used again.
void LoadText(const fs::path& inFile, const ConversionSettings& settings, RunMemory& memory, RunInterface& user) {
  if (!settings.CheckRescanFile && !memory.T3DText.empty()) return;
  user.ShowPass("Reading file");
  std::optional<std::string> text;
  std::error_code error;
  memory.TextureNames.clear();
  memory.SourceFaults.clear();
  if (fs::is_regular_file(inFile, error))
    text = IsLevelPackage(inFile) ? LoadPackage(inFile, memory) : ReadWholeFile(inFile, user);
  if (!text) throw InputFailed(inFile, WhyUnreadable(inFile));
  if (user.StopRequested()) throw RunStopped(); // what was read may be a part only
  memory.T3DText = std::move(*text);
  memory.LoadedFileName = Display(inFile);
}

/// Outputs that turn out unwritable after all passes would cost the user the whole run.
void CheckWritable(const SceneOutputs& outputs, const fs::path& path) {
  std::error_code error;
  if (!path.parent_path().empty()) fs::create_directories(path.parent_path(), error);
  if (error) throw OutputFailed(path, "cannot be written: its folder cannot be made: " + error.message());
  if (const std::string why = outputs.WhyNot(path); !why.empty()) throw OutputFailed(path, "cannot be written: " + why);
}

std::vector<fs::path> ScenesOf(const SceneFileNames& files, const ConversionSettings& settings) {
  std::vector<fs::path> scenes{files.Text, files.Document};
  if (settings.CheckXMLtoo) scenes.push_back(files.Copy);
  return scenes;
}

/// Takes care that the scenes can be written and take no other file's place.
void TakeOutputs(const SceneFileNames& files, const ConversionSettings& settings, const fs::path& inFile,
                 BatchFiles& batch, BatchFiles::Kind kind, const SceneOutputs& outputs) {
  for (const fs::path& scene : ScenesOf(files, settings)) {
    const std::string refused = std::string("is not converted: its ") +
                                (kind == BatchFiles::Kind::SkyScene ? "sky scene " : "output ") + Display(scene);
    if (batch.IsInput(scene)) throw InputFailed(inFile, refused + " would overwrite an input");
    if (const fs::path owner = batch.Claim(scene, inFile, kind); !owner.empty())
      throw InputFailed(inFile, refused + " is an output of " + Display(owner) + " already");
  }
  for (const fs::path& scene : ScenesOf(files, settings))
    CheckWritable(outputs, scene);
}

void WritePreloadScript(const std::vector<std::string>& urls, const fs::path& outFile,
                        const ConversionSettings& settings, RunResult& result) {
  if (!settings.CheckMakePreloadScript) return;
  result.PreloadScript = MakePreloadScript(urls, settings.TextJavascriptURL);
  const fs::path path = PreloadScriptName(outFile);
  if (const std::string why = WriteWholeFile(path, result.PreloadScript); !why.empty()) {
    result.FailedFiles.push_back(Display(path) + " cannot be written: " + why);
    return;
  }
  result.PreloadFile = path;
  result.FilesWritten.push_back(path);
}

/// Tells the user something that a window shows in a box, and the summary as a line.
void Tell(RunResult& result, RunInterface& user, const std::string& message) {
  result.Messages.push_back(message);
  user.ShowMessage(message);
}

void TellBadNumbers(const NumberCheck& numbers, RunInterface& user, RunResult& result) {
  if (numbers.Places == 0) return;
  const std::string where = numbers.FirstActor.empty() ? "" : ", the first in " + numbers.FirstActor;
  Tell(result, user,
       "Input file contains badly formatted numbers: " +
           CountText(static_cast<std::size_t>(numbers.Places), "place", "places") + where);
}

/// The lists of what is missing, beside the output.
void WriteLists(const fs::path& outFile, const ConversionSettings& settings, RunInterface& user, RunResult& result) {
  const MissingListsResult lists = WriteMissingLists(outFile, result.Missing, settings);
  for (const std::string& message : lists.Messages)
    Tell(result, user, message);
  result.MissingLists = lists.FilesWritten;
  result.FilesWritten.insert(result.FilesWritten.end(), lists.FilesWritten.begin(), lists.FilesWritten.end());
  result.FailedFiles.insert(result.FailedFiles.end(), lists.Errors.begin(), lists.Errors.end());
}

void WriteReports(ResourceFiles& resources, const fs::path& outFile, const ConversionSettings& settings,
                  RunPurpose purpose, RunInterface& user, RunResult& result) {
  result.Missing = resources.Missing();
  if (purpose != RunPurpose::Page) resources.SaveCopyList();
  result.FailedFiles = resources.Errors();
  if (purpose == RunPurpose::Page) return;
  WriteLists(outFile, settings, user, result);
  WritePreloadScript(resources.UsedTextureUrls(), outFile, settings, result);
}

/// The scenes stand, but not all that belongs to them.
void TellFailedFiles(RunResult& result) {
  if (result.FailedFiles.empty()) return;
  result.Outcome = RunOutcome::Failed;
  const std::size_t more = result.FailedFiles.size() - 1;
  result.Error = result.FailedFiles.front() + (more > 0 ? " (and " + std::to_string(more) + " more)" : "");
}

void Convert(const fs::path& inFile, const fs::path& outFile, const ConversionSettings& asked, RunMemory& memory,
             RunInterface& user, RunResult& result, RunPurpose purpose) {
  const SceneFileNames files = DeriveSceneFileNames(outFile, asked);
  LoadText(inFile, asked, memory, user);
  for (const Finding& fault : memory.SourceFaults)
    result.Findings.Add(fault);
  const T3DLevel level(memory.T3DText, fs::path(memory.LoadedFileName).stem().string());
  if (const std::string why = WhyUnsupported(level); !why.empty()) throw InputFailed(inFile, why);
  const ConversionSettings settings = SettingsForLight(asked, level, result.Findings);
  SceneOutputs outputs(memory.TypedOutput);
  const std::optional<SkyScene> sky = PlanSkyScene(level, files, settings, result.Findings);
  TakeOutputs(files, settings, inFile, memory.Files, BatchFiles::Kind::LevelScene, outputs);
  if (sky) TakeOutputs(sky->Files, sky->Settings, inFile, memory.Files, BatchFiles::Kind::SkyScene, outputs);

  ResourceFiles resources(settings, inFile, files.Text, result.Findings, FindProgramData(ProgramPath()), &user,
                          &memory.Outputs);
  resources.KnowTextures(memory.TextureNames);
  if (purpose == RunPurpose::Page) resources.KeepWebImages();
  NumberCheck numbers;
  WriteScenes({level, resources, user, numbers, result, result.Findings}, files, settings, sky, outputs, result);
  if (purpose == RunPurpose::Files || settings.CheckRescanFile) TellBadNumbers(numbers, user, result);
  WriteReports(resources, outFile, settings, purpose, user, result);
  TellFailedFiles(result);
  user.ShowPass("Done");
  user.ShowFraction(1);
  user.ShowItem("Box: " + FormatVec(result.Bounds.Min) + " to " + FormatVec(result.Bounds.Max));
}

/// Names of missing files that begin with the folder of the page's run, which nobody knows, begin with the output's.
void MoveNames(MissingResources& missing, const fs::path& from, const fs::path& to) {
  const std::string hidden = Utf8Path(from / "");
  for (std::vector<std::string>& names : missing)
    for (std::string& name : names)
      if (name.starts_with(hidden)) name = Utf8Path(to / PathOfUtf8(name.substr(hidden.size())));
}

/// Converts the level once more, for the page, and writes that. Without other files this run is the one that counts.
void ConvertToPage(const fs::path& inFile, const fs::path& outFile, const ConversionSettings& settings, PageRun& page,
                   RunMemory& memory, RunInterface& user, RunResult& result) {
  const ConversionSettings inside = PageSettings(settings);
  RunResult written;
  Convert(inFile, page.SceneFile(), inside, memory, user, written, RunPurpose::Page);
  if (!written.FailedFiles.empty()) throw RunFailed{written.Error};
  written.FilesWritten.clear();
  const fs::path sky = written.SkyScene.Document;
  written.Scene = written.SkyScene = {};
  MoveNames(written.Missing, page.SceneFile().parent_path(), outFile.parent_path());
  if (settings.CheckPageOnly) {
    written.InputFile = inFile;
    result = std::move(written);
  }
  user.ShowPass("Writing the page");
  result.Page = page.Write(settings, sky, fs::path(memory.LoadedFileName).stem().string(), result.Findings);
  result.FilesWritten.push_back(result.Page);
  if (settings.CheckPageOnly) WriteLists(outFile, settings, user, result);
  TellFailedFiles(result);
  user.ShowPass("Done");
}

} // namespace

SceneFileNames DeriveSceneFileNames(const fs::path& outFile, const ConversionSettings& settings) {
  const fs::path folder = outFile.parent_path();
  const std::string stem = outFile.stem().string();
  const std::string dash = settings.CheckAppendDash && !settings.CheckCCW ? "-" : "";
  return {folder / (stem + dash + (settings.OptionFlux ? ".x3dv" : ".wrl")), folder / (stem + ".x3d"),
          folder / (stem + ".xml")};
}

std::vector<fs::path> ScenesOf(const fs::path& outFile, const ConversionSettings& settings) {
  std::vector<fs::path> scenes = ScenesOf(DeriveSceneFileNames(outFile, settings), settings);
  if (!settings.CheckMakePage) return scenes;
  if (settings.CheckPageOnly) scenes.clear();
  scenes.push_back(PageFileName(outFile));
  return scenes;
}

fs::path PreloadScriptName(const fs::path& outFile) {
  return fs::path(outFile).replace_filename(outFile.stem().string() + "Preload.js");
}

RunResult ConvertFile(const fs::path& inFile, const fs::path& outFile, const ConversionSettings& settings,
                      SettingsStore& store, RunMemory& memory, RunInterface& user) {
  RunResult result;
  result.InputFile = inFile;
  if (inFile.empty()) return result;
  const auto start = std::chrono::steady_clock::now();
  try {
    if (const std::string error = SaveSettings(settings, store); !error.empty()) throw RunFailed{error};
    std::optional<PageRun> page;
    if (settings.CheckMakePage) page.emplace(outFile, settings, memory.TypedOutput);
    if (!page || !settings.CheckPageOnly) Convert(inFile, outFile, settings, memory, user, result, RunPurpose::Files);
    if (page) ConvertToPage(inFile, outFile, settings, *page, memory, user, result);
  } catch (const RunStopped&) {
    result.Outcome = RunOutcome::Stopped;
  } catch (const RunFailed& failure) {
    result.Outcome = RunOutcome::Failed;
    result.Error = failure.Error;
    result.Reason = failure.Reason;
  } catch (const std::bad_alloc&) {
    result.Outcome = RunOutcome::Failed;
    result.Error = "there is not enough memory to convert " + Display(inFile);
  } catch (const std::exception& failure) {
    result.Outcome = RunOutcome::Failed;
    result.Reason = failure.what();
    result.Error = Display(inFile) + ": " + result.Reason;
  }
  if (result.Reason.empty()) result.Reason = result.Error;
  result.Seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return result;
}

} // namespace quarvel
