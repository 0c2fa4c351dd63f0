#include "actors/light_sprites.h"

#include "base/ascii_text.h"
#include "base/reference.h"
#include "math/number_text.h"
#include "scene/face_set_writer.h"
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

/// In scene units.
struct SpriteSize {
  double Width = 0, Height = 0;
};

SpriteSize SizeOf(const SceneContext& context, const DisplayBlock& display, const TextureFile& image) {
  const double scale = display.DrawScale * context.Settings.TextSpriteScale * context.Space.Scale();
  return {scale * (image.Width > 0 ? image.Width : unknownSize),
          scale * (image.Height > 0 ? image.Height : unknownSize)};
}

/// Where no light falls, a sprite glows without a Material, and a translucent one has transparent colours.
void WriteGlowingQuad(SceneContext& context, int texture, std::uint32_t flags, const SpriteSize& size) {
  const double x = size.Width / 2, y = size.Height / 2;
  FaceSet quad;
  quad.TextureNumber = texture;
  quad.Flags = flags | SurfaceTwoSided;
  quad.Points = {{-x, -y, 0}, {x, -y, 0}, {x, y, 0}, {-x, y, 0}};
  quad.TexturePoints = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
  quad.Faces = {{0, 1, 2, 3}};
  WriteFaceSet(context, quad, "Sprite");
}

void WriteBox(SceneContext& context, int texture, const SpriteSize& size) {
  const SceneNode shape = context.Scene.Open("    ", "Shape");
  context.Materials.WriteAppearance(texture, context.User);
  context.Scene.OneFieldNode("     geometry ", "Box", "size",
                             FormatFlt(size.Width) + " " + FormatFlt(size.Height) + " 0.0001");
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
  const SpriteSize size = SizeOf(context, display, context.Materials.Entry(texture).File);
  if (context.Light)
    WriteGlowingQuad(context, texture, SurfaceFlagsOf(display), size);
  else
    WriteBox(context, texture, size);
}

void WritePlacedSprite(SceneContext& context, const DisplayBlock& display, const Vector3& location,
                       const std::string& name) {
  SceneNode transform = context.Scene.Open("", "Transform", name);
  transform.Field(" translation", context.Space.PositionText(location));
  transform.Children(" ", 2);
  WriteLightSprite(context, display);
}

} // namespace quarvel
