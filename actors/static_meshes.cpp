#include "actors/static_meshes.h"

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

void PlaceClassMeshes(SceneRun& run) {
  for (const std::string& className : ClassesWithMesh(run))
    for (const ActorBlock* block : run.Level.ActorsOf(className)) {
      const auto actor = ReadShown(run.Part, run.Level, *block, ReadStaticMesh);
      if (!actor) continue;
      run.Context.Meshes.WritePlacedMesh(*actor, className);
      FlushBlock(run);
      StepOn(run);
    }
}

void PlaceStaticMeshes(SceneRun& run) {
  ForEachActor(run, ActorFamily::StaticMesh, ReadStaticMesh, [&](const StaticMeshRecord& actor) {
    if (NamesMesh(actor.StaticMesh))
      run.Context.Meshes.WritePlacedMesh(actor, actor.StaticMesh);
    else
      run.Context.Findings.Count(FindingCode::MeshActorsWithoutMesh);
  });
}

} // namespace

void PlaceMeshes(SceneRun& run) {
  if (run.Level.LegacyFormat)
    PlaceClassMeshes(run);
  else
    PlaceStaticMeshes(run);
}

} // namespace quarvel
