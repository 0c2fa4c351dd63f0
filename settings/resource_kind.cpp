#include "settings/resource_kind.h"

namespace quarvel {

const ResourceKindInfo& InfoOf(ResourceKind kind) {
  using Settings = ConversionSettings;
  static constexpr std::array<ResourceKindInfo, 3> kinds{{
      {"Texture", "texture", "textures", "MissingTextures.txt", "TextSearchPathTxt", &Settings::TextSearchPathTxt,
       &Settings::TextureDest, [](const Settings&) { return true; }},
      {"Sound", "sound", "sounds", "MissingSounds.txt", "TextSearchPathSnd", &Settings::TextSearchPathSnd,
       &Settings::SoundDest, [](const Settings& settings) { return settings.CheckDoSounds; }},
      {"Mesh", "mesh", "meshes", "MissingMeshes.txt", "TextSearchPathMesh", &Settings::TextSearchPathMesh,
       &Settings::MeshDest,
       [](const Settings& settings) { return settings.CheckDoMeshes && settings.CheckReportMissingMeshes; }},
  }};
  return kinds[static_cast<std::size_t>(kind)];
}

} // namespace quarvel
