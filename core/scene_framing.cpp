#include "core/scene_framing.h"

#include "scene/avatar.h"

#include <algorithm>

namespace quarvel {

namespace {

constexpr const char* webAddress = "https://quarvel.example.org/";

// The profile Immersive comprises level 2 of this component, but animated textures need PositionInterpolator2D.
constexpr const char* interpolationLevel = "3";

std::string MovementType(const ConversionSettings& settings) {
  std::string type = settings.ListMovement;
  std::transform(type.begin(), type.end(), type.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
  return type;
}

/// Lights that reach no farther than their group, as lit meshes have them, take a later version than the rest.
const char* VersionOf(const ConversionSettings& settings) { return settings.CheckBakeLight ? "3.3" : "3.0"; }

SceneNode OpenRoot(SceneWriter& scene, const ConversionSettings& settings) {
  scene.BeginDocument("Converted with Quarvel/VRML");
  SceneNode root = scene.Open("", "X3D", {}, {.Scope = SceneScope::Document});
  root.Attribute("profile", "Immersive");
  if (!scene.Conforming()) return root;
  root.Attribute("version", VersionOf(settings));
  const SceneNode head = scene.Open("", "head", {}, {.Scope = SceneScope::Document});
  SceneNode component = scene.Open("", "component", {}, {.Scope = SceneScope::Document});
  component.Attribute("name", "Interpolation");
  component.Attribute("level", interpolationLevel);
  return root;
}

std::optional<SceneNode> OpenEnclosing(SceneWriter& scene, bool wanted, const std::string& sceneName) {
  if (!wanted) return std::nullopt;
  SceneNode enclosing = scene.Open("", "Transform", scene.TakeName(MakeDefName(sceneName)));
  enclosing.Children(" ", 0);
  scene.FlushLines();
  return enclosing;
}

SceneNode OpenGroup(SceneWriter& scene, const ConversionSettings& settings) {
  SceneNode navigation = scene.Open("", "NavigationInfo", {}, {.Scope = SceneScope::Document});
  navigation.Strings("type", MovementType(settings));
  navigation.Flag("headlight", settings.CheckHeadlight);
  WriteAvatarSize(navigation, "avatarSize");
  WriteAvatarSpeed(navigation, "speed");
  navigation.Close();
  return scene.Open("", "Group", {}, {.Scope = SceneScope::Document});
}

} // namespace

void WriteTextHeader(SceneWriter& scene, const ConversionSettings& settings) {
  if (scene.IsX3DClassic()) {
    scene.Line("#X3D V", VersionOf(settings), " utf8");
    scene.Line("");
    scene.Line("PROFILE Immersive");
    if (scene.Conforming()) scene.Line("COMPONENT Interpolation:", interpolationLevel);
  } else {
    scene.Line("#VRML V2.0 utf8");
  }
  scene.Line("# Converted by Quarvel VRML converter");
  scene.Line("# Quarvel v1.0");
  scene.Line("# ", webAddress);
  scene.Line("");
  SceneNode navigation = scene.Open("", "NavigationInfo", {}, {.Scope = SceneScope::Text});
  WriteAvatarSize(navigation, " avatarSize");
  navigation.Flag("headlight", settings.CheckHeadlight);
  navigation.Strings(" type", MovementType(settings));
  WriteAvatarSpeed(navigation, " speed");
  navigation.Close();
  scene.FlushLines();
}

SceneFrame::SceneFrame(SceneWriter& scene, const ConversionSettings& settings, const std::string& sceneName)
    : root_(OpenRoot(scene, settings)), scene_(scene.Open("", "Scene", {}, {.Scope = SceneScope::Document})),
      enclosing_(OpenEnclosing(scene, settings.CheckEnclose, sceneName)), group_(OpenGroup(scene, settings)) {}

void SceneFrame::CloseContent() {
  group_.Close();
  if (enclosing_) enclosing_->Close();
}

} // namespace quarvel
