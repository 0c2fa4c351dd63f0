#include "t3d/class_table.h"

#include <algorithm>
#include <array>

namespace quarvel {

namespace {

constexpr std::array classes{
    ActorClass{"LevelInfo", ClassMatch::Prefix, ActorFamily::Level},
    ActorClass{"ZoneInfo", ClassMatch::Exact, ActorFamily::Zone},
    ActorClass{"SkyZoneInfo", ClassMatch::Exact, ActorFamily::SkyZone},
    ActorClass{"Trigger", ClassMatch::Exact, ActorFamily::Trigger},
    ActorClass{"ElevatorTrigger", ClassMatch::Exact, ActorFamily::Trigger},
    ActorClass{"StochasticTrigger", ClassMatch::Exact, ActorFamily::StochasticTrigger},
    ActorClass{"Dispatcher", ClassMatch::Exact, ActorFamily::Dispatcher},
    ActorClass{"StaticMeshActor", ClassMatch::Exact, ActorFamily::StaticMesh},
    ActorClass{"Brush", ClassMatch::Exact, ActorFamily::Brush},
    ActorClass{"Mover", ClassMatch::Exact, ActorFamily::Mover},
    ActorClass{"LoopMover", ClassMatch::Exact, ActorFamily::Mover},
    ActorClass{"RotatingMover", ClassMatch::Exact, ActorFamily::Mover},
    ActorClass{"AttachMover", ClassMatch::Exact, ActorFamily::Mover},
    ActorClass{"Mover", ClassMatch::Suffix, ActorFamily::Mover}, // a game's own
    ActorClass{"TerrainInfo", ClassMatch::Prefix, ActorFamily::Terrain},
    ActorClass{"Light", ClassMatch::Prefix, ActorFamily::Light},
    ActorClass{"Spotlight", ClassMatch::Prefix, ActorFamily::Light},
    ActorClass{"Sunlight", ClassMatch::Prefix, ActorFamily::Light},
    ActorClass{"ScaledSprite", ClassMatch::Prefix, ActorFamily::Light},
    ActorClass{"TorchFlame", ClassMatch::Prefix, ActorFamily::Light},
    ActorClass{"UTFlare", ClassMatch::Prefix, ActorFamily::Flare},
    ActorClass{"InterpolationPoint", ClassMatch::Exact, ActorFamily::InterpolationPoint},
    ActorClass{"SceneManager", ClassMatch::Prefix, ActorFamily::SceneManager},
    ActorClass{"SpecialEvent", ClassMatch::Exact, ActorFamily::SpecialEvent},
    ActorClass{"PlayerStart", ClassMatch::Exact, ActorFamily::PlayerStart},
    ActorClass{"AmbientSound", ClassMatch::Exact, ActorFamily::AmbientSound},
    ActorClass{"DynamicAmbientSound", ClassMatch::Exact, ActorFamily::DynamicAmbientSound},
    ActorClass{"Teleporter", ClassMatch::Exact, ActorFamily::Teleporter},
    ActorClass{"FavoritesTeleporter", ClassMatch::Exact, ActorFamily::Teleporter},
    ActorClass{"VisibleTeleporter", ClassMatch::Exact, ActorFamily::Teleporter},
    ActorClass{"TriggerLight", ClassMatch::Exact, ActorFamily::TriggerLight},
    ActorClass{"TriggeredAmbientSound", ClassMatch::Exact, ActorFamily::TriggeredAmbientSound},
};

bool Fits(std::string_view className, const ActorClass& entry) {
  switch (entry.Match) {
  case ClassMatch::Prefix:
    return className.starts_with(entry.Name);
  case ClassMatch::Suffix:
    return className.ends_with(entry.Name);
  case ClassMatch::Exact:
    break;
  }
  return className == entry.Name;
}

} // namespace

std::span<const ActorClass> ConvertedClasses() { return classes; }

const ActorClass* FindClass(std::string_view className) {
  className = EarlierSpelling(className);
  const auto* at =
      std::find_if(classes.begin(), classes.end(), [&](const ActorClass& entry) { return Fits(className, entry); });
  return at == classes.end() ? nullptr : at;
}

bool IsOfFamily(std::string_view className, ActorFamily family) {
  const ActorClass* entry = FindClass(className);
  return entry != nullptr && entry->Family == family;
}

std::string_view EarlierSpelling(std::string_view className) {
  return className == "SunLight" ? "Sunlight" : className;
}

} // namespace quarvel
