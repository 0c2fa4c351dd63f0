#pragma once

#include "resources/resource_files.h"
#include "scene/node_writer.h"
#include "scene/scene_space.h"
#include "settings/conversion_settings.h"
#include "t3d/brush_record.h"
#include "t3d/placement_records.h"

#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace quarvel {

/// Whether an actor's reference to a mesh refers to one.
bool NamesMesh(std::string_view reference);

/// Writes the meshes of a run, which stand in files of their own: each is inlined once, and by name afterwards.
class MeshInliner {
 public:
  MeshInliner(SceneWriter& scene, ResourceFiles& resources, const ConversionSettings& settings, const SceneSpace& space)
      : scene_(scene), resources_(resources), settings_(settings), space_(space) {}

  /// True when there is a file for a mesh of this name.
  bool HasMesh(std::string_view mesh) { return resources_.HasMesh(FileReference(mesh)); }

  /// Writes the Transform of an actor that stands at a place, and in it its mesh, given by reference. Without a file
  /// for the mesh the Transform stays empty.
  void WritePlacedMesh(const StaticMeshRecord& actor, std::string_view mesh);

  /// Writes the mesh of a mover into the mover's own Transform, which is open, so that what moves the one moves the
  /// other.
  void WriteMoverMesh(const BrushRecord& mover);

 private:
  std::string FileReference(std::string_view mesh) const;
  const MeshFiles& Find(std::string_view mesh);
  void WriteInline(std::string_view mesh, const MeshFiles& files, const std::string& indent);
  Vector3 SceneScale(const Vector3& drawScale3D, double drawScale) const;

  SceneWriter& scene_;
  ResourceFiles& resources_;
  const ConversionSettings& settings_;
  const SceneSpace& space_;
  std::map<std::pair<std::string, std::string>, std::string> names_; ///< DEF names by the URLs of the two files
};

} // namespace quarvel
