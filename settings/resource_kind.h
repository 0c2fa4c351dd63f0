#pragma once

#include "settings/conversion_settings.h"

#include <array>
#include <cstddef>
#include <string>

namespace quarvel {

/// The kinds of files that a level refers to.
enum class ResourceKind { Texture, Sound, Mesh };

inline constexpr std::array<ResourceKind, 3> ResourceKinds{ResourceKind::Texture, ResourceKind::Sound,
                                                           ResourceKind::Mesh};

/// One value for each kind.
template <typename T>
class PerKind {
 public:
  PerKind() = default;
  PerKind(T textures, T sounds, T meshes) : values_{std::move(textures), std::move(sounds), std::move(meshes)} {}

  T& operator[](ResourceKind kind) { return values_[static_cast<std::size_t>(kind)]; }
  const T& operator[](ResourceKind kind) const { return values_[static_cast<std::size_t>(kind)]; }

  auto begin() { return values_.begin(); }
  auto end() { return values_.end(); }
  auto begin() const { return values_.begin(); }
  auto end() const { return values_.end(); }

 private:
  std::array<T, 3> values_{};
};

/// What tells the kinds apart.
struct ResourceKindInfo {
  const char* Word;       ///< in front of the keys of the destination options
  const char* One;        ///< "texture"
  const char* Many;       ///< "textures"; also the folder that copies may go to
  const char* ListEnding; ///< of the file that lists the missing ones, behind the scene's name
  const char* SearchPathControl;
  std::string ConversionSettings::*SearchPath;
  DestinationOptions ConversionSettings::*Destination;
  bool (*IsReported)(const ConversionSettings&); ///< whether the settings ask for that list
};

const ResourceKindInfo& InfoOf(ResourceKind kind);

} // namespace quarvel
