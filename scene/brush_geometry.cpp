#include "scene/brush_geometry.h"

#include "csg/polygon.h"
#include "math/number_text.h"
#include "resources/url.h"
#include "scene/brush_placement.h"
#include "scene/face_set_writer.h"
#include "scene/face_sets.h"
#include "scene/level_light.h"
#include "scene/mesh_light.h"

#include <algorithm>
#include <optional>

namespace quarvel {

namespace {

void ReplaceAll(std::string& text, std::string_view what, std::string_view by) {
  for (std::size_t at = text.find(what); at != text.npos; at = text.find(what, at + by.size()))
    text.replace(at, what.size(), by);
}

void ShowMapping(SceneContext& context, const ChosenFace& face) {
  const TextureFile& file = context.Materials.Entry(face.TextureNumber).File;
  const TexturePlane plane = MakeTexturePlane(*face.Polygon, file.Width, file.Height);
  std::vector<TexturePoint> corners;
  for (const Vector3& vertex : face.Polygon->Vertices)
    corners.push_back(TextureCoordinateOf(plane, vertex));
  context.User.ShowTextureMapping(file.Source, corners);
}

/// The baked light at the corners of a face where it stands.
std::vector<Vector3> ColorsOf(const SceneContext& context, const PolygonRecord& polygon,
                              const BrushPlacement& placement) {
  if (!context.Light || (polygon.Flags & SurfaceUnlit)) return {};
  std::vector<Vector3> corners;
  for (const Vector3& vertex : polygon.Vertices)
    corners.push_back(context.Space.Location(TransformPoint(placement.WorldMatrix, vertex)));
  const Vector3 normal = NormalizeVector(NewellVector(corners));
  return context.Light->OfCorners(corners, placement.Mirrored ? ScaleVector(normal, -1) : normal,
                                  (polygon.Flags & SurfaceSpecialLit) != 0);
}

std::vector<ChosenFace> ChooseFaces(SceneContext& context, const BrushRecord& brush, const BrushPlacement& placement,
                                    Bounds3& bounds) {
  std::vector<ChosenFace> faces;
  faces.reserve(brush.Polygons.size());
  const auto first = static_cast<int>(RoundToInteger(context.Settings.TextStartAtPoly, 0, 1 << 30));
  for (int number = 0; number < std::min(first, static_cast<int>(brush.Polygons.size())); ++number)
    context.Findings.Count(FindingCode::FacesBeforeStart);
  for (int number = first; number < static_cast<int>(brush.Polygons.size()); ++number) {
    const PolygonRecord& polygon = brush.Polygons[static_cast<std::size_t>(number)];
    if (const auto why = WhyIgnored(polygon, context.Settings)) {
      context.Findings.Count(*why);
      context.User.ShowItem("ignoring face ", number);
      continue;
    }
    context.User.ShowItem("on face ", number);
    context.User.ShowItem("converting vertices");
    for (const Vector3& vertex : polygon.Vertices)
      GrowBounds(bounds, TransformPoint(placement.WorldMatrix, vertex));
    context.User.ShowItem("processing texture");
    faces.push_back({&polygon, number, context.Materials.TextureNumber(polygon.Texture, polygon.Flags),
                     ColorsOf(context, polygon, placement)});
    if (context.User.WantsTextureMapping()) ShowMapping(context, faces.back());
  }
  return faces;
}

void WriteSeparateFace(SceneContext& context, const ChosenFace& face, const BrushPlacement& placement,
                       const std::string& brushName) {
  SceneWriter& scene = context.Scene;
  const std::uint32_t flags = face.Polygon->Flags;
  const bool staysSolid = context.Settings.CheckTranslucentSolid && (flags & SurfaceTranslucent);
  const bool passable = (flags & (SurfaceMasked | SurfaceTwoSided)) && !staysSolid;
  std::optional<SceneNode> collision;
  if (passable) {
    collision.emplace(scene.Open("   ", "Collision"));
    WritePassable(*collision, "    collide");
    collision->Children("    ");
  }
  WriteFaceSet(context, MakeFaceSet(face, placement, context.Materials), brushName + std::to_string(face.Number),
               placement.Mirrored);
  if (collision) collision->Close();
  scene.Flush();
}

void WriteMergedFaces(SceneContext& context, const std::vector<ChosenFace>& faces, bool breakUp,
                      const BrushPlacement& placement, const std::string& brushName) {
  int number = 0;
  const auto write = [&](const FaceSet& set) {
    WriteFaceSet(context, set, brushName + std::to_string(number++), placement.Mirrored);
    context.Scene.Flush();
  };
  for (const FaceSet& set : MergeFaces(faces, placement, context.Materials)) {
    if (!breakUp) {
      write(set);
      continue;
    }
    for (const FaceSet& piece : SplitByPosition(set))
      write(piece);
  }
}

void WriteFaces(SceneContext& context, const BrushRecord& brush, const std::vector<ChosenFace>& faces,
                const BrushPlacement& placement, const std::string& name) {
  if (context.Settings.OptionIFSs) {
    for (const ChosenFace& face : faces)
      WriteSeparateFace(context, face, placement, name);
  } else {
    const bool isBuilderBrush = brush.CsgOper.empty() || brush.Header.Class.empty();
    const bool breakUp = context.Settings.CheckBreakUpBB && isBuilderBrush;
    WriteMergedFaces(context, faces, breakUp, placement, name);
  }
}

SceneNode OpenTransform(SceneWriter& scene, const BrushPlacement& placement, const std::string& name) {
  SceneNode transform = scene.Open("", "Transform", name);
  transform.Field("  translation", placement.Translation);
  transform.TextField("  scale", placement.Scale);
  transform.Field("  rotation", placement.Rotation);
  if (placement.Scale != "1 1 1") transform.Attribute("scale", placement.Scale);
  transform.Children("  ");
  return transform;
}

/// Makes a link of the brush's shapes.
SceneNode OpenAnchor(SceneWriter& scene, const std::string& address) {
  SceneNode anchor = scene.Open(" ", "Anchor");
  // The document is written as it stands unless it conforms, and no address can do with another character instead.
  std::string inDocument = address;
  if (!scene.Conforming()) ReplaceAll(inDocument, "&", "&amp;");
  anchor.Strings("  url", PerScene{address, inDocument});
  anchor.Children("  ");
  return anchor;
}

void ReportOddities(SceneContext& context, const BrushRecord& brush, const std::string& name) {
  const std::string& actor = brush.Header.Name.empty() ? name : brush.Header.Name;
  if (brush.DamagedPolygons > 0) context.Findings.Add(FindingCode::PolygonsWithoutEnd, actor, brush.DamagedPolygons);
  const auto flat = std::count_if(brush.Polygons.begin(), brush.Polygons.end(),
                                  [](const PolygonRecord& polygon) { return polygon.Vertices.size() < 3; });
  if (flat > 0) context.Findings.Add(FindingCode::FlatPolygons, actor, flat);
}

} // namespace

WrittenBrush WriteBrush(SceneContext& context, const BrushRecord& brush, int number) {
  SceneWriter& scene = context.Scene;
  WrittenBrush written;
  written.Name = scene.TakeName(BrushName(brush.Header, number));
  ReportOddities(context, brush, written.Name);
  const BrushPlacement placement = PlaceBrush(brush, context.Space);
  const std::vector<ChosenFace> faces = ChooseFaces(context, brush, placement, written.Bounds);
  const std::string address = WebAddress(brush.Url);

  SceneNode transform = OpenTransform(scene, placement, written.Name);
  std::optional<SceneNode> anchor;
  if (!address.empty()) anchor.emplace(OpenAnchor(scene, address));
  WriteFaces(context, brush, faces, placement, written.Name);
  if (anchor) anchor->Close();
  if (HasMeshForPolygons(brush, context.Settings)) {
    const auto lit = OpenMeshLight(context, brush.Location);
    context.Meshes.WriteMoverMesh(brush);
  }
  transform.Close();
  context.User.ShowItem("done poly");

  written.Faces = static_cast<int>(faces.size());
  return written;
}

bool HasMeshForPolygons(const BrushRecord& brush, const ConversionSettings& settings) {
  return settings.CheckDoMeshes && brush.Polygons.empty() && NamesMesh(brush.StaticMesh);
}

std::string BrushName(const ActorHeader& header, int number) {
  if (!header.Class.empty() && !SameText(header.Class, "Brush"))
    return MakeDefName(header.Class + "_" + std::to_string(number));
  if (header.Name.empty()) return "BuildBrush";
  const bool digit = header.Name.front() >= '0' && header.Name.front() <= '9';
  return MakeDefName((digit ? "B_" : "") + header.Name);
}

std::string WebAddress(const std::string& text) {
  if (!StartsWithText(text, "http---") && !StartsWithText(text, "https---")) return {};
  std::string address = text;
  ReplaceAll(address, "---", "://");
  ReplaceAll(address, "--", ".");
  return EncodeWebAddress(address);
}

std::optional<FindingCode> WhyIgnored(const PolygonRecord& polygon, const ConversionSettings& settings) {
  if (polygon.Flags & SurfaceInvisible) return FindingCode::InvisibleFaces;
  if (polygon.Flags & SurfaceFakeBackdrop) return FindingCode::BackdropFaces;
  const bool textured = !polygon.Texture.empty() && !SameText(polygon.Texture, "None") &&
                        !SameText(polygon.Texture, "DefaultTexture") &&
                        !SameText(polygon.Texture, "Engine.DefaultTexture");
  return settings.CheckIgnore && !textured ? std::optional(FindingCode::FacesWithoutTexture) : std::nullopt;
}

} // namespace quarvel
