#include "t3d/level.h"

#include "math/color_math.h"
#include "t3d/class_defaults.h"
#include "t3d/text_reader.h"

#include <algorithm>

namespace quarvel {

namespace {

/// The older generation qualifies no texture and knows no physics volumes.
bool IsLegacyFormat(std::string_view text) {
  if (text.find("PhysicsVolume=") != text.npos) return false;
  const std::size_t at = text.find("Texture=");
  if (at == text.npos) return true;
  return text.substr(at, text.find_first_of(" \t\r\n", at) - at).find('.') == text.npos;
}

/// The level's own light when it has one.
std::string LitColorOf(const T3DLevel& level) {
  constexpr const char* ordinary = "0.8 0.8 0.8";
  const auto& infos = level.ActorsOf(ActorFamily::Level);
  if (infos.empty()) return ordinary;
  const TextBlock block(level.Text, infos.front()->From, infos.front()->To);
  if (!IsKeyAt(block, "LightBrightness=")) return ordinary;
  double saturation = 255;
  GetKeyValue(block, "LightSaturation=", saturation);
  return LightColor(GetKeyOrZero(block, "LightBrightness="), GetKeyOrZero(block, "LightHue="), saturation);
}

bool ReadSpeed(const T3DLevel& level, const ActorBlock& actor, std::string_view key, double& speed) {
  if (!actor.IsComplete() || FindText(level.Text, key, actor.From, actor.To) == 0) return false;
  return GetKeyValue(TextBlock(level.Text, actor.From, actor.To), key, speed);
}

double PanSpeedOf(const T3DLevel& level, std::string_view key) {
  double speed = ClassDefaults::TexturePanSpeed;
  const auto& infos = level.ActorsOf(ActorFamily::Level);
  if (!infos.empty() && ReadSpeed(level, *infos.front(), key, speed)) return speed;
  for (const ActorBlock& actor : level.Actors) // zones have many classes, but no other actor has such a key
    if (ReadSpeed(level, actor, key, speed)) break;
  return speed;
}

} // namespace

T3DLevel::T3DLevel(std::string_view text, std::string name)
    : Text(text), Name(std::move(name)), Actors(IndexActors(text)), LegacyFormat(IsLegacyFormat(text)) {
  IndexClasses();
  LitColor = LitColorOf(*this);
  TexUPanSpeed = PanSpeedOf(*this, "TexUPanSpeed=");
  TexVPanSpeed = PanSpeedOf(*this, "TexVPanSpeed=");
}

void T3DLevel::IndexClasses() {
  for (const ActorBlock& actor : Actors)
    if (actor.IsComplete()) byClass_[EarlierSpelling(actor.Class)].push_back(&actor);
  std::map<const ActorClass*, std::vector<const ActorBlock*>> byEntry; // so in the order of the table
  for (const auto& [name, actors] : byClass_)
    if (const ActorClass* entry = FindClass(name))
      byEntry[entry].insert(byEntry[entry].end(), actors.begin(), actors.end());
  for (auto& [entry, actors] : byEntry) {
    std::sort(actors.begin(), actors.end()); // several classes: back into file order
    auto& family = byFamily_[static_cast<std::size_t>(entry->Family)];
    family.insert(family.end(), actors.begin(), actors.end());
  }
}

const std::vector<const ActorBlock*>& T3DLevel::ActorsOf(ActorFamily family) const {
  return byFamily_[static_cast<std::size_t>(family)];
}

const std::vector<const ActorBlock*>& T3DLevel::ActorsOf(std::string_view className) const {
  static const std::vector<const ActorBlock*> none;
  const auto at = byClass_.find(EarlierSpelling(className));
  return at == byClass_.end() ? none : at->second;
}

std::vector<std::string_view> T3DLevel::ClassesOf(ActorFamily family) const {
  std::vector<std::string_view> classes;
  for (const ActorBlock* actor : ActorsOf(family))
    if (std::find(classes.begin(), classes.end(), actor->Class) == classes.end()) classes.push_back(actor->Class);
  return classes;
}

} // namespace quarvel
