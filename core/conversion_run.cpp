#include "core/conversion_run.h"

#include "base/file_identity.h"
#include "core/level_source.h"
#include "core/light_pass.h"
#include "core/motion_passes.h"
#include "core/page_run.h"
#include "core/run_failure.h"
#include "core/run_passes.h"
#include "core/run_state.h"
#include "core/run_summary.h"
#include "core/scene_framing.h"
#include "core/sky_scene.h"
#include "math/number_text.h"
#include "resources/missing_lists.h"
#include "resources/preload_script.h"
#include "resources/program_data.h"
#include "scene/xml_serializer.h"
#include "settings/settings_file.h"
#include "t3d/level_check.h"

#include <algorithm>
#include <array>
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

RunFailed InputFailed(const fs::path& inFile, const std::string& why) { return {Display(inFile) + " " + why, why}; }

RunFailed OutputFailed(const fs::path& path, const std::string& why) {
  return {Display(path) + " " + why, Display(path.filename()) + " " + why};
}

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

void SaveDocument(RunState& run, const fs::path& path, fs::path& name, XMLFaults& faults) {
  TextFile& file = run.Outputs.Begin(path, TextCoding::AsIs, name);
  if (!SaveXML(run.Context.Scene.SceneDocument(), file, run.Context.Scene.Conforming(), faults))
    throw OutputFailed(path, "cannot be written: " + file.Error());
}

void ReportFaults(RunState& run, const XMLFaults& faults) {
  Report& report = run.Result.Findings;
  if (faults.Markup) report.Add(FindingCode::MarkupInDocument, "");
  if (faults.Characters) report.Add(FindingCode::CharactersInDocument, "");
  for (const std::string& quirk : run.Context.Scene.Quirks())
    report.Add(FindingCode::StrictViewersRefuse, quirk);
}

void CloseScene(RunState& run, const SceneFileNames& files, SceneFileNames& written) {
  run.Context.Scene.WriteReadyRoutes();
  FlushBlock(run);
  run.Context.Scene.FinishRoutes(run.Result.Findings);
  if (!run.File.Flush()) throw OutputFailed(run.File.Path(), "cannot be written: " + run.File.Error());
  XMLFaults faults;
  if (run.Context.Settings.CheckXMLtoo) SaveDocument(run, files.Copy, written.Copy, faults);
  SaveDocument(run, files.Document, written.Document, faults);
  ReportFaults(run, faults);
}

/// Whether there is anything to see, hear or meet below a node of the document.
bool HasContent(const pugi::xml_node& node) {
  constexpr std::array<std::string_view, 8> frame{"X3D",   "Scene",     "NavigationInfo", "WorldInfo",
                                                  "Group", "Transform", "ProtoDeclare",   "ROUTE"};
  for (const pugi::xml_node& child : node.children()) {
    if (child.type() != pugi::node_element) continue;
    if (std::find(frame.begin(), frame.end(), child.name()) == frame.end()) return true;
    if (std::string_view(child.name()) != "ProtoDeclare" && HasContent(child)) return true;
  }
  return false;
}

/// A scene of nothing is no scene: the user has to know what the level is made of instead. That files are missing stops
/// no run, though.
void RefuseEmptyScene(RunState& run) {
  const MissingResources missing = run.Context.Resources.Missing();
  const bool lacksFiles = std::any_of(missing.begin(), missing.end(), [](const auto& names) { return !names.empty(); });
  if (lacksFiles || HasContent(run.Context.Scene.SceneDocument())) return;
  std::string why = "has nothing that arrives in a scene with these options; it holds " + ContentOf(run.Level);
  for (const auto& [what, counted] : run.Result.Findings.Counts())
    why += "; " + what + ": " + std::to_string(counted.Count);
  throw InputFailed(run.Result.InputFile, why);
}

/// Writes one scene from its header to its end.
void WriteScene(RunState& run, const SceneFileNames& files, SceneFileNames& written) {
  WriteTextHeader(run.Context.Scene, run.Context.Settings);
  WritePrototypes(run);
  SceneFrame frame(run.Context.Scene, run.Context.Settings, files.Document.stem().string());
  MakePasses(run);
  if (run.Part.Kept != ScenePart::Kind::Sky) RefuseEmptyScene(run);
  frame.CloseContent();
  CloseScene(run, files, written);
  run.Result.UniqueMaterials += run.Context.Materials.UniqueMaterialCount();
}

