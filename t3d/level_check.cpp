#include "t3d/level_check.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

namespace quarvel {

namespace {

bool IsConverted(const ActorBlock& actor) { return FindClass(actor.Class) != nullptr; }

/// Of the later generation, actors of any class may be shown by a mesh.
bool NamesMeshOfItsOwn(const T3DLevel& level, const ActorBlock& actor) {
  return !level.LegacyFormat && actor.IsComplete() && FindText(level.Text, "StaticMesh=", actor.From, actor.To) != 0;
}

bool Contains(std::string_view text, std::string_view what) { return text.find(what) != text.npos; }

bool IsUtf16(std::string_view text) { return text.starts_with("\xff\xfe") || text.starts_with("\xfe\xff"); }

} // namespace

std::string WhyUnsupported(const T3DLevel& level) {
  const std::string_view text = level.Text;
  if (IsUtf16(text)) return "is UTF-16 text; export it as plain text";
  const bool known = std::any_of(level.Actors.begin(), level.Actors.end(), [&](const ActorBlock& actor) {
    return IsConverted(actor) || NamesMeshOfItsOwn(level, actor);
  });
  if (known || (level.Actors.empty() && Contains(text, "Begin PolyList"))) return {};
  if (Contains(text, "Archetype="))
    return "comes from a newer generation of the editor, whose exports are not supported";
  if (Contains(text, "Begin StaticMesh")) return "is a static mesh, not a level; export the level itself";
  if (level.Actors.empty()) return "holds no actor; it is not a level exported as T3D text";
  return "holds no brush, and no actor of a class that is converted";
}

std::string ContentOf(const T3DLevel& level) {
  constexpr std::size_t classesTold = 8;
  std::map<std::string_view, int> counts;
  for (const ActorBlock& actor : level.Actors)
    ++counts[actor.Class];
  if (counts.empty()) return "polygons without an actor";
  std::vector<std::pair<std::string_view, int>> classes(counts.begin(), counts.end());
  std::stable_sort(classes.begin(), classes.end(), [](const auto& a, const auto& b) { return a.second > b.second; });
  std::string content;
  for (std::size_t i = 0; i < std::min(classes.size(), classesTold); ++i)
    content += (i == 0 ? "" : ", ") + std::to_string(classes[i].second) + " " + std::string(classes[i].first);
  return content + (classes.size() > classesTold ? " and others" : "");
}

void ReportUnseenActors(const T3DLevel& level, Report& report) {
  for (const ActorBlock& actor : level.Actors) {
    const bool ofInterest = Contains(actor.Class, "Light") || Contains(actor.Class, "Trigger") ||
                            Contains(actor.Class, "Start") || Contains(actor.Class, "Teleporter");
    if (!actor.IsComplete())
      report.Count(FindingCode::CutOffActors);
    else if (ofInterest && !IsConverted(actor))
      report.Count(FindingCode::ClassNotConverted, actor.Class);
  }
}

} // namespace quarvel
