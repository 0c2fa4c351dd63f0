#include "core/level_check.h"

#include <algorithm>
#include <set>

namespace quarvel {

namespace {

bool IsConverted(std::string_view className) {
  const auto& classes = ConvertedClasses();
  return className.ends_with("Mover") || std::any_of(classes.begin(), classes.end(), [&](std::string_view search) {
           return FitsSearchText(className, search);
         });
}

bool Contains(std::string_view text, std::string_view what) { return text.find(what) != text.npos; }

bool IsUtf16(std::string_view text) { return text.starts_with("\xff\xfe") || text.starts_with("\xfe\xff"); }

} // namespace

const std::vector<std::string_view>& ConvertedClasses() {
  static const std::vector<std::string_view> classes{"Class=LevelInfo",
                                                     "Class=ZoneInfo ",
                                                     "Class=SkyZoneInfo ",
                                                     "Class=Trigger ",
                                                     "Class=ElevatorTrigger ",
                                                     "Class=StochasticTrigger ",
                                                     "Class=Dispatcher ",
                                                     "Class=StaticMeshActor ",
                                                     "Class=Brush ",
                                                     "Class=TerrainInfo",
                                                     "Class=Light",
                                                     "Class=Spotlight",
                                                     "Class=Sunlight",
                                                     "Class=ScaledSprite",
                                                     "Class=TorchFlame",
                                                     "Class=UTFlare",
                                                     "Class=InterpolationPoint ",
                                                     "Class=SceneManager",
                                                     "Class=SpecialEvent ",
                                                     "Class=PlayerStart ",
                                                     "Class=AmbientSound ",
                                                     "Class=DynamicAmbientSound ",
                                                     "Class=Teleporter ",
                                                     "Class=FavoritesTeleporter ",
                                                     "Class=VisibleTeleporter ",
                                                     "Class=TriggerLight ",
                                                     "Class=TriggeredAmbientSound "};
  return classes;
}

std::string WhyUnsupported(std::string_view text, const LevelText& level) {
  if (IsUtf16(text)) return "is UTF-16 text; export it as plain text";
  const bool known = std::any_of(level.Actors.begin(), level.Actors.end(),
                                 [](const ActorBlock& actor) { return IsConverted(actor.Class); });
  if (known || (level.Actors.empty() && Contains(text, "Begin PolyList"))) return {};
  if (Contains(text, "Archetype="))
    return "comes from a newer generation of the editor, whose exports are not supported";
  if (Contains(text, "Begin StaticMesh")) return "is a static mesh, not a level; export the level itself";
  if (level.Actors.empty()) return "holds no actor; it is not a level exported as T3D text";
  return "holds no brush, and no actor of a class that is converted";
}

void ReportUnseenActors(const LevelText& level, Report& report) {
  for (const ActorBlock& actor : level.Actors) {
    const bool ofInterest = Contains(actor.Class, "Light") || Contains(actor.Class, "Trigger") ||
                            Contains(actor.Class, "Start") || Contains(actor.Class, "Teleporter");
    if (!actor.IsComplete())
      report.Count("actors left out because they are cut off");
    else if (ofInterest && !IsConverted(actor.Class))
      report.Count("actors of class " + std::string(actor.Class) + ", which is not converted");
  }
}

bool IsLegacyFormat(std::string_view text) {
  if (Contains(text, "PhysicsVolume=")) return false;
  const std::size_t at = text.find("Texture=");
  if (at == text.npos) return true;
  const std::string_view line = text.substr(at, text.find_first_of(" \t\r\n", at) - at);
  return !Contains(line, ".");
}

std::vector<std::string> OtherMoverClasses(const LevelText& level) {
  std::set<std::string_view> seen{"Mover", "LoopMover", "RotatingMover", "AttachMover"};
  std::vector<std::string> classes;
  for (const ActorBlock& actor : level.Actors)
    if (actor.Class.ends_with("Mover") && seen.insert(actor.Class).second) classes.emplace_back(actor.Class);
  return classes;
}

} // namespace quarvel
