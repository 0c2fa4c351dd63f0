#include "core/level_scenes.h"

#include "core/run_failure.h"
#include "core/run_passes.h"
#include "core/scene_framing.h"
#include "scene/xml_serializer.h"
#include "t3d/level_check.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace quarvel {

namespace {

namespace fs = std::filesystem;

void SaveDocument(SceneWriter& scene, const fs::path& path, SceneOutputs& outputs, fs::path& name, XMLFaults& faults) {
  TextFile& file = outputs.Begin(path, TextCoding::AsIs, name);
  if (!SaveXML(scene.SceneDocument(), file, scene.Conforming(), faults))
    throw OutputFailed(path, "cannot be written: " + file.Error());
}

void ReportFaults(const SceneWriter& scene, const XMLFaults& faults, Report& findings) {
  if (faults.Markup) findings.Add(FindingCode::MarkupInDocument, "");
  if (faults.Characters) findings.Add(FindingCode::CharactersInDocument, "");
  for (const std::string& quirk : scene.Quirks())
    findings.Add(FindingCode::StrictViewersRefuse, quirk);
}

void CloseScene(SceneRun& run, const SceneFileNames& files, SceneOutputs& outputs, SceneFileNames& written) {
  SceneWriter& scene = run.Context.Scene;
  scene.WriteReadyRoutes();
  FlushBlock(run);
  scene.FinishRoutes(run.Context.Findings);
  if (!run.File.Flush()) throw OutputFailed(run.File.Path(), "cannot be written: " + run.File.Error());
  XMLFaults faults;
  if (run.Context.Settings.CheckXMLtoo) SaveDocument(scene, files.Copy, outputs, written.Copy, faults);
  SaveDocument(scene, files.Document, outputs, written.Document, faults);
  ReportFaults(scene, faults, run.Context.Findings);
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
void RefuseEmptyScene(const SceneRun& run, const fs::path& inFile) {
  const MissingResources missing = run.Context.Resources.Missing();
  const bool lacksFiles = std::any_of(missing.begin(), missing.end(), [](const auto& names) { return !names.empty(); });
  if (lacksFiles || HasContent(run.Context.Scene.SceneDocument())) return;
  std::string why = "has nothing that arrives in a scene with these options; it holds " + ContentOf(run.Level);
  for (const auto& [what, counted] : run.Context.Findings.Counts())
    why += "; " + what + ": " + std::to_string(counted.Count);
  throw InputFailed(inFile, why);
}

SceneRun BeginScene(const LevelRun& run, const SceneFileNames& files, const ConversionSettings& settings,
                    const ScenePart& part, const SkyZoneRecord* sky, SceneOutputs& outputs, SceneFileNames& written) {
  const TextCoding coding = settings.CheckConforming ? TextCoding::Utf8 : TextCoding::AsIs;
  TextFile& text = outputs.Begin(files.Text, coding, written.Text);
  return {run, text, files.Document.stem().string(), settings, part, sky};
}

/// Writes one scene from its header to its end.
void WriteScene(SceneRun& run, const SceneFileNames& files, SceneOutputs& outputs, SceneFileNames& written,
                RunResult& result) {
  WriteTextHeader(run.Context.Scene, run.Context.Settings);
  DeclarePrototypes(run);
  SceneFrame frame(run.Context.Scene, run.Context.Settings, run.SceneName);
  MakePasses(run);
  if (run.Part.Kept != ScenePart::Kind::Sky) RefuseEmptyScene(run, result.InputFile);
  frame.CloseContent();
  CloseScene(run, files, outputs, written);
  result.UniqueMaterials += run.Context.Materials.UniqueMaterialCount();
}

void WriteAll(const LevelRun& run, const SceneFileNames& files, const ConversionSettings& settings,
              const std::optional<SkyScene>& sky, SceneOutputs& outputs, RunResult& result) {
  ScenePart shown;
  if (sky) shown = {ScenePart::Kind::World, {}, sky->Brushes};
  const SkyZoneRecord* inlined = sky ? &sky->Zone : nullptr;
  SceneRun world = BeginScene(run, files, settings, shown, inlined, outputs, result.Scene);
  WriteScene(world, files, outputs, result.Scene, result);
  result.Bounds = world.Bounds;
  if (!sky) return;
  const ScenePart skyPart{ScenePart::Kind::Sky, sky->Zone.Location, sky->Brushes};
  SceneRun above = BeginScene(run, sky->Files, sky->Settings, skyPart, nullptr, outputs, result.SkyScene);
  above.ActorsDone = world.ActorsDone; // what is done never becomes less
  WriteScene(above, sky->Files, outputs, result.SkyScene, result);
}

} // namespace

void WriteScenes(const LevelRun& run, const SceneFileNames& files, const ConversionSettings& settings,
                 const std::optional<SkyScene>& sky, SceneOutputs& outputs, RunResult& result) {
  try {
    WriteAll(run, files, settings, sky, outputs, result);
  } catch (const RunStopped&) {
    const std::string error = outputs.CompleteStopped(result);
    if (!error.empty() && !fs::is_fifo(files.Text)) throw RunFailed{error}; // a pipe that was not opened is no failure
    throw;
  }
  if (const std::string error = outputs.Complete(result); !error.empty()) throw RunFailed{error};
}

} // namespace quarvel
