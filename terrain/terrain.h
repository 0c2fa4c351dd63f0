#pragma once

#include "scene/scene_context.h"
#include "t3d/terrain_record.h"
#include "terrain/heightfield.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quarvel {

/// Writes the terrains of a scene. Those that are alike but for their place share the geometry of the first.
class TerrainWriter {
 public:
  explicit TerrainWriter(SceneContext& context) : context_(context) {}

  /// Writes a terrain as an elevation grid, or as face sets with `OptionTerrainIFS`. False when there is no heightmap
  /// that it can be made of, or the same one has made too many others; why not is among the findings.
  bool Write(const TerrainRecord& terrain);

 private:
  /// The geometry of a terrain that stands in the scene.
  struct Surface {
    int Width = 0, Height = 0; ///< samples
    int Texture = 0;
    bool ShowsHiddenSquares = false;
    std::vector<std::string> Geometries; ///< DEF names
  };

  void WriteTransform(const TerrainRecord& terrain, Surface& surface, const std::optional<Heightfield>& field);
  void WriteSurface(const Heightfield& field, const TerrainRecord& terrain, const std::string& name, Surface& surface);

  SceneContext& context_;
  std::map<std::string, Surface> surfaces_;  ///< by what makes them what they are
  std::map<std::string, int> surfacesOfMap_; ///< their number, by the heightmap's name in lower case
};

} // namespace quarvel
