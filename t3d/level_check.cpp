#include "t3d/level_check.h"

#include <algorithm>

namespace quarvel {

namespace {

bool IsConverted(const ActorBlock& actor) { return FindClass(actor.Class) != nullptr; }

bool Contains(std::string_view text, std::string_view what) { return text.find(what) != text.npos; }

bool IsUtf16(std::string_view text) { return text.starts_with("\xff\xfe") || text.starts_with("\xfe\xff"); }

} // namespace

std::string WhyUnsupported(const T3DLevel& level) {
  const std::string_view text = level.Text;
  if (IsUtf16(text)) return "is UTF-16 text; export it as plain text";
  const bool known = std::any_of(level.Actors.begin(), level.Actors.end(), IsConverted);
  if (known || (level.Actors.empty() && Contains(text, "Begin PolyList"))) return {};
  if (Contains(text, "Archetype="))
    return "comes from a newer generation of the editor, whose exports are not supported";
  if (Contains(text, "Begin StaticMesh")) return "is a static mesh, not a level; export the level itself";
  if (level.Actors.empty()) return "holds no actor; it is not a level exported as T3D text";
  return "holds no brush, and no actor of a class that is converted";
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
