#include "core/surroundings_passes.h"

#include "scene/texture_animation.h"
#include "t3d/class_defaults.h"
#include "t3d/placement_records.h"
#include "t3d/terrain_record.h"
#include "t3d/world_records.h"
#include "terrain/terrain.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

namespace {

bool NamesMesh(const std::string& reference) { return !reference.empty() && !SameText(reference, "None"); }

/// The classes of actors that have a mesh file, in the order of their first actors.
std::vector<std::string> ClassesWithMesh(RunState& run) {
  std::vector<std::string> classes;
  std::set<std::string_view> known;
  for (const ActorBlock& actor : run.Level.Actors)
    if (!actor.Class.empty() && known.insert(actor.Class).second && run.Meshes.HasMesh(actor.Class))
      classes.emplace_back(actor.Class);
  return classes;
}

void PlaceClassMeshes(RunState& run) {
  for (const std::string& className : ClassesWithMesh(run))
    ForEachActor<StaticMeshRecord>(run, "Class=" + className + " ", ReadStaticMesh, [&](const StaticMeshRecord& actor) {
      run.Meshes.WritePlacedMesh(actor, className);
    });
}

void PlaceStaticMeshes(RunState& run) {
  ForEachActor<StaticMeshRecord>(run, StaticMeshSearchText, ReadStaticMesh, [&](const StaticMeshRecord& actor) {
    if (NamesMesh(actor.StaticMesh))
      run.Meshes.WritePlacedMesh(actor, actor.StaticMesh);
    else
      run.Result.Findings.Count("static mesh actors left out that name no mesh");
  });
}

bool ReadSpeed(const LevelText& level, const ActorBlock& actor, std::string_view key, double& speed) {
  if (!actor.IsComplete() || FindText(level.Text, key, actor.From, actor.To) == 0) return false;
  return GetKeyValue(TextBlock(level.Text, actor.From, actor.To), key, speed);
}

/// The level's own speed, else that of the first zone that gives one: surfaces of all zones share one animation.
double PanSpeed(const LevelText& level, std::string_view key) {
  double speed = ClassDefaults::TexturePanSpeed;
  TextCursor cursor = 1;
  const ActorBlock* info = FindActor(level, cursor, LevelSearchText);
  if (info && ReadSpeed(level, *info, key, speed)) return speed;
  for (const ActorBlock& actor : level.Actors) // zones have many classes, but no other actor has such a key
    if (ReadSpeed(level, actor, key, speed)) break;
  return speed;
}

} // namespace

void ProcessMeshes(RunState& run) {
  if (!run.Settings.CheckDoMeshes) return;
  run.User.ShowPass("Processing meshes");
  if (run.LegacyFormat)
    PlaceClassMeshes(run);
  else
    PlaceStaticMeshes(run);
}

std::function<void()> MoverChildren(RunState& run, const BrushRecord& mover) {
  if (!run.Settings.CheckDoMeshes || !mover.Polygons.empty() || !NamesMesh(mover.StaticMesh)) return {};
  return [&run, &mover] { run.Meshes.WriteMoverMesh(mover); };
}

void ProcessTerrain(RunState& run) {
  if (!run.Settings.CheckDoTerrain) return;
  run.User.ShowPass("Processing terrain");
  ForEachActor<TerrainRecord>(run, TerrainSearchText, ReadTerrain, [&](const TerrainRecord& terrain) {
    WriteTerrain(run.Geometry, run.Resources, terrain);
  });
}

void AnimateTextures(RunState& run) {
  const double scale = run.Settings.TextTexPanScale;
  const TexturePanSpeeds speeds{scale * PanSpeed(run.Level, "TexUPanSpeed="),
                                scale * PanSpeed(run.Level, "TexVPanSpeed=")};
  WriteTextureAnimations(run.Scene, run.Materials, speeds);
  FlushBlock(run);
}

} // namespace quarvel
