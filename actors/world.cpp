#include "actors/world.h"

#include "base/level_text.h"
#include "math/number_text.h"
#include "resources/url.h"

#include <algorithm>

namespace quarvel {

namespace {

void WriteWorldInfo(SceneWriter& scene, const LevelRecord& info) {
  SceneNode world = scene.Open("", "WorldInfo", {}, {.AfterBrace = 1});
  if (info.Author.empty())
    world.Attribute("info", "");
  else
    world.Strings("info", "Author: " + MakeSceneText(info.Author), Brackets::Tight);
  world.String("title", MakeSceneText(info.Title));
}

/// `actor` is the zone's name, for the report of values out of range.
void WriteFog(SceneContext& context, const ZoneBlock& zone, const std::string& actor) {
  if (!zone.ColorInRange) context.Findings.Add(FindingCode::FogColorOutOfRange, actor);
  if (zone.DistanceFogEnd < 0) context.Findings.Add(FindingCode::FogEndBelowZero, actor);
  const ColorRGB& color = zone.DistanceFogColor;
  SceneNode fog = context.Scene.Open("", "Fog");
  fog.Field(" color", FormatVec({color.R / 255.0, color.G / 255.0, color.B / 255.0}));
  fog.Field(" visibilityRange", FormatFlt(std::max(zone.DistanceFogEnd, 0.0) * context.Space.Scale()));
}

/// Writes the node that inlines the sky's own scene at the sky zone's place.
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

} // namespace

void WriteAmbience(SceneRun& run) {
  const auto infos = ReadAllShown(run, ActorFamily::Level, ReadLevel);
  if (!infos.empty()) WriteWorldInfo(run.Context.Scene, infos.front());
  FlushBlock(run);
  if (!run.Context.Settings.CheckFog) return;
  const auto writeFog = [&](const auto& record) {
    if (record.Zone.bDistanceFog) WriteFog(run.Context, record.Zone, record.Header.Name);
  };
  ForEachActor(run, ActorFamily::Level, ReadLevel, writeFog);
  ForEachActor(run, ActorFamily::Zone, ReadZone, writeFog);
}

void InlineSky(SceneRun& run) {
  if (run.Sky != nullptr) WriteSkyZoneWorld(run.Context, *run.Sky);
}

std::string SkySceneName(const SkyZoneRecord& zone) { return FileNameOf(MakeDefName(zone.Header.Name)); }

} // namespace quarvel
