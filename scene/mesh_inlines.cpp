#include "scene/mesh_inlines.h"

#include "math/number_text.h"
#include "math/rotation.h"

namespace quarvel {

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

void MeshInliner::WriteInline(std::string_view mesh, const MeshFiles& files, pugi::xml_node parent,
                              const std::string& indent) {
  const auto [known, isNew] = names_.try_emplace({files.Wrl.Url, files.X3d.Url});
  if (!isNew) {
    scene_.Use(parent, indent, "Inline", known->second);
    return;
  }
  known->second = scene_.Names.Take(MakeDefName("MSH_" + ParseReference(mesh).Name));
  const ResourceFile& inText = files.Wrl.Found ? files.Wrl : files.X3d;
  const ResourceFile& inDocument = files.X3d.Found ? files.X3d : files.Wrl;
  const SceneNode node = scene_.Open(parent, indent, "Inline", known->second);
  scene_.Line(indent, "  url \"", inText.Url, "\"");
  scene_.Line(indent, "}");
  const std::string quote = scene_.Conforming() ? "\"" : "";
  AddAttribute(node.Element(), "url", quote + inDocument.Url + quote);
}

void MeshInliner::WritePlacedMesh(const StaticMeshRecord& actor, std::string_view mesh) {
  const Vector3 place = ToSceneAxes(scene_.ConversionMatrix, ScaleVector(actor.Location, settings_.TextScale));
  const std::string name = scene_.Names.Take(MakeDefName("MSHT_" + actor.Header.Name));
  SceneNode transform = scene_.Open(scene_.Group, "", "Transform", name);
  transform.Field("  translation", FormatVec(place));
  transform.Field("  rotation", RotatorToAxisAngleText(BrushRotator(actor.Rotation), scene_.ConversionMatrix));
  transform.Field("  scale", FormatVec(SceneScale(actor.DrawScale3D, actor.DrawScale)));
  scene_.Line("  children [");
  if (const MeshFiles& files = Find(mesh); files.Found()) WriteInline(mesh, files, transform.Element(), "    ");
  scene_.Line("  ]");
  scene_.Line("}");
}

void MeshInliner::WriteMoverMesh(const BrushRecord& mover, pugi::xml_node transform) {
  const MeshFiles& files = Find(mover.StaticMesh);
  if (!files.Found()) return;
  const std::string scale = FormatVec(SceneScale(mover.DrawScale3D, mover.DrawScale));
  if (scale == "1 1 1") return WriteInline(mover.StaticMesh, files, transform, "    ");
  // The mover's own Transform is not scaled: its keys are in the level's units.
  SceneNode scaled = scene_.Open(transform, "    ", "Transform");
  scaled.Field("      scale", scale);
  scene_.Line("      children [");
  WriteInline(mover.StaticMesh, files, scaled.Element(), "        ");
  scene_.Line("      ]");
  scene_.Line("    }");
}

} // namespace quarvel