void WriteSkyScene(const SkyScene& sky, RunState& world) {
  const ScenePart part{ScenePart::Kind::Sky, sky.Zone.Location};
  RunState run(sky.Files, sky.Settings, world.Level, part, nullptr, world.Outputs, world.Result.SkyScene.Text,
               world.Context.Resources, world.Numbers, world.Context.User, world.Result);
  run.ActorsDone = world.ActorsDone; // what is done never becomes less
  WriteScene(run, sky.Files, run.Result.SkyScene);
}

/// Writes all scenes; they take their places when all are complete. A stop leaves the text scene as far as it is.
void WriteScenes(RunState& run, const SceneFileNames& files, const std::optional<SkyScene>& sky) {
  try {
    WriteScene(run, files, run.Result.Scene);
    run.Result.Bounds = run.Bounds;
    if (sky) WriteSkyScene(*sky, run);
  } catch (const RunStopped&) {
    const std::string error = run.Outputs.CompleteStopped(run.Result);
    if (!error.empty() && !fs::is_fifo(files.Text)) throw RunFailed{error}; // a pipe that was not opened is no failure
    throw;
  }
  if (const std::string error = run.Outputs.Complete(run.Result); !error.empty()) throw RunFailed{error};
}

void WritePreloadScript(RunState& run, const fs::path& outFile, std::vector<std::string>& errors) {
  if (!run.Context.Settings.CheckMakePreloadScript) return;
  run.Result.PreloadScript =
      MakePreloadScript(run.Context.Resources.UsedTextureUrls(), run.Context.Settings.TextJavascriptURL);
  const fs::path path = PreloadScriptName(outFile);
  if (const std::string why = WriteWholeFile(path, run.Result.PreloadScript); !why.empty()) {
    errors.push_back(Display(path) + " cannot be written: " + why);
    return;
  }
  run.Result.PreloadFile = path;
  run.Result.FilesWritten.push_back(path);
}

/// Tells the user something that a window shows in a box, and the summary as a line.
void Tell(RunResult& result, RunInterface& user, const std::string& message) {
  result.Messages.push_back(message);
  user.ShowMessage(message);
}

void TellBadNumbers(RunState& run) {
  const NumberCheck& numbers = run.Numbers;
  if (numbers.Places == 0) return;
  const std::string where = numbers.FirstActor.empty() ? "" : ", the first in " + numbers.FirstActor;
  Tell(run.Result, run.Context.User,
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

void WriteReports(RunState& run, const fs::path& outFile, RunPurpose purpose) {
  RunResult& result = run.Result;
  result.Missing = run.Context.Resources.Missing();
  if (purpose != RunPurpose::Page) run.Context.Resources.SaveCopyList();
  result.FailedFiles = run.Context.Resources.Errors();
  if (purpose == RunPurpose::Page) return;
  WriteLists(outFile, run.Context.Settings, run.Context.User, result);
  WritePreloadScript(run, outFile, result.FailedFiles);
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
  const ScenePart part{sky ? ScenePart::Kind::World : ScenePart::Kind::Everything, {}};
  RunState run(files, settings, level, part, sky ? &sky->Zone : nullptr, outputs, result.Scene.Text, resources, numbers,
               user, result);
  WriteScenes(run, files, sky);
  if (purpose == RunPurpose::Files || settings.CheckRescanFile) TellBadNumbers(run);
  WriteReports(run, outFile, purpose);
  TellFailedFiles(result);
  user.ShowPass("Done");
  user.ShowFraction(1);
  user.ShowItem("Box: " + FormatVec(result.Bounds.Min) + " to " + FormatVec(result.Bounds.Max));
}

/// Converts the level once more, for the page, and writes that. Without other files this run is the one that counts.
void ConvertToPage(const fs::path& inFile, const fs::path& outFile, const ConversionSettings& settings, PageRun& page,
                   RunMemory& memory, RunInterface& user, RunResult& result) {
  const ConversionSettings inside = PageSettings(settings);
  RunResult written;
  Convert(inFile, page.SceneFile(), inside, memory, user, written, RunPurpose::Page);
  if (!written.FailedFiles.empty()) throw RunFailed{written.Error};
  written.FilesWritten.clear();
  written.Scene = written.SkyScene = {};
  if (settings.CheckPageOnly) {
    written.InputFile = inFile;
    result = std::move(written);
  }
  user.ShowPass("Writing the page");
  result.Page = page.Write(settings, fs::path(memory.LoadedFileName).stem().string(), result.Findings);
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
