#include "scene/mesh_light.h"

#include "math/number_text.h"
#include "scene/level_light.h"

#include <algorithm>
#include <array>

namespace quarvel {

namespace {

constexpr double clearance = 16; // Unreal units above where a mesh stands, so that it is not lit from below its floor

void WriteLights(SceneContext& context, const std::array<Vector3, 4>& light, SceneScope scope) {
  for (std::size_t i = 0; i < light.size(); ++i) {
    const double brightest = std::max({light[i].X, light[i].Y, light[i].Z});
    if (brightest <= 0) continue;
    const Vector3 way = ScaleVector(SidesOfLight[i], -1);
    SceneNode node = context.Scene.Open("    ", "DirectionalLight", {}, {.Scope = scope});
    node.Field("      direction", FormatVec(ToSceneAxes(context.Space.ConversionMatrix(), way)));
    node.Field("      color", FormatVec(ScaleVector(light[i], 1 / brightest)));
    node.Field("      intensity", FormatFlt(std::min(brightest, 1.0)));
  }
}

} // namespace

std::optional<SceneNode> OpenMeshLight(SceneContext& context, const Vector3& location) {
  if (!context.Light) return std::nullopt;
  const std::array<Vector3, 4> light = context.Light->Around(AddVector(location, {0, 0, clearance}));
  context.MeshLight.push_back(light);
  const SceneScope scope = context.Scene.IsX3DClassic() ? SceneScope::Both : SceneScope::Document;
  SceneNode group = context.Scene.Open("", "Group", {}, {.Scope = scope});
  group.Children("  ");
  WriteLights(context, light, scope);
  return group;
}

void WriteSharedMeshLights(SceneContext& context) {
  if (context.MeshLight.empty() || context.Scene.IsX3DClassic()) return;
  std::array<Vector3, 4> mean{};
  for (const std::array<Vector3, 4>& light : context.MeshLight)
    for (std::size_t i = 0; i < mean.size(); ++i)
      mean[i] = AddVector(mean[i], ScaleVector(light[i], 1 / static_cast<double>(context.MeshLight.size())));
  WriteLights(context, mean, SceneScope::Text);
}

} // namespace quarvel
