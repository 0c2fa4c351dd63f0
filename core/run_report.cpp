#include "core/run_report.h"

#include "base/text_coding.h"

#include <nlohmann/json.hpp>

namespace quarvel {

namespace {

using Json = nlohmann::ordered_json; // members stand as docs/report.md lists them

/// Names in a level may be Windows-1252, and those of files anything; JSON is UTF-8 (RFC 8259, clause 8.1).
Json Texts(const std::vector<std::string>& texts) {
  Json list = Json::array();
  for (const std::string& text : texts)
    list.push_back(ToUtf8(text));
  return list;
}

void AddFile(Json& files, const char* name, const std::filesystem::path& file) {
  if (!file.empty()) files[name] = ToUtf8(file.string());
}

Json OutputsOf(const RunResult& result) {
  Json files = Json::object();
  AddFile(files, "textScene", result.Scene.Text);
  AddFile(files, "documentScene", result.Scene.Document);
  AddFile(files, "documentCopy", result.Scene.Copy);
  AddFile(files, "skyTextScene", result.SkyScene.Text);
  AddFile(files, "skyDocumentScene", result.SkyScene.Document);
  AddFile(files, "preloadScript", result.PreloadFile);
  AddFile(files, "page", result.Page);
  AddFile(files, "incomplete", result.Incomplete);
  Json lists = Json::array();
  for (const std::filesystem::path& list : result.MissingLists)
    lists.push_back(ToUtf8(list.string()));
  files["missingLists"] = lists;
  return files;
}

Json CodeAndText(FindingCode code, const std::string& text) {
  return {{"code", NameOf(code)}, {"severity", NameOf(SeverityOf(code))}, {"text", ToUtf8(text)}};
}

Json LeftOutOf(const Report& report) {
  Json list = Json::array();
  for (const auto& [text, counted] : report.Counts()) {
    list.push_back(CodeAndText(counted.Code, text));
    list.back()["count"] = counted.Count;
  }
  return list;
}

Json FindingsOf(const Report& report) {
  Json list = Json::array();
  for (const Finding& finding : report.Findings()) {
    list.push_back(CodeAndText(finding.Code, finding.Reason));
    list.back()["actor"] = ToUtf8(finding.Actor);
  }
  return list;
}

const char* OutcomeText(RunOutcome outcome) {
  switch (outcome) {
  case RunOutcome::Failed:
    return "failed";
  case RunOutcome::Stopped:
    return "stopped";
  case RunOutcome::Done:
    break;
  }
  return "done";
}

Json Corner(const Vector3& corner) { return Json::array({corner.X, corner.Y, corner.Z}); }

Json ObjectOf(const RunResult& result) {
  Json object;
  object["input"] = ToUtf8(result.InputFile.string());
  object["outcome"] = OutcomeText(result.Outcome);
  if (!result.Error.empty()) object["error"] = ToUtf8(result.Error);
  if (!result.FailedFiles.empty()) object["failedFiles"] = Texts(result.FailedFiles);
  object["seconds"] = result.Seconds;
  object["outputs"] = OutputsOf(result);
  object["counts"] = {{"brushes", result.Brushes}, {"faces", result.Faces}, {"materials", result.UniqueMaterials}};
  if (const CarvingResult& carving = result.Carving; carving.Done)
    object["carving"] = {{"added", carving.Added},
                         {"subtracted", carving.Subtracted},
                         {"semisolid", carving.Semisolid},
                         {"nonSolid", carving.NonSolid},
                         {"zonePortals", carving.Portals},
                         {"sheets", carving.Sheets},
                         {"surfacesBefore", carving.SurfacesBefore},
                         {"surfacesAfter", carving.SurfacesAfter},
                         {"openEdges", carving.OpenEdges},
                         {"emptyVolume", carving.EmptyVolume}};
  if (const BakedLightSummary& light = result.Light; light.Pages > 0)
    object["light"] = {
        {"lamps", light.Lamps}, {"zones", light.Zones}, {"texels", light.Texels}, {"pages", light.Pages}};
  if (!IsEmpty(result.Bounds)) object["box"] = {{"min", Corner(result.Bounds.Min)}, {"max", Corner(result.Bounds.Max)}};
  object["findings"] = FindingsOf(result.Findings);
  object["leftOut"] = LeftOutOf(result.Findings);
  object["missing"] = {{"textures", Texts(result.Missing[ResourceKind::Texture])},
                       {"sounds", Texts(result.Missing[ResourceKind::Sound])},
                       {"meshes", Texts(result.Missing[ResourceKind::Mesh])}};
  return object;
}

} // namespace

std::string ReportAsJson(const std::vector<RunResult>& results) {
  Json list = Json::array();
  for (const RunResult& result : results)
    list.push_back(ObjectOf(result));
  return list.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace quarvel
