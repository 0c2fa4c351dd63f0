#include "scene/face_set_writer.h"

#include "math/number_text.h"
#include "scene/geometry_fields.h"

#include <map>
#include <tuple>

namespace quarvel {

namespace {

/// The colours of a face set, each once.
struct ColorLists {
  std::string Colors, Indices;
};

ColorLists ListColors(const std::vector<std::vector<Vector3>>& faceColors, const char* alpha) {
  ColorLists lists;
  std::map<std::string, int> known;
  std::vector<std::vector<int>> faces;
  for (const std::vector<Vector3>& colors : faceColors) {
    std::vector<int>& face = faces.emplace_back();
    for (const Vector3& color : colors) {
      const std::string text = FormatVec(color) + alpha;
      const auto [at, isNew] = known.try_emplace(text, static_cast<int>(known.size()));
      if (isNew) lists.Colors += (known.size() == 1 ? "" : ", ") + text;
      face.push_back(at->second);
    }
  }
  lists.Indices = IndexList(faces);
  return lists;
}

/// The same list with one colour for all corners.
ColorLists OneColor(const FaceSet& set, const char* color) {
  std::vector<std::vector<int>> faces;
  for (const std::vector<int>& face : set.Faces)
    faces.emplace_back(face.size(), 0);
  return {color, IndexList(faces)};
}

void WriteColorList(SceneNode& geometry, const char* type, const ColorLists& lists, SceneScope scope) {
  geometry.Writer().OneListNode("        color ", type, {}, "color", lists.Colors, scope);
  geometry.List("        colorIndex", lists.Indices, scope);
}

/// Without a Material, colours carry the light that a light map does not, and transparency: VRML97 has no light maps,
/// and X3D's MultiTexture is opaque in some viewers unless the colours have an alpha.
void WriteBakedColors(SceneNode& geometry, const FaceSet& set) {
  const bool x3dText = geometry.Writer().IsX3DClassic();
  const bool translucent = (set.Flags & SurfaceTranslucent) != 0, masked = (set.Flags & SurfaceMasked) != 0;
  const bool mapped = set.LightPage != MaterialWriter::NoPage;
  const SceneScope x3d = x3dText ? SceneScope::Both : SceneScope::Document;
  if (translucent || (masked && mapped)) {
    const char* alpha = translucent ? " 0.5" : " 1";
    const bool coloured = !mapped && !set.FaceColors.empty();
    WriteColorList(geometry, "ColorRGBA",
                   coloured ? ListColors(set.FaceColors, alpha) : OneColor(set, (std::string("1 1 1") + alpha).c_str()),
                   x3d);
  } else if (!mapped && !set.FaceColors.empty()) {
    WriteColorList(geometry, "Color", ListColors(set.FaceColors, ""), x3d);
  }
  if (!x3dText && !translucent && !set.FaceColors.empty())
    WriteColorList(geometry, "Color", ListColors(set.FaceColors, ""), SceneScope::Text);
}

/// `hasImage` says that the surface has a texture besides its light map.
void WriteTexturePoints(SceneWriter& scene, const FaceSet& set, const std::string& piece, bool hasImage) {
  constexpr const char* lead = "        texCoord ";
  const std::string points = TexturePointList(set.TexturePoints);
  if (set.LightPage == MaterialWriter::NoPage)
    return scene.OneListNode(lead, "TextureCoordinate", "TC_" + piece, "point", points);
  const SceneScope maps = scene.IsX3DClassic() ? SceneScope::Both : SceneScope::Document;
  if (!hasImage) {
    if (!scene.IsX3DClassic())
      scene.OneListNode(lead, "TextureCoordinate", "TC_" + piece, "point", points, SceneScope::Text);
    return scene.OneListNode(lead, "TextureCoordinate", "TL_" + piece, "point", TexturePointList(set.LightPoints),
                             maps);
  }
  SceneNode both = scene.Open(lead, "MultiTextureCoordinate", {}, {.Scope = maps});
  both.Nodes("          texCoord");
  const char* inner = "            ";
  scene.OneListNode(scene.IsX3DClassic() ? inner : lead, "TextureCoordinate", "TC_" + piece, "point", points);
  scene.OneListNode(inner, "TextureCoordinate", "TL_" + piece, "point", TexturePointList(set.LightPoints), maps);
}

} // namespace

void WriteFaceSet(SceneContext& context, const FaceSet& set, const std::string& name, bool mirrored) {
  SceneWriter& scene = context.Scene;
  const ConversionSettings& settings = context.Settings;
  const std::string piece = scene.TakePieceName(name);
  SceneNode shape = scene.Open("    ", "Shape");
  if (context.Light)
    context.Materials.WriteBakedAppearance(set.TextureNumber, set.LightPage, context.User);
  else
    context.Materials.WriteAppearance(set.TextureNumber, context.User);

  SceneNode geometry = scene.Open("      geometry ", "IndexedFaceSet", "F_" + piece, {.Routed = false});
  if (settings.CheckCreaseAngle) geometry.Field("        creaseAngle", FormatFlt(settings.TextCreaseAngle * Pi / 180));
  geometry.Flag("        ccw", settings.CheckCCW != mirrored);
  geometry.Flag("        solid", IsSolidFace(set.Flags));
  scene.OneListNode("        coord ", "Coordinate", "C_" + piece, "point", PointList(set.Points));
  if (context.Light) WriteBakedColors(geometry, set);
  WriteTexturePoints(scene, set, piece, !context.Materials.Entry(set.TextureNumber).File.Url.empty());
  const std::string indices = IndexList(set.Faces);
  geometry.List("        coordIndex", indices);
  geometry.List("        texCoordIndex", set.TextureFaces.empty() ? indices : IndexList(set.TextureFaces));
  geometry.Close();
  shape.Close();
  context.User.ShowItem("saving verts");
}

} // namespace quarvel
