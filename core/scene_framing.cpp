#include "core/scene_framing.h"

#include <algorithm>

namespace quarvel {

namespace {

constexpr const char* webAddress = "https://quarvel.example.org/";

// Metres a second. The two scenes differ on purpose unless they are to conform.
constexpr const char* textSpeed = "1.5";
constexpr const char* documentSpeed = "5.3";

// The profile Immersive comprises level 2 of this component, but animated textures need PositionInterpolator2D.
constexpr const char* interpolationLevel = "3";

std::string MovementType(const ConversionSettings& settings) {
  std::string type = settings.ListMovement;
  std::transform(type.begin(), type.end(), type.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
  return type;
}

void WriteNavigationInfo(SceneWriter& scene, pugi::xml_node parent, const ConversionSettings& settings) {
  pugi::xml_node element = parent.append_child("NavigationInfo");
  const std::string quote = scene.Conforming() ? "\"" : "";
  AddAttribute(element, "type", quote + MovementType(settings) + quote);
  AddAttribute(element, "headlight", settings.CheckHeadlight ? "true" : "false");
  AddAttribute(element, "avatarSize", ".5 1.6 0.75");
  AddAttribute(element, "speed", documentSpeed);
}

} // namespace

void WriteTextHeader(SceneWriter& scene, TextFile& file, const ConversionSettings& settings) {
  if (scene.IsX3DClassic()) {
    scene.Line("#X3D V3.0 utf8");
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
  scene.Line("NavigationInfo {");
  scene.Line(" avatarSize [.5, 1.6, 0.75]");
  scene.Line("headlight ", settings.CheckHeadlight ? "TRUE" : "FALSE");
  scene.Line(" type \"", MovementType(settings), "\"");
  scene.Line(" speed ", scene.Conforming() ? documentSpeed : textSpeed);
  scene.SceneText += "}";
  scene.Flush(file);
}

void WriteDocumentHead(SceneWriter& scene, TextFile& file, const ConversionSettings& settings,
                       const std::string& sceneName) {
  pugi::xml_node declaration = scene.SceneDocument.append_child(pugi::node_declaration);
  declaration.set_name("xml");
  AddAttribute(declaration, "version", "1.0");
  AddAttribute(declaration, "encoding", "UTF-8");
  scene.SceneDocument.append_child(pugi::node_comment).set_value("Converted with Quarvel/VRML");
  pugi::xml_node root = scene.SceneDocument.append_child("X3D");
  AddAttribute(root, "profile", "Immersive");
  if (scene.Conforming()) {
    AddAttribute(root, "version", "3.0");
    pugi::xml_node component = root.append_child("head").append_child("component");
    AddAttribute(component, "name", "Interpolation");
    AddAttribute(component, "level", interpolationLevel);
  }
  scene.Scene = root.append_child("Scene");

  pugi::xml_node parent = scene.Scene;
  if (settings.CheckEnclose) {
    parent = scene.Open(scene.Scene, "", "Transform", scene.Names.Take(MakeDefName(sceneName))).Element();
    scene.SceneText += " children [";
    scene.Flush(file);
    scene.InsideChildren = true;
  }
  WriteNavigationInfo(scene, parent, settings);
  scene.Group = parent.append_child("Group");
}

void CloseEnclosingTransform(SceneWriter& scene, const ConversionSettings& settings) {
  if (!settings.CheckEnclose) return;
  scene.Line("]");
  scene.Line("}");
  scene.InsideChildren = false;
}

} // namespace quarvel
