#include "actors/light_sprites.h"

#include "base/ascii_text.h"
#include "base/reference.h"
#include "math/number_text.h"
#include "t3d/brush_record.h"

namespace quarvel {

namespace {

constexpr double unknownSize = 32; // pixels

/// Sprites glow by themselves.
std::uint32_t SurfaceFlagsOf(const DisplayBlock& display) {
  std::uint32_t flags = SurfaceUnlit;
  if (SameText(display.Style, "STY_Translucent")) flags |= SurfaceTranslucent;
  if (SameText(display.Style, "STY_Masked")) flags |= SurfaceMasked;
  return flags;
}

std::string BoxSize(const SceneContext& context, const DisplayBlock& display, const TextureFile& image) {
  const double scale = display.DrawScale * context.Settings.TextSpriteScale * context.Space.Scale();
  const double width = image.Width > 0 ? image.Width : unknownSize,
               height = image.Height > 0 ? image.Height : unknownSize;
  return FormatFlt(width * scale) + " " + FormatFlt(height * scale) + " 0.0001";
}

} // namespace

bool HasSpriteTexture(std::string_view texture) { return !texture.empty() && !SameText(texture, "None"); }

bool HasSprite(SceneContext& context, const DisplayBlock& display, const std::string& actor) {
  if (!HasSpriteTexture(display.Texture)) return false;
  if (display.DrawScale > 0) return true;
  context.Findings.Add(FindingCode::SpriteWithoutSize, actor);
  return false;
}

void WriteLightSprite(SceneContext& context, const DisplayBlock& display) {
  SceneWriter& scene = context.Scene;
  const int texture = context.Materials.TextureNumber(ParseReference(display.Texture).Text, SurfaceFlagsOf(display));
  SceneNode billboard = scene.Open("", "Billboard");
  billboard.Field(" axisOfRotation", "0 0 0");
  billboard.Children(" ");
  SceneNode collision = scene.Open(" ", "Collision", {}, {.Closing = 2});
  WritePassable(collision, "  collide");
  collision.Children("   ");
  const SceneNode shape = scene.Open("    ", "Shape");
  context.Materials.WriteAppearance(texture, context.User);
  scene.OneFieldNode("     geometry ", "Box", "size", BoxSize(context, display, context.Materials.Entry(texture).File));
}

void WritePlacedSprite(SceneContext& context, const DisplayBlock& display, const Vector3& location,
                       const std::string& name) {
  SceneNode transform = context.Scene.Open("", "Transform", name);
  transform.Field(" translation", context.Space.PositionText(location));
  transform.Children(" ", 2);
  WriteLightSprite(context, display);
}

} // namespace quarvel
