#include "scene/mesh_inlines.h"

#include "base/ascii_text.h"
#include "math/number_text.h"

namespace quarvel {

bool NamesMesh(std::string_view reference) { return !reference.empty() && !SameText(reference, "None"); }

/// Files with reversed faces may stand beside the others under a name of their own.
std::string MeshInliner::FileReference(std::string_view mesh) const {
  const bool reversed = settings_.CheckMeshAppendCCW && !settings_.CheckCCW;
  return ParseReference(mesh).Text + (reversed ? "-" : "");
}

const MeshFiles& MeshInliner::Find(std::string_view mesh) {
  return resources_.FindMesh(FileReference(mesh), settings_.CheckReportMissingMeshes);
}

/// Mesh files are in scene units, so the world's scale does not apply.
Vector3 MeshInliner::SceneScale(const Vector3& drawScale3D, double drawScale) const {
  const Vector3 scale = ScaleVector(drawScale3D, drawScale * settings_.TextMeshScale);
  return {scale.X, scale.Z, scale.Y};
}

void MeshInliner::WriteInline(std::string_view mesh, const MeshFiles& files, const std::string& indent) {
  const auto [known, isNew] = names_.try_emplace({files.Wrl.Url, files.X3d.Url});
  if (!isNew) {
    scene_.Use(indent, "Inline", known->second);
    return;
  }
  known->second = scene_.TakeName(MakeDefName("MSH_" + ParseReference(mesh).Name));
  const ResourceFile& inText = files.Wrl.Found ? files.Wrl : files.X3d;
  const ResourceFile& inDocument = files.X3d.Found ? files.X3d : files.Wrl;
  SceneNode node = scene_.Open(indent, "Inline", known->second);
  node.Strings((indent + "  url").c_str(), PerScene{inText.Url, inDocument.Url});
}

void MeshInliner::WritePlacedMesh(const StaticMeshRecord& actor, std::string_view mesh) {
  const std::string name = scene_.TakeName(MakeDefName("MSHT_" + actor.Header.Name));
  SceneNode transform = scene_.Open("", "Transform", name);
  transform.Field("  translation", space_.PositionText(actor.Location));
  transform.Field("  rotation", space_.RotationText(BrushRotator(actor.Rotation)));
  transform.Field("  scale", FormatVec(SceneScale(actor.DrawScale3D, actor.DrawScale)));
  transform.Children("  ");
  if (const MeshFiles& files = Find(mesh); files.Found()) WriteInline(mesh, files, "    ");
}

void MeshInliner::WriteMoverMesh(const BrushRecord& mover) {
  const MeshFiles& files = Find(mover.StaticMesh);
  if (!files.Found()) return;
  const std::string scale = FormatVec(SceneScale(mover.DrawScale3D, mover.DrawScale));
  if (scale == "1 1 1") return WriteInline(mover.StaticMesh, files, "    ");
  // The mover's own Transform is not scaled: its keys are in the level's units.
  SceneNode scaled = scene_.Open("    ", "Transform");
  scaled.Field("      scale", scale);
  scaled.Children("      ");
  WriteInline(mover.StaticMesh, files, "        ");
}

} // namespace quarvel
