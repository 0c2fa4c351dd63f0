#include "terrain/terrain.h"

#include "images/image_size.h"
#include "math/number_text.h"
#include "scene/geometry_fields.h"
#include "terrain/heightfield.h"
#include "terrain/terrain_light.h"

#include <algorithm>
#include <optional>

namespace quarvel {

namespace {

/// Neighbouring squares are shaded as one surface, unless the user asks for an angle of their own.
constexpr double smoothAngle = Pi / 2;

std::optional<Heightmap> LeaveOut(SceneContext& context, const TerrainRecord& terrain, const std::string& reason) {
  context.Findings.Add(FindingCode::TerrainLeftOut, terrain.Header.Name, reason);
  return std::nullopt;
}

std::optional<Heightmap> FindHeightmap(SceneContext& context, const TerrainRecord& terrain) {
  if (terrain.TerrainMap.empty()) return LeaveOut(context, terrain, "it names no heightmap");
  const auto file = context.Resources.FindTextureSource(terrain.TerrainMap);
  if (!file) return LeaveOut(context, terrain, "its heightmap " + terrain.TerrainMap + " was not found");
  // The header tells the size before memory is taken for the samples.
  if (const auto size = ReadImageSize(*file))
    if (const std::string why = WhyNoHeightfield(terrain, size->Width, size->Height); !why.empty())
      return LeaveOut(context, terrain, why);
  HeightmapResult result = ReadHeightmap(*file);
  if (!result.Map) return LeaveOut(context, terrain, "its heightmap cannot be read: " + result.Error);
  if (const std::string why = WhyNoHeightfield(terrain, result.Map->Width, result.Map->Height); !why.empty())
    return LeaveOut(context, terrain, why);
  return std::move(result.Map);
}

void WriteSurfaceFields(SceneNode& geometry, const ConversionSettings& settings) {
  const double angle = settings.CheckCreaseAngle ? settings.TextCreaseAngle * Pi / 180 : smoothAngle;
  geometry.Field("        creaseAngle", FormatFlt(angle));
  geometry.Flag("        ccw", !settings.CheckCCW);
  geometry.Flag("        solid", false);
}

void WriteTexturePoints(SceneWriter& scene, const std::vector<TexturePoint>& points) {
  scene.OneListNode("        texCoord ", "TextureCoordinate", {}, "point", TexturePointList(points));
}

/// The light of the samples, where it is baked; else none.
std::vector<Vector3> ColorsOf(const SceneContext& context, const Heightfield& field) {
  return context.Light ? TerrainColors(*context.Light, field, context.Space) : std::vector<Vector3>();
}

void WriteColors(SceneWriter& scene, const std::vector<Vector3>& colors) {
  if (!colors.empty()) scene.OneListNode("        color ", "Color", {}, "color", PointList(colors));
}

/// Writes a shape of this texture; `writeFields` is handed its geometry node.
template <typename WriteFields>
void WriteShape(SceneContext& context, int texture, const char* type, WriteFields writeFields) {
  SceneNode shape = context.Scene.Open("    ", "Shape");
  if (context.Light)
    context.Materials.WriteBakedAppearance(texture, MaterialWriter::NoPage, context.User);
  else
    context.Materials.WriteAppearance(texture, context.User);
  SceneNode geometry = context.Scene.Open("      geometry ", type);
  writeFields(geometry);
  geometry.Close();
  shape.Close();
  context.Scene.Flush();
}

std::string HeightList(const Heightfield& field) {
  std::string list;
  list.reserve(field.Heights.size() * 10);
  for (const double height : field.Heights) {
    if (!list.empty()) list += ' ';
    AppendFlt(list, height);
  }
  return list;
}

std::vector<TexturePoint> TexturePointsOf(const Heightfield& field) {
  std::vector<TexturePoint> points;
  points.reserve(field.Heights.size());
  for (int y = 0; y < field.Height; ++y)
    for (int x = 0; x < field.Width; ++x)
      points.push_back(TerrainTexturePoint(field, x, y));
  return points;
}

bool HasHiddenSquare(const Heightfield& field, const TerrainRecord& terrain) {
  for (int y = 0; y < field.Height - 1; ++y)
    for (int x = 0; x < field.Width - 1; ++x)
      if (!IsVisibleSquare(terrain, field.Width, x, y)) return true;
  return false;
}

void WriteElevationGrid(SceneContext& context, const Heightfield& field, const TerrainRecord& terrain, int texture) {
  WriteShape(context, texture, "ElevationGrid", [&](SceneNode& grid) {
    grid.Field("        xDimension", std::to_string(field.Width));
    grid.Field("        zDimension", std::to_string(field.Height));
    grid.Field("        xSpacing", FormatFlt(field.SpacingX));
    grid.Field("        zSpacing", FormatFlt(field.SpacingZ));
    WriteSurfaceFields(grid, context.Settings);
    grid.List("        height", HeightList(field));
    WriteColors(context.Scene, ColorsOf(context, field));
    if (BaseLayer(terrain)) WriteTexturePoints(context.Scene, TexturePointsOf(field));
  });
  if (HasHiddenSquare(field, terrain)) context.Findings.Add(FindingCode::HiddenSquares, terrain.Header.Name);
}

void WritePatch(SceneContext& context, const TerrainPatch& patch, const std::vector<Vector3>& colors, bool textured,
                int texture) {
  SceneWriter& scene = context.Scene;
  WriteShape(context, texture, "IndexedFaceSet", [&](SceneNode& faces) {
    WriteSurfaceFields(faces, context.Settings);
    scene.OneListNode("        coord ", "Coordinate", scene.TakeName("C_TerrainCoords"), "point",
                      PointList(patch.Points));
    WriteColors(scene, colors);
    if (textured) WriteTexturePoints(scene, patch.TexturePoints);
    faces.List("        coordIndex", IndexList(patch.Faces));
  });
}

void WriteFaceSets(SceneContext& context, const Heightfield& field, const TerrainRecord& terrain, int texture) {
  const std::vector<Vector3> colors = ColorsOf(context, field);
  for (int top = 0; top < field.Height - 1; top += PatchSquares)
    for (int left = 0; left < field.Width - 1; left += PatchSquares) {
      const TerrainPatch patch = MakePatch(field, terrain, left, top);
      if (patch.Faces.empty()) continue;
      WritePatch(context, patch, colors.empty() ? colors : PatchColors(colors, field, patch),
                 BaseLayer(terrain) != nullptr, texture);
    }
}

} // namespace

bool WriteTerrain(SceneContext& context, const TerrainRecord& terrain) {
  const auto map = FindHeightmap(context, terrain);
  if (!map) return false;
  SceneWriter& scene = context.Scene;
  const Heightfield field = MakeHeightfield(*map, terrain, context.Settings.TextTerrainScale, context.Space);
  const TerrainLayer* layer = BaseLayer(terrain);
  const int texture = context.Materials.TextureNumber(layer ? layer->Texture : std::string(), 0, true);

  const std::string name = terrain.Header.Name.empty() ? terrain.Header.Class : terrain.Header.Name;
  SceneNode transform = scene.Open("", "Transform", scene.TakeName(MakeDefName(name)));
  transform.Field("  translation", FormatVec(field.Corner));
  transform.Children("  ");
  if (context.Settings.OptionTerrainIFS)
    WriteFaceSets(context, field, terrain, texture);
  else
    WriteElevationGrid(context, field, terrain, texture);
  transform.Close();
  scene.Flush();
  return true;
}

} // namespace quarvel
