#include "scene/brush_geometry.h"

#include "math/number_text.h"
#include "resources/url.h"
#include "scene/face_sets.h"
#include "scene/geometry_fields.h"

namespace quarvel {

namespace {

void ReplaceAll(std::string& text, std::string_view what, std::string_view by) {
  for (std::size_t at = text.find(what); at != text.npos; at = text.find(what, at + by.size()))
    text.replace(at, what.size(), by);
}

void ShowMapping(GeometryContext& context, const ChosenFace& face) {
  const TextureFile& file = context.Materials.Entry(face.TextureNumber).File;
  const TexturePlane plane = MakeTexturePlane(*face.Polygon, file.Width, file.Height);
  std::vector<TexturePoint> corners;
  for (const Vector3& vertex : face.Polygon->Vertices)
    corners.push_back(TextureCoordinateOf(plane, vertex));
  context.User.ShowTextureMapping(file.Source, corners);
}

std::vector<ChosenFace> ChooseFaces(GeometryContext& context, const BrushRecord& brush, const BrushPlacement& placement,
                                    Bounds3& bounds) {
  std::vector<ChosenFace> faces;
  faces.reserve(brush.Polygons.size());
  const auto first = static_cast<int>(RoundToInteger(context.Settings.TextStartAtPoly, 0, 1 << 30));
  for (int number = first; number < static_cast<int>(brush.Polygons.size()); ++number) {
    const PolygonRecord& polygon = brush.Polygons[static_cast<std::size_t>(number)];
    if (IsIgnoredFace(polygon, context.Settings)) {
      context.User.ShowItem("ignoring face ", number);
      continue;
    }
    context.User.ShowItem("on face ", number);
    context.User.ShowItem("converting vertices");
    for (const Vector3& vertex : polygon.Vertices)
      GrowBounds(bounds, TransformPoint(placement.WorldMatrix, vertex));
    context.User.ShowItem("processing texture");
    faces.push_back({&polygon, number, context.Materials.TextureNumber(polygon.Texture, polygon.Flags)});
    if (context.User.WantsTextureMapping()) ShowMapping(context, faces.back());
  }
  return faces;
}

/// Two-sided, masked and translucent surfaces are seen from behind.
bool IsSolid(std::uint32_t flags) { return (flags & (SurfaceTwoSided | SurfaceMasked | SurfaceTranslucent)) == 0; }

/// Point lists are long: the values follow on a line of their own.
void WritePoints(SceneWriter& scene, pugi::xml_node geometry, std::string_view lead, const char* type,
                 const std::string& def, const std::string& points) {
  const SceneNode node = scene.OpenUnrouted(geometry, lead, type, def, " { point [");
  AddAttribute(node.Element(), "point", points);
  scene.Line(points, "]");
  scene.Line("        }");
}

/// One list serves both indices, since a corner is a position and a texture coordinate.
void WriteIndices(SceneWriter& scene, const std::string& indices) {
  for (const char* field : {"        coordIndex [", "        texCoordIndex ["}) {
    scene.Line(field);
    scene.Line("          ", indices);
    scene.Line("        ]");
  }
}

void WriteFaceSet(GeometryContext& context, const FaceSet& set, const std::string& brushName, int number, bool mirrored,
                  pugi::xml_node parent) {
  SceneWriter& scene = context.Scene;
  const ConversionSettings& settings = context.Settings;
  const std::string piece = scene.PieceNames.Take(brushName + std::to_string(number));
  const pugi::xml_node shape = scene.Open(parent, "    ", "Shape").Element();
  context.Materials.WriteAppearance(set.TextureNumber, shape, context.User);

  SceneNode geometry = scene.OpenUnrouted(shape, "      geometry ", "IndexedFaceSet", "F_" + piece);
  if (settings.CheckCreaseAngle) geometry.Field("        creaseAngle", FormatFlt(settings.TextCreaseAngle * Pi / 180));
  geometry.Flag("        ccw", settings.CheckCCW != mirrored);
  geometry.Flag("        solid", IsSolid(set.Flags));
  const std::string indices = IndexList(set.Faces);
  geometry.Attribute("coordIndex", indices);
  geometry.Attribute("texCoordIndex", indices);
  WritePoints(scene, geometry.Element(), "        coord ", "Coordinate", "C_" + piece, PointList(set.Points));
  WritePoints(scene, geometry.Element(), "        texCoord ", "TextureCoordinate", "TC_" + piece,
              TexturePointList(set.TexturePoints));
  WriteIndices(scene, indices);
  scene.Line("      }");
  scene.Line("    }");
  context.User.ShowItem("saving verts");
}

void WriteSeparateFace(GeometryContext& context, const ChosenFace& face, const BrushPlacement& placement,
                       const std::string& brushName, pugi::xml_node parent) {
  SceneWriter& scene = context.Scene;
  const std::uint32_t flags = face.Polygon->Flags;
  const bool staysSolid = context.Settings.CheckTranslucentSolid && (flags & SurfaceTranslucent);
  const bool passable = (flags & (SurfaceMasked | SurfaceTwoSided)) && !staysSolid;
  if (passable) {
    SceneNode collision = scene.Open(parent, "   ", "Collision");
    WritePassable(collision, "    collide");
    scene.Line("    children [");
    parent = collision.Element();
  }
  WriteFaceSet(context, MakeFaceSet(face, placement, context.Materials), brushName, face.Number, placement.Mirrored,
               parent);
  if (passable) {
    scene.Line("    ]");
    scene.Line("   }");
  }
  scene.Flush(context.File);
}

void WriteMergedFaces(GeometryContext& context, const std::vector<ChosenFace>& faces, bool breakUp,
                      const BrushPlacement& placement, const std::string& brushName, pugi::xml_node parent) {
  int number = 0;
  const auto write = [&](const FaceSet& set) {
    WriteFaceSet(context, set, brushName, number++, placement.Mirrored, parent);
    context.Scene.Flush(context.File);
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

void WriteFaces(GeometryContext& context, const BrushRecord& brush, const std::vector<ChosenFace>& faces,
                const BrushPlacement& placement, const std::string& name, pugi::xml_node parent) {
  if (context.Settings.OptionIFSs) {
    for (const ChosenFace& face : faces)
      WriteSeparateFace(context, face, placement, name, parent);
  } else {
    const bool isBuilderBrush = brush.CsgOper.empty() || brush.Header.Class.empty();
    const bool breakUp = context.Settings.CheckBreakUpBB && isBuilderBrush;
    WriteMergedFaces(context, faces, breakUp, placement, name, parent);
  }
}

SceneNode OpenTransform(SceneWriter& scene, const BrushPlacement& placement, const std::string& name) {
  SceneNode transform = scene.Open(scene.Group, "", "Transform", name);
  transform.Field("  translation", placement.Translation);
  transform.TextField("  scale", placement.Scale);
  transform.Field("  rotation", placement.Rotation);
  if (placement.Scale != "1 1 1") transform.Attribute("scale", placement.Scale);
  scene.Line("  children [");
  return transform;
}

/// The parent of the brush's shapes: the Transform, or the Anchor that makes them a link.
pugi::xml_node OpenAnchor(SceneWriter& scene, pugi::xml_node transform, const std::string& address) {
  if (address.empty()) return transform;
  SceneNode anchor = scene.Open(transform, " ", "Anchor");
  anchor.Strings("  url", address);
  scene.Line("  children [");
  return anchor.Element();
}

void ReportOddities(GeometryContext& context, const BrushRecord& brush, const std::string& name) {
  const std::string& actor = brush.Header.Name.empty() ? name : brush.Header.Name;
  if (brush.DamagedPolygons > 0)
    context.Findings.Add(actor,
                         std::to_string(brush.DamagedPolygons) + " of its polygons have no end and were left out");
}

} // namespace

WrittenBrush WriteBrush(GeometryContext& context, const BrushRecord& brush,
                        const std::function<void(pugi::xml_node)>& extraChildren) {
  SceneWriter& scene = context.Scene;
  WrittenBrush written;
  written.Name = scene.Names.Take(BrushName(brush.Header, context.GeometryCount));
  ReportOddities(context, brush, written.Name);
  const BrushPlacement placement = PlaceBrush(brush, context.Settings.TextScale, scene.ConversionMatrix);
  const std::vector<ChosenFace> faces = ChooseFaces(context, brush, placement, written.Bounds);
  const std::string address = WebAddress(brush.Url);

  const SceneNode transform = OpenTransform(scene, placement, written.Name);
  WriteFaces(context, brush, faces, placement, written.Name, OpenAnchor(scene, transform.Element(), address));
  if (!address.empty()) {
    scene.Line("  ]");
    scene.Line(" }");
  }
  if (extraChildren) extraChildren(transform.Element());
  scene.Line("  ]");
  scene.Line("}");
  context.User.ShowItem("done poly");

  context.Faces += static_cast<int>(faces.size());
  ++context.GeometryCount;
  if (!IsEmpty(written.Bounds)) {
    GrowBounds(context.Bounds, written.Bounds.Min);
    GrowBounds(context.Bounds, written.Bounds.Max);
  }
  return written;
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

bool IsIgnoredFace(const PolygonRecord& polygon, const ConversionSettings& settings) {
  if (polygon.Flags & (SurfaceInvisible | SurfaceFakeBackdrop)) return true;
  return settings.CheckIgnore && (polygon.Texture.empty() || SameText(polygon.Texture, "DefaultTexture"));
}

} // namespace quarvel
