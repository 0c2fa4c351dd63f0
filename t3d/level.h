#pragma once

#include "t3d/actor_index.h"
#include "t3d/class_table.h"

#include <array>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

/// A level, read once: where its actors stand in the text, and what it says of itself as a whole. Nothing of it changes
/// afterwards. The text has to outlive it.
struct T3DLevel {
  explicit T3DLevel(std::string_view text, std::string name = {});
  T3DLevel(const T3DLevel&) = delete;
  T3DLevel& operator=(const T3DLevel&) = delete;

  std::string_view Text;
  std::string Name;               ///< the level's file name without its extension
  std::vector<ActorBlock> Actors; ///< in file order
  bool LegacyFormat = true;       ///< an export of the older editor generation
  std::string LitColor;           ///< diffuse colour of surfaces that take light, three components joined by blanks
  /// Of all panning textures: the level's own, else that of the first zone that gives one.
  double TexUPanSpeed = 1, TexVPanSpeed = 1;

  /// The complete actors of a family: entry by entry of ConvertedClasses, those of one entry in file order.
  const std::vector<const ActorBlock*>& ActorsOf(ActorFamily family) const;
  /// The complete actors of a class, converted or not, in file order.
  const std::vector<const ActorBlock*>& ActorsOf(std::string_view className) const;
  /// The classes of a family that the level has actors of, in the order of ActorsOf.
  std::vector<std::string_view> ClassesOf(ActorFamily family) const;

 private:
  void IndexClasses();

  std::map<std::string_view, std::vector<const ActorBlock*>> byClass_;
  std::array<std::vector<const ActorBlock*>, ActorFamilies> byFamily_;
};

} // namespace quarvel
