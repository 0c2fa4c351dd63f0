#include "core/conversion_run.h"

#include "core/level_source.h"
#include "core/motion_passes.h"
#include "core/run_passes.h"
#include "core/run_state.h"
#include "core/scene_framing.h"
#include "core/sky_scene.h"
#include "math/number_text.h"
#include "resources/missing_lists.h"
#include "resources/preload_script.h"
#include "resources/program_data.h"
#include "scene/xml_serializer.h"
#include "settings/settings_file.h"
#include "t3d/level_check.h"

#include <chrono>
#include <new>

namespace quarvel {

namespace {

namespace fs = std::filesystem;

/// Thrown with one sentence when a run cannot go on; caught by the run alone.
struct RunFailed {
  std::string Error;
};

std::string Display(const fs::path& path) { return path.string(); }

/// Reads the level of a game's own file.
std::string LoadPackage(const fs::path& inFile, RunMemory& memory) {
  LevelSource source;
  if (const std::string error = ReadLevelPackage(inFile, source); !error.empty())
    throw RunFailed{Display(inFile) + " " + error};
  memory.TextureNames = std::move(source.TextureNames);
  memory.SourceFaults = std::move(source.Faults);
  return std::move(source.Text);
}

/// Reads the level unless the text of the last run is to be used again.
void LoadText(const fs::path& inFile, const ConversionSettings& settings, RunMemory& memory, RunInterface& user) {
  if (!settings.CheckRescanFile && !memory.T3DText.empty()) return;
  user.ShowPass("Reading file");
  std::error_code error;
  if (!fs::exists(inFile, error)) throw RunFailed{Display(inFile) + " does not exist"};
  if (fs::is_directory(inFile, error)) throw RunFailed{Display(inFile) + " is a folder"};
  memory.TextureNames.clear();
  memory.SourceFaults.clear();
  std::optional<std::string> text = IsLevelPackage(inFile) ? LoadPackage(inFile, memory) : ReadWholeFile(inFile, user);
  if (!text) throw RunFailed{Display(inFile) + " cannot be read"};
  if (user.StopRequested()) throw RunStopped(); // what was read may be a part only
  memory.T3DText = std::move(*text);
  memory.LoadedFileName = Display(inFile);
}

/// Outputs that turn out unwritable after all passes would cost the user the whole run.
void CheckWritable(const SceneOutputs& outputs, const fs::path& path) {
  if (const std::string why = outputs.WhyNot(path); !why.empty())
    throw RunFailed{Display(path) + " cannot be written: " + why};
}

void CheckOutputs(const SceneOutputs& outputs, const SceneFileNames& files, const ConversionSettings& settings) {
  CheckWritable(outputs, files.Text);
  CheckWritable(outputs, files.Document);
  if (settings.CheckXMLtoo) CheckWritable(outputs, files.Copy);
}

void SaveDocument(RunState& run, const fs::path& path, fs::path& name, XMLFaults& faults) {
  TextFile& file = run.Outputs.Begin(path, TextCoding::AsIs, name);
  if (!SaveXML(run.Context.Scene.SceneDocument(), file, run.Context.Scene.Conforming(), faults))
    throw RunFailed{Display(path) + " cannot be written: " + file.Error()};
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
  if (!run.File.Flush()) throw RunFailed{Display(run.File.Path()) + " cannot be written: " + run.File.Error()};
  XMLFaults faults;
  if (run.Context.Settings.CheckXMLtoo) SaveDocument(run, files.Copy, written.Copy, faults);
  SaveDocument(run, files.Document, written.Document, faults);
  ReportFaults(run, faults);
}

/// Writes one scene from its header to its end.
void WriteScene(RunState& run, const SceneFileNames& files, SceneFileNames& written) {
  WriteTextHeader(run.Context.Scene, run.Context.Settings);
  WritePrototypes(run);
  SceneFrame frame(run.Context.Scene, run.Context.Settings, files.Document.stem().string());
  MakePasses(run);
  frame.CloseContent();
  CloseScene(run, files, written);
  run.Result.UniqueMaterials += run.Context.Materials.UniqueMaterialCount();
}

void WriteSkyScene(const SkyScene& sky, RunState& world) {
  const ScenePart part{ScenePart::Kind::Sky, sky.Zone.Location};
  RunState run(sky.Files, sky.Settings, world.Level, part, nullptr, world.Outputs, world.Result.SkyScene.Text,
               world.Context.Resources, world.Context.User, world.Result);
  WriteScene(run, sky.Files, run.Result.SkyScene);
}

/// Writes all scenes; they take their places when all are complete. A stop leaves the text scene as far as it is.
void WriteScenes(RunState& run, const SceneFileNames& files, const std::optional<SkyScene>& sky) {
  try {
    WriteScene(run, files, run.Result.Scene);
    run.Result.Bounds = run.Bounds;
    if (sky) WriteSkyScene(*sky, run);
  } catch (const RunStopped&) {
    if (const std::string error = run.Outputs.CompleteStopped(run.Result); !error.empty()) throw RunFailed{error};
    throw;
  }
  if (const std::string error = run.Outputs.Complete(run.Result); !error.empty()) throw RunFailed{error};
}

void WritePreloadScript(RunState& run, const fs::path& outFile, std::vector<std::string>& errors) {
  if (!run.Context.Settings.CheckMakePreloadScript) return;
  run.Result.PreloadScript =
      MakePreloadScript(run.Context.Resources.UsedTextureUrls(), run.Context.Settings.TextJavascriptURL);
  const fs::path path = fs::path(outFile).replace_filename(outFile.stem().string() + "Preload.js");
  if (const std::string why = WriteWholeFile(path, run.Result.PreloadScript); !why.empty()) {
    errors.push_back(Display(path) + " cannot be written: " + why);
    return;
  }
  run.Result.PreloadFile = path;
  run.Result.FilesWritten.push_back(path);
}

void WriteReports(RunState& run, const fs::path& outFile) {
  RunResult& result = run.Result;
  result.Missing = run.Context.Resources.Missing();
  const MissingListsResult lists = WriteMissingLists(outFile, result.Missing, run.Context.Settings);
  result.Messages.insert(result.Messages.end(), lists.Messages.begin(), lists.Messages.end());
  for (const std::string& message : lists.Messages)
    run.Context.User.ShowMessage(message);
  result.MissingLists = lists.FilesWritten;
  result.FilesWritten.insert(result.FilesWritten.end(), lists.FilesWritten.begin(), lists.FilesWritten.end());
  result.FailedFiles = run.Context.Resources.Errors();
  result.FailedFiles.insert(result.FailedFiles.end(), lists.Errors.begin(), lists.Errors.end());
  WritePreloadScript(run, outFile, result.FailedFiles);
}

/// The scenes stand, but not all that belongs to them.
void TellFailedFiles(RunResult& result) {
  if (result.FailedFiles.empty()) return;
  result.Outcome = RunOutcome::Failed;
  const std::size_t more = result.FailedFiles.size() - 1;
  result.Error = result.FailedFiles.front() + (more > 0 ? " (and " + std::to_string(more) + " more)" : "");
}

void Convert(const fs::path& inFile, const fs::path& outFile, const ConversionSettings& settings, SettingsStore& store,
             RunMemory& memory, RunInterface& user, RunResult& result) {
  if (const std::string error = SaveSettings(settings, store); !error.empty()) throw RunFailed{error};
  const SceneFileNames files = DeriveSceneFileNames(outFile, settings);
  LoadText(inFile, settings, memory, user);
  for (const Finding& fault : memory.SourceFaults)
    result.Findings.Add(fault);
  const T3DLevel level(memory.T3DText, fs::path(memory.LoadedFileName).stem().string());
  if (const std::string why = WhyUnsupported(level); !why.empty()) throw RunFailed{Display(inFile) + " " + why};
  SceneOutputs outputs(memory.TypedOutput);
  CheckOutputs(outputs, files, settings);

  const std::optional<SkyScene> sky = PlanSkyScene(level, inFile, files, settings, memory, result.Findings);
  if (sky) CheckOutputs(outputs, sky->Files, sky->Settings);

  ResourceFiles resources(settings, inFile, files.Text, result.Findings, FindProgramData(ProgramPath()));
  const ScenePart part{sky ? ScenePart::Kind::World : ScenePart::Kind::Everything, {}};
  RunState run(files, settings, level, part, sky ? &sky->Zone : nullptr, outputs, result.Scene.Text, resources, user,
               result);
  WriteScenes(run, files, sky);
  WriteReports(run, outFile);
  TellFailedFiles(result);
  user.ShowPass("Done");
  user.ShowFraction(1);
  user.ShowItem("Box: " + FormatVec(result.Bounds.Min) + " to " + FormatVec(result.Bounds.Max));
}

} // namespace

SceneFileNames DeriveSceneFileNames(const fs::path& outFile, const ConversionSettings& settings) {
  const fs::path folder = outFile.parent_path();
  const std::string stem = outFile.stem().string();
  const std::string dash = settings.CheckAppendDash && !settings.CheckCCW ? "-" : "";
  return {folder / (stem + dash + (settings.OptionFlux ? ".x3dv" : ".wrl")), folder / (stem + ".x3d"),
          folder / (stem + ".xml")};
}

RunResult ConvertFile(const fs::path& inFile, const fs::path& outFile, const ConversionSettings& settings,
                      SettingsStore& store, RunMemory& memory, RunInterface& user) {
  RunResult result;
  result.InputFile = inFile;
  if (inFile.empty()) return result;
  const auto start = std::chrono::steady_clock::now();
  try {
    Convert(inFile, outFile, settings, store, memory, user, result);
  } catch (const RunStopped&) {
    result.Outcome = RunOutcome::Stopped;
  } catch (const RunFailed& failure) {
    result.Outcome = RunOutcome::Failed;
    result.Error = failure.Error;
  } catch (const std::bad_alloc&) {
    result.Outcome = RunOutcome::Failed;
    result.Error = "there is not enough memory to convert " + Display(inFile);
  } catch (const std::exception& failure) {
    result.Outcome = RunOutcome::Failed;
    result.Error = Display(inFile) + ": " + failure.what();
  }
  result.Seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return result;
}

} // namespace quarvel
