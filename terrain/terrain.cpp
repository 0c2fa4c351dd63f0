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
/// Different ones; no real level has more than a few.
constexpr int surfacesOfOneMap = 16;

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

/// Writes a shape of this texture; `writeGeometry` writes its geometry node behind the lead that it is handed.
template <typename WriteGeometry>
void WriteShape(SceneContext& context, int texture, WriteGeometry writeGeometry) {
  SceneNode shape = context.Scene.Open("    ", "Shape");
  if (context.Light)
    context.Materials.WriteBakedAppearance(texture, MaterialWriter::NoPage, context.User);
  else
    context.Materials.WriteAppearance(texture, context.User);
  writeGeometry("      geometry ");
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

void WriteElevationGrid(SceneContext& context, const Heightfield& field, bool textured, SceneNode& grid) {
  grid.Field("        xDimension", std::to_string(field.Width));
  grid.Field("        zDimension", std::to_string(field.Height));
  grid.Field("        xSpacing", FormatFlt(field.SpacingX));
  grid.Field("        zSpacing", FormatFlt(field.SpacingZ));
  WriteSurfaceFields(grid, context.Settings);
  grid.List("        height", HeightList(field));
  WriteColors(context.Scene, ColorsOf(context, field));
  if (textured) WriteTexturePoints(context.Scene, TexturePointsOf(field));
}

void WritePatch(SceneContext& context, const TerrainPatch& patch, const std::vector<Vector3>& colors, bool textured,
                SceneNode& faces) {
  SceneWriter& scene = context.Scene;
  WriteSurfaceFields(faces, context.Settings);
  scene.OneListNode("        coord ", "Coordinate", scene.TakeName("C_TerrainCoords"), "point",
                    PointList(patch.Points));
  WriteColors(scene, colors);
  if (textured) WriteTexturePoints(scene, patch.TexturePoints);
  faces.List("        coordIndex", IndexList(patch.Faces));
}

/// All that the geometry of a terrain depends on.
std::string SurfaceKey(const TerrainRecord& terrain) {
  std::string key = LowerCase(terrain.TerrainMap) + " " + FormatGeneral(terrain.TerrainScale.X) + " " +
                    FormatGeneral(terrain.TerrainScale.Y) + " " + FormatGeneral(terrain.TerrainScale.Z);
  if (const TerrainLayer* layer = BaseLayer(terrain))
    key += " " + LowerCase(layer->Texture) + " " + FormatGeneral(layer->UScale) + " " + FormatGeneral(layer->VScale);
  for (const auto bits : terrain.QuadVisibilityBitmap)
    key += " " + std::to_string(bits);
  return key;
}

} // namespace

void TerrainWriter::WriteSurface(const Heightfield& field, const TerrainRecord& terrain, const std::string& name,
                                 Surface& surface) {
  SceneWriter& scene = context_.Scene;
  const bool textured = BaseLayer(terrain) != nullptr;
  const auto writeShape = [&](const char* type, auto writeFields) {
    WriteShape(context_, surface.Texture, [&](const char* lead) {
      surface.Geometries.push_back(scene.TakeName("F_" + name));
      SceneNode geometry = scene.Open(lead, type, surface.Geometries.back(), {.Routed = false});
      writeFields(geometry);
    });
  };
  if (!context_.Settings.OptionTerrainIFS) {
    writeShape("ElevationGrid", [&](SceneNode& grid) { WriteElevationGrid(context_, field, textured, grid); });
    return;
  }
  const std::vector<Vector3> colors = ColorsOf(context_, field);
  for (int top = 0; top < field.Height - 1; top += PatchSquares)
    for (int left = 0; left < field.Width - 1; left += PatchSquares)
      if (const TerrainPatch patch = MakePatch(field, terrain, left, top); !patch.Faces.empty())
        writeShape("IndexedFaceSet", [&](SceneNode& faces) {
          WritePatch(context_, patch, colors.empty() ? colors : PatchColors(colors, field, patch), textured, faces);
        });
}

bool TerrainWriter::Write(const TerrainRecord& terrain) {
  std::string key = SurfaceKey(terrain);
  if (context_.Light) key += " " + terrain.Header.Name + FormatVec(terrain.Location); // each has a light of its own
  auto known = surfaces_.find(key);
  std::optional<Heightfield> field;
  if (known == surfaces_.end()) {
    const auto map = FindHeightmap(context_, terrain);
    if (!map) return false;
    if (++surfacesOfMap_[LowerCase(terrain.TerrainMap)] > surfacesOfOneMap) {
      context_.Findings.Add(FindingCode::TooManyTerrainsOfMap, terrain.Header.Name, surfacesOfOneMap);
      return false;
    }
    field = MakeHeightfield(*map, terrain, context_.Settings.TextTerrainScale, context_.Space);
    const TerrainLayer* layer = BaseLayer(terrain);
    known = surfaces_.try_emplace(key).first;
    known->second.Texture = context_.Materials.TerrainTextureNumber(layer ? layer->Texture : std::string());
    known->second.Width = map->Width;
    known->second.Height = map->Height;
    if (!context_.Settings.OptionTerrainIFS && HasHiddenSquare(*field, terrain))
      known->second.ShowsHiddenSquares = true;
  }
  Surface& surface = known->second;
  if (surface.ShowsHiddenSquares) context_.Findings.Add(FindingCode::HiddenSquares, terrain.Header.Name);
  WriteTransform(terrain, surface, field);
  return true;
}

void TerrainWriter::WriteTransform(const TerrainRecord& terrain, Surface& surface,
                                   const std::optional<Heightfield>& field) {
  SceneWriter& scene = context_.Scene;
  const std::string name =
      scene.TakeName(MakeDefName(terrain.Header.Name.empty() ? terrain.Header.Class : terrain.Header.Name));
  const Vector3 corner = TerrainCorner(surface.Width, surface.Height, terrain, context_.Settings.TextTerrainScale);
  SceneNode transform = scene.Open("", "Transform", name);
  transform.Field("  translation", context_.Space.PositionText(corner));
  transform.Children("  ");
  if (field) {
    WriteSurface(*field, terrain, name, surface);
  } else {
    const char* type = context_.Settings.OptionTerrainIFS ? "IndexedFaceSet" : "ElevationGrid";
    for (const std::string& geometry : surface.Geometries)
      WriteShape(context_, surface.Texture, [&](const char* lead) { scene.Use(lead, type, geometry); });
  }
  transform.Close();
  scene.Flush();
}

} // namespace quarvel
