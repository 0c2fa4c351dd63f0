#include "actors/static_meshes.h"

#include "scene/mesh_light.h"
#include "t3d/placement_records.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quarvel {

namespace {

/// The classes of actors that have a mesh file, in the order of their first actors.
std::vector<std::string> ClassesWithMesh(SceneRun& run) {
  std::vector<std::string> classes;
  std::set<std::string_view> known;
  for (const ActorBlock& actor : run.Level.Actors)
    if (!actor.Class.empty() && known.insert(actor.Class).second && run.Context.Meshes.HasMesh(actor.Class))
      classes.emplace_back(actor.Class);
  return classes;
}

void PlaceMesh(SceneRun& run, const StaticMeshRecord& actor, std::string_view mesh) {
  const auto lit = OpenMeshLight(run.Context, actor.Location);
  run.Context.Meshes.WritePlacedMesh(actor, mesh);
}

void PlaceClassMeshes(SceneRun& run) {
  for (const std::string& className : ClassesWithMesh(run))
    for (const ActorBlock* block : run.Level.ActorsOf(className)) {
      const auto actor = ReadShown(run.Part, run.Level, *block, ReadStaticMesh);
      if (!actor) continue;
      PlaceMesh(run, *actor, className);
      FlushBlock(run);
      StepOn(run);
    }
}

/// Actors that are something else, which the game draws by a mesh.
void PlaceMeshesOfOtherClasses(SceneRun& run) {
  for (const ActorBlock& block : run.Level.Actors) {
    const ActorClass* known = FindClass(block.Class);
    const bool placedElsewhere =
        known != nullptr && (known->Family == ActorFamily::StaticMesh || known->Family == ActorFamily::Brush ||
                             known->Family == ActorFamily::Mover);
    if (placedElsewhere || !block.IsComplete()) continue;
    if (FindText(run.Level.Text, "StaticMesh=", block.From, block.To) == 0) continue;
    const auto actor = ReadShown(run.Part, run.Level, block, ReadStaticMesh);
    if (!actor || !NamesMesh(actor->StaticMesh)) continue;
    if (actor->bHidden || (!actor->DrawType.empty() && !SameText(actor->DrawType, "DT_StaticMesh"))) {
      run.Context.Findings.Count(FindingCode::HiddenMeshesOfOtherClasses, block.Class);
      continue;
    }
    run.Context.Findings.Count(FindingCode::MeshesOfOtherClasses, block.Class);
    PlaceMesh(run, *actor, actor->StaticMesh);
    FlushBlock(run);
  }
}

void PlaceStaticMeshes(SceneRun& run) {
  ForEachActor(run, ActorFamily::StaticMesh, ReadStaticMesh, [&](const StaticMeshRecord& actor) {
    if (NamesMesh(actor.StaticMesh))
      PlaceMesh(run, actor, actor.StaticMesh);
    else
      run.Context.Findings.Count(FindingCode::MeshActorsWithoutMesh);
  });
  PlaceMeshesOfOtherClasses(run);
}

} // namespace

void PlaceMeshes(SceneRun& run) {
  if (run.Level.LegacyFormat)
    PlaceClassMeshes(run);
  else
    PlaceStaticMeshes(run);
}

} // namespace quarvel
