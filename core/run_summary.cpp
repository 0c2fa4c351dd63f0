#include "core/run_summary.h"

#include "base/level_text.h"
#include "math/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <string>
#include <string_view>

namespace quarvel {

namespace {

constexpr std::size_t namesShown = 10;
constexpr std::size_t reasonsShown = 20;

/// Names come from the level.
void WriteLine(std::ostream& out, std::string_view text) { out << "  " << PrintableText(text) << "\n"; }

/// A name of any length in a line for people.
std::string Shortened(const std::string& name) {
  constexpr std::size_t longest = 100;
  if (name.size() <= longest) return name;
  std::size_t end = longest;
  while (end > longest - 4 && (static_cast<unsigned char>(name[end]) & 0xc0) == 0x80) // within a character of UTF-8
    --end;
  return name.substr(0, end) + "...";
}

std::string JoinNames(const std::vector<std::string>& names, bool inFull) {
  const std::size_t shown = inFull ? names.size() : std::min(names.size(), namesShown);
  std::string joined;
  for (std::size_t i = 0; i < shown; ++i)
    joined += (i == 0 ? "" : ", ") + (inFull ? names[i] : Shortened(names[i]));
  if (shown < names.size()) joined += " and " + std::to_string(names.size() - shown) + " more (see --verbose)";
  return joined;
}

void WriteMissing(std::ostream& out, ResourceKind kind, const std::vector<std::string>& names, bool inFull) {
  const ResourceKindInfo& info = InfoOf(kind);
  if (!names.empty())
    WriteLine(out, CountText(names.size(), info.One, info.Many) + " missing: " + JoinNames(names, inFull));
}

void WriteFindings(std::ostream& out, const std::vector<Finding>& findings, bool inFull) {
  const std::vector<ActorsOfReason> groups = GroupByReason(findings);
  const std::size_t shown = inFull ? groups.size() : std::min(groups.size(), reasonsShown);
  for (std::size_t i = 0; i < shown; ++i) {
    const std::vector<std::string>& actors = groups[i].Actors;
    WriteLine(out, groups[i].Reason + (actors.empty() ? "" : ": " + JoinNames(actors, inFull)));
  }
  if (shown < groups.size()) out << "  and " << groups.size() - shown << " more things to know (see --verbose)\n";
}

void WriteCarving(std::ostream& out, const CarvingResult& carving, bool inFull) {
  if (!carving.Done) return;
  const auto count = [](int number, std::string_view what) { return std::to_string(number) + " " + std::string(what); };
  std::string brushes = count(carving.Added, "added, ") + count(carving.Subtracted, "subtracted, ") +
                        count(carving.Semisolid, "semisolid, ");
  if (carving.NonSolid > 0) brushes += count(carving.NonSolid, "non-solid, ");
  if (carving.Portals > 0) brushes += count(carving.Portals, "zone portals, ");
  WriteLine(out, "carved brushes: " + brushes + count(carving.Sheets, "sheets"));
  WriteLine(out,
            "surfaces: " + count(carving.SurfacesBefore, "before carving, ") + count(carving.SurfacesAfter, "after"));
  WriteLine(out, "empty space: " + FormatFlt(carving.EmptyVolume) + " cubic metres");
  if (inFull)
    WriteLine(out, "carving took " + SecondsText(carving.PrepareSeconds) + " to prepare the brushes, " +
                       SecondsText(carving.CarveSeconds) + " to cut their faces, " + SecondsText(carving.WeldSeconds) +
                       " to weld them, " + SecondsText(carving.WriteSeconds) + " to write the scene");
}

std::size_t CountOf(const std::vector<RunResult>& results, RunOutcome outcome) {
  return static_cast<std::size_t>(std::count_if(results.begin(), results.end(),
                                                [&](const RunResult& result) { return result.Outcome == outcome; }));
}

} // namespace

std::string CountText(std::size_t count, std::string_view one, std::string_view many) {
  return std::to_string(count) + " " + std::string(count == 1 ? one : many);
}

std::string SecondsText(double seconds) {
  std::array<char, 64> buffer;
  const auto end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), seconds, std::chars_format::fixed, 2).ptr;
  return std::string(buffer.data(), end) + " s";
}

std::string ContentText(const RunResult& result) {
  return CountText(static_cast<std::size_t>(result.Brushes), "brush", "brushes") + ", " +
         CountText(static_cast<std::size_t>(result.Faces), "face", "faces") + ", " +
         CountText(static_cast<std::size_t>(result.UniqueMaterials), "material", "materials");
}

std::string LightText(const BakedLightSummary& light) {
  return "light of " + CountText(light.Lamps, "lamp", "lamps") +
         (light.Zones > 0 ? " and " + CountText(light.Zones, "zone", "zones") : "") +
         " baked: " + CountText(light.Texels, "texel", "texels") + " on " + CountText(light.Pages, "page", "pages") +
         " in " + SecondsText(light.Seconds);
}

std::string BoxText(const Bounds3& bounds) { return FormatVec(bounds.Min) + " to " + FormatVec(bounds.Max); }

std::vector<ActorsOfReason> GroupByReason(const std::vector<Finding>& findings) {
  std::vector<ActorsOfReason> groups;
  std::map<std::string_view, std::size_t> indexOf;
  for (const Finding& finding : findings) {
    const auto [at, isNew] = indexOf.try_emplace(finding.Reason, groups.size());
    if (isNew) groups.push_back({finding.Reason, {}});
    if (!finding.Actor.empty()) groups[at->second].Actors.push_back(finding.Actor);
  }
  return groups;
}

bool IsAboutMissingFiles(std::string_view message) { return message.starts_with("There were missing "); }

std::string BatchHeadline(const std::vector<RunResult>& results, std::size_t jobs) {
  const std::size_t converted = CountOf(results, RunOutcome::Done);
  if (CountOf(results, RunOutcome::Stopped) > 0) return "Stopped";
  if (converted == jobs) return "Done";
  return converted == 0 ? "Not converted" : std::to_string(converted) + " of " + std::to_string(jobs) + " converted";
}

std::string BatchSummary(const std::vector<RunResult>& results, std::size_t jobs) {
  return std::to_string(CountOf(results, RunOutcome::Done)) + " of " + CountText(jobs, "file", "files") + " converted";
}

void WriteSummary(std::ostream& out, const RunResult& result, SummaryLength length) {
  const bool inFull = length == SummaryLength::Full;
  out << PrintableText(result.InputFile.string()) << ": converted in " << SecondsText(result.Seconds) << "\n";
  for (const std::filesystem::path& file : result.FilesWritten)
    WriteLine(out, "wrote " + file.string());
  WriteLine(out, ContentText(result));
  if (result.Light.Pages > 0) WriteLine(out, LightText(result.Light));
  if (!IsEmpty(result.Bounds)) WriteLine(out, "box: " + BoxText(result.Bounds));
  WriteCarving(out, result.Carving, inFull);
  for (const auto& [what, counted] : result.Findings.Counts())
    WriteLine(out, what + ": " + std::to_string(counted.Count));
  for (const ResourceKind kind : ResourceKinds)
    WriteMissing(out, kind, result.Missing[kind], inFull);
  for (const std::string& message : result.Messages)
    WriteLine(out, message);
  WriteFindings(out, result.Findings.Findings(), inFull);
  if (inFull) WriteFindings(out, result.Findings.Details(), inFull);
  out << std::flush;
}

} // namespace quarvel
