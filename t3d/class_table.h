#pragma once

#include <span>
#include <string_view>

namespace quarvel {

/// Actors that one record serves: what is converted, and by whom.
enum class ActorFamily {
  Level,
  Zone,
  SkyZone,
  Trigger,
  StochasticTrigger,
  Dispatcher,
  StaticMesh,
  Brush,
  Mover,
  Terrain,
  Light,
  Flare,
  InterpolationPoint,
  SceneManager,
  SpecialEvent,
  PlayerStart,
  AmbientSound,
  DynamicAmbientSound,
  Teleporter,
  TriggerLight,
  TriggeredAmbientSound,
};
inline constexpr std::size_t ActorFamilies = static_cast<std::size_t>(ActorFamily::TriggeredAmbientSound) + 1;

/// What of a class's name has to be as the table says.
enum class ClassMatch { Exact, Prefix, Suffix };

/// One class of actors, or several by a part of their names.
struct ActorClass {
  std::string_view Name;
  ClassMatch Match = ClassMatch::Exact;
  ActorFamily Family = ActorFamily::Level;
};

/// Every class of which something arrives in a scene. The classes of a family stand in the order in which they are
/// converted; where two fit a name, the first one holds.
std::span<const ActorClass> ConvertedClasses();

/// The entry that a class's name fits; nullptr when actors of it are not converted.
const ActorClass* FindClass(std::string_view className);

/// True when actors of this class are converted as members of the family.
bool IsOfFamily(std::string_view className, ActorFamily family);

/// The name by which a class is known: SunLight, as later editors have it, is Sunlight.
std::string_view EarlierSpelling(std::string_view className);

} // namespace quarvel
