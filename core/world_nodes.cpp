#include "core/world_nodes.h"

#include "base/level_text.h"
#include "math/number_text.h"
#include "resources/url.h"

#include <algorithm>

namespace quarvel {

void WriteWorldInfo(SceneWriter& scene, const LevelRecord& info) {
  SceneNode world = scene.Open("", "WorldInfo", {}, {.AfterBrace = 1});
  if (info.Author.empty())
    world.Attribute("info", "");
  else
    world.Strings("info", "Author: " + MakeSceneText(info.Author), Brackets::Tight);
  world.String("title", MakeSceneText(info.Title));
}

void WriteFog(SceneContext& context, const ZoneBlock& zone, const std::string& actor) {
  if (!zone.ColorInRange) context.Findings.Add(FindingCode::FogColorOutOfRange, actor);
  if (zone.DistanceFogEnd < 0) context.Findings.Add(FindingCode::FogEndBelowZero, actor);
  const ColorRGB& color = zone.DistanceFogColor;
  SceneNode fog = context.Scene.Open("", "Fog");
  fog.Field(" color", FormatVec({color.R / 255.0, color.G / 255.0, color.B / 255.0}));
  fog.Field(" visibilityRange", FormatFlt(std::max(zone.DistanceFogEnd, 0.0) * context.Space.Scale()));
}

void WriteSkyZoneWorld(SceneContext& context, const SkyZoneRecord& zone) {
  SceneWriter& scene = context.Scene;
  const std::string name = SkySceneName(zone), url = EncodeUrlPath(name);
  const std::string inTextName = "WT_" + name + "World", inDocumentName = name + "World";
  SceneNode transform = scene.Open("", "Transform", inTextName, {.Routed = false});
  // Names are to be unique (X3D, clause 4.4.3).
  if (!scene.Conforming()) scene.NoteQuirk("the two nodes of one name that place the sky in the .x3d");
  if (!scene.Conforming()) transform.Attribute("DEF", inDocumentName);
  transform.Field(" translation", context.Space.PositionText(zone.Location));
  transform.Children(" ");
  SceneNode sky = scene.Open("  ", "Inline");
  sky.Attribute("DEF", inDocumentName);
  sky.Strings("   url", PerScene{url + ".wrl", url + ".x3d"}, Brackets::Tight);
}

std::string SkySceneName(const SkyZoneRecord& zone) { return FileNameOf(MakeDefName(zone.Header.Name)); }

} // namespace quarvel
