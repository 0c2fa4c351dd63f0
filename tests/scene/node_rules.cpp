#include "tests/scene/node_rules.h"

#include <algorithm>
#include <array>
#include <map>

namespace quarvel::test {

namespace {

/// Fields that can be changed bear events; "name/v" is VRML97's alone, "name/x" X3D's.
struct NodeRule {
  std::string_view Type, Exposed, Fixed, Sends, Takes;
};

constexpr std::string_view interpolatorEvents = "value_changed", fraction = "set_fraction";

constexpr std::array rules{
    NodeRule{"Anchor", "children description parameter url", "bboxCenter bboxSize", "", ""},
    NodeRule{"Appearance", "material texture textureTransform", "", "", ""},
    NodeRule{"AudioClip", "description loop pitch startTime stopTime url", "", "duration_changed isActive", ""},
    NodeRule{"Billboard", "axisOfRotation children", "bboxCenter bboxSize", "", ""},
    NodeRule{"BooleanFilter/x", "", "", "inputFalse inputNegate inputTrue", "set_boolean"},
    NodeRule{"Box", "", "size", "", ""},
    NodeRule{"Collision", "children collide/v enabled/x", "bboxCenter bboxSize proxy", "collideTime", ""},
    NodeRule{"Color", "color", "", "", ""},
    NodeRule{"ColorRGBA/x", "color", "", "", ""},
    NodeRule{"Coordinate", "point", "", "", ""},
    NodeRule{"DirectionalLight", "ambientIntensity color direction intensity on", "", "", ""},
    NodeRule{"ElevationGrid", "color normal texCoord",
             "ccw colorPerVertex creaseAngle height normalPerVertex solid xDimension xSpacing zDimension zSpacing", "",
             ""},
    NodeRule{"Fog", "color fogType visibilityRange", "", "isBound", "set_bind"},
    NodeRule{"Group", "children", "bboxCenter bboxSize", "", ""},
    NodeRule{"ImageTexture", "url", "repeatS repeatT", "", ""},
    NodeRule{
        "IndexedFaceSet", "color coord normal texCoord",
        "ccw colorIndex colorPerVertex convex coordIndex creaseAngle normalIndex normalPerVertex solid texCoordIndex",
        "", ""},
    NodeRule{"IndexedLineSet", "color coord", "colorIndex colorPerVertex coordIndex", "", ""},
    NodeRule{"Inline", "url load/x", "bboxCenter bboxSize", "", ""},
    NodeRule{"Material", "ambientIntensity diffuseColor emissiveColor shininess specularColor transparency", "", "",
             ""},
    NodeRule{"MultiTexture/x", "alpha color function mode source texture", "", "", ""},
    NodeRule{"MultiTextureCoordinate/x", "texCoord", "", "", ""},
    NodeRule{"MultiTextureTransform/x", "textureTransform", "", "", ""},
    NodeRule{"NavigationInfo", "avatarSize headlight speed type visibilityLimit", "", "isBound", "set_bind"},
    NodeRule{"OrientationInterpolator", "key keyValue", "", interpolatorEvents, fraction},
    NodeRule{"PointLight", "ambientIntensity attenuation color intensity location on radius", "", "", ""},
    NodeRule{"PositionInterpolator", "key keyValue", "", interpolatorEvents, fraction},
    NodeRule{"PositionInterpolator2D/x", "key keyValue", "", interpolatorEvents, fraction},
    NodeRule{"ProximitySensor", "center enabled size", "", "isActive position_changed enterTime exitTime", ""},
    NodeRule{"Script", "url", "directOutput mustEvaluate", "", ""},
    NodeRule{"Shape", "appearance geometry", "", "", ""},
    NodeRule{"Sound", "direction intensity location maxBack maxFront minBack minFront priority source", "spatialize",
             "", ""},
    NodeRule{"Sphere", "", "radius", "", ""},
    NodeRule{"SpotLight",
             "ambientIntensity attenuation beamWidth color cutOffAngle direction intensity location on radius", "", "",
             ""},
    NodeRule{"TextureCoordinate", "point", "", "", ""},
    NodeRule{"TextureTransform", "center rotation scale translation", "", "", ""},
    NodeRule{"TimeSensor", "cycleInterval enabled loop startTime stopTime", "",
             "cycleTime fraction_changed isActive time", ""},
    NodeRule{"TouchSensor", "enabled", "", "isActive isOver touchTime", ""},
    NodeRule{"Transform", "center children rotation scale scaleOrientation translation", "bboxCenter bboxSize", "", ""},
    NodeRule{"Viewpoint", "fieldOfView jump orientation position", "description", "bindTime isBound", "set_bind"},
    NodeRule{"WorldInfo", "", "info title", "", ""},
};

/// The types that a field may hold.
constexpr std::string_view childTypes =
    "Anchor Billboard BooleanFilter Collision DirectionalLight Fog Group Inline NavigationInfo OrientationInterpolator "
    "PointLight PositionInterpolator PositionInterpolator2D ProximitySensor Script Shape Sound SpotLight TimeSensor "
    "TouchSensor Transform Viewpoint WorldInfo";
constexpr std::array<std::pair<std::string_view, std::string_view>, 10> contents{{
    {"children", childTypes},
    {"appearance", "Appearance"},
    {"geometry", "Box ElevationGrid IndexedFaceSet IndexedLineSet Sphere"},
    {"material", "Material"},
    {"texture", "ImageTexture MultiTexture"},
    {"textureTransform", "MultiTextureTransform TextureTransform"},
    {"color", "Color ColorRGBA"},
    {"coord", "Coordinate"},
    {"texCoord", "MultiTextureCoordinate TextureCoordinate"},
    {"source", "AudioClip"},
}};

std::string InEncoding(std::string_view name, SceneEncoding encoding) {
  return std::string(name) + (encoding == SceneEncoding::Vrml97 ? "/v" : "/x");
}

bool IsListed(std::string_view name, std::string_view list, SceneEncoding encoding) {
  return IsOneOf(name, list) || IsOneOf(InEncoding(name, encoding), list);
}

const NodeRule* FindRule(std::string_view type, SceneEncoding encoding) {
  const auto* at = std::find_if(rules.begin(), rules.end(),
                                [&](const NodeRule& rule) { return IsListed(type, rule.Type, encoding); });
  return at == rules.end() ? nullptr : at;
}

} // namespace

std::vector<std::string> Words(std::string_view text) {
  std::vector<std::string> words;
  for (std::size_t at = text.find_first_not_of(WordSeparators); at != text.npos;) {
    const std::size_t end = std::min(text.find_first_of(WordSeparators, at), text.size());
    words.emplace_back(text.substr(at, end - at));
    at = text.find_first_not_of(WordSeparators, end);
  }
  return words;
}

std::string Joined(const std::vector<std::string>& words) {
  std::string joined;
  for (const std::string& word : words)
    joined += (joined.empty() ? "" : " ") + word;
  return joined;
}

bool IsOneOf(std::string_view word, std::string_view list) {
  const auto isEnd = [&](std::size_t at) { return at >= list.size() || list[at] == ' '; };
  for (std::size_t at = list.find(word); at != list.npos; at = list.find(word, at + 1))
    if ((at == 0 || list[at - 1] == ' ') && isEnd(at + word.size())) return !word.empty();
  return false;
}

bool IsNodeType(std::string_view type, SceneEncoding encoding) { return FindRule(type, encoding) != nullptr; }

bool HasField(std::string_view type, std::string_view field, SceneEncoding encoding) {
  const NodeRule* rule = FindRule(type, encoding);
  return rule && (IsListed(field, rule->Exposed, encoding) || IsListed(field, rule->Fixed, encoding));
}

bool SendsEvent(std::string_view type, std::string_view event, SceneEncoding encoding) {
  const NodeRule* rule = FindRule(type, encoding);
  if (!rule || IsOneOf(event, rule->Sends)) return rule != nullptr;
  constexpr std::string_view changed = "_changed";
  return IsListed(event.ends_with(changed) ? event.substr(0, event.size() - changed.size()) : event, rule->Exposed,
                  encoding);
}

bool TakesEvent(std::string_view type, std::string_view event, SceneEncoding encoding) {
  const NodeRule* rule = FindRule(type, encoding);
  if (!rule || IsOneOf(event, rule->Takes)) return rule != nullptr;
  return IsListed(event.starts_with("set_") ? event.substr(4) : event, rule->Exposed, encoding);
}

bool MayHold(std::string_view parent, std::string_view field, std::string_view child) {
  if (parent.empty()) return IsOneOf(child, childTypes);
  if (parent.starts_with("Multi") && child.starts_with("Multi")) return false;
  return std::any_of(contents.begin(), contents.end(), [&](const auto& content) {
    return (field.empty() || content.first == field) && IsOneOf(child, content.second) &&
           HasField(parent, content.first, SceneEncoding::X3DXml);
  });
}

int NumbersOf(std::string_view type, std::string_view field) {
  if (IsOneOf(field, "ccw headlight jump loop on solid enabled collide")) return 0;
  if (type == "TextureTransform") return field == "rotation" ? 1 : 2;
  if (type.starts_with("Color")) return 0;
  if (IsOneOf(field, "rotation orientation")) return 4;
  if (IsOneOf(field, "translation scale center position location direction attenuation color diffuseColor "
                     "emissiveColor specularColor axisOfRotation"))
    return 3;
  if (field == "size") return 3;
  const bool single =
      IsOneOf(field, "ambientIntensity beamWidth creaseAngle cutOffAngle cycleInterval fieldOfView "
                     "intensity maxBack maxFront minBack minFront pitch radius shininess speed startTime "
                     "stopTime transparency visibilityRange xDimension xSpacing zDimension zSpacing");
  return single ? 1 : 0;
}

} // namespace quarvel::test
