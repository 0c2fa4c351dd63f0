#include "actors/lights.h"

#include "actors/flicker.h"
#include "actors/light_sprites.h"
#include "actors/sounds.h"
#include "actors/triggers.h"
#include "base/ascii_text.h"
#include "math/color_math.h"
#include "math/number_text.h"
#include "math/rotation.h"

#include <algorithm>
#include <optional>

namespace quarvel {

namespace {

/// A light on its way into the scene.
struct LightPlan {
  std::string Base; ///< DEF of its Transform
  std::string Name; ///< DEF of the light itself
  bool Wrapped = false;
};

const char* NodeType(LightKind kind) {
  return kind == LightKind::Spot ? "SpotLight" : kind == LightKind::Directional ? "DirectionalLight" : "PointLight";
}

/// Holds the values within what the fields may be (VRML97, clauses 6.17, 6.32 and 6.48).
void ClampValues(ActorContext& context, LightRecord& light) {
  const auto clamp = [&](double& value, double low, double high) {
    const bool inRange = value >= low && value <= high;
    if (!inRange) value = value > high ? high : low;
    return inRange;
  };
  bool inRange = clamp(light.LightBrightness, 0, 255);
  inRange = clamp(light.LightSaturation, 0, 255) && inRange;
  if (light.Kind != LightKind::Directional) inRange = clamp(light.LightRadius, -1, 1e9) && inRange;
  if (light.Kind == LightKind::Spot) inRange = clamp(light.LightCone, 1, 255) && inRange;
  if (!inRange)
    context.Findings.Add(light.Header.Name,
                         "its brightness, saturation, radius or cone is out of range and was clamped");
}

void WriteIntensityAndColor(const ActorContext& context, const LightRecord& light, SceneNode& node) {
  const ConversionSettings& settings = context.Settings;
  const double brightness = light.LightBrightness / 255;
  if (light.IsAmbient) {
    node.Field("  ambientIntensity", FormatFlt(brightness * settings.TextAmbientInfluence));
    node.Field("  intensity", "0");
  } else {
    node.Field("  intensity",
               settings.OptionIntensityOverride ? settings.TextLightIntensity.Text : FormatFlt(brightness));
  }
  // The intensity carries the brightness unless all lights have one intensity.
  const bool ownBrightness = settings.OptionIntensityOverride && !light.IsAmbient;
  node.Field("  color", LightColor(ownBrightness ? light.LightBrightness : 255, light.LightHue, light.LightSaturation));
}

/// The editor's forward axis, turned as the light is.
std::string DirectionText(const ActorContext& context, const Rotator3& rotation) {
  const Vector3 forward = TransformPoint(BrushRotationMatrix(rotation), {1, 0, 0});
  return FormatVec(TransformPoint(context.Scene.ConversionMatrix, forward));
}

void WriteReach(const ActorContext& context, const LightRecord& light, SceneNode& node) {
  if (light.Kind != LightKind::Directional) {
    const double radius = (light.LightRadius + 1) * context.Settings.TextLightRadiusScale * context.Settings.TextScale;
    node.Field("  radius", FormatFlt(radius));
  }
  if (light.Kind == LightKind::Point && !light.IsAmbient) node.Field("  attenuation", "0 1 0");
  if (light.Kind != LightKind::Point) node.Field("  direction", DirectionText(context, light.Rotation));
  if (light.Kind != LightKind::Spot) return;
  const double cutOff = (Pi / 2) * light.LightCone / 512, beam = (Pi / 2) * light.LightCone / 255;
  node.Field("  cutOffAngle", FormatFlt(cutOff));
  node.Field("  beamWidth", FormatFlt(context.Scene.Conforming() ? std::min(beam, cutOff) : beam));
}

void WriteLightNode(ActorContext& context, const LightRecord& light, const LightPlan& plan) {
  SceneWriter& scene = context.Scene;
  SceneNode node = scene.Open("    ", NodeType(light.Kind), plan.Name, {.BraceBelow = true});
  if (light.Kind != LightKind::Directional) {
    if (plan.Wrapped)
      node.Attribute("location", "0 0 0");
    else
      node.Field(" location", PositionText(context, light.Location));
  }
  WriteIntensityAndColor(context, light, node);
  WriteReach(context, light, node);
  node.Flag("  on", light.HasOn ? light.On : true);
}

void WriteLightSound(ActorContext& context, const LightRecord& light, const LightPlan& plan) {
  if (!context.Settings.CheckDoSounds || SoundFileName(light.Sound.AmbientSound).empty()) return;
  SoundSource source;
  source.Block = light.Sound;
  source.Name = light.Header.Name;
  source.BaseName = "S_" + plan.Name;
  if (plan.Wrapped) {
    WriteSound(context, source);
    return;
  }
  const SceneNode place = OpenSoundPlace(context, light.Location);
  WriteSound(context, source);
}

SceneNode OpenWrapper(ActorContext& context, const LightRecord& light, const LightPlan& plan) {
  SceneNode transform = context.Scene.Open("", "Transform", plan.Base);
  transform.Field(" translation", PositionText(context, light.Location));
  transform.Children(" ", 2);
  return transform;
}

/// The light and what belongs to it. `innerSprite` says that its sprite stands in the same Transform.
void WriteLightGroup(ActorContext& context, const LightRecord& light, const LightPlan& plan, bool innerSprite) {
  std::optional<SceneNode> wrapper;
  if (plan.Wrapped) wrapper.emplace(OpenWrapper(context, light, plan));
  WriteLightNode(context, light, plan);
  WriteLightSound(context, light, plan);
  const std::string timer = Flickers(light) ? WriteFlicker(context, plan.Base) : "";
  if (innerSprite) WriteLightSprite(context, light.Display);
  if (wrapper) wrapper->Close();
  if (!timer.empty()) RouteFlicker(context, plan.Base, timer, plan.Name);
}

/// By default a sprite of its own has the name of the light's Transform.
std::string SpriteName(const ActorContext& context, const LightPlan& plan) {
  if (context.Scene.Conforming() && context.Scene.IsDefined(plan.Base, SceneScope::Document))
    return plan.Base + "SPRITE";
  return plan.Base;
}

} // namespace

std::string LightDefName(const ActorHeader& header) {
  const bool useName = header.Tag.empty() || SameText(header.Tag, "Light") || SameText(header.Tag, "Spotlight");
  return MakeDefName("L_" + (useName ? header.Name : header.Tag));
}

std::string WriteLight(ActorContext& context, LightRecord light) {
  const ConversionSettings& settings = context.Settings;
  if (settings.CheckIgnoreBlackLight && light.LightBrightness == 0) return {};
  ClampValues(context, light);
  const bool written = settings.CheckOutputStaticLights || light.bDynamicLight || Flickers(light);
  if (!written) context.Findings.Count("static lights left out (CheckOutputStaticLights writes them)");
  const bool hasSprite = HasSprite(context, light.Display, light.Header.Name);
  if (!written && !hasSprite) return {};

  LightPlan plan;
  plan.Base = context.Scene.TakeName(LightDefName(light.Header));
  const bool ownSprite = hasSprite && (settings.CheckLightTransform || !written);
  if (written) {
    plan.Name = TakeActorName(context, light.Header);
    plan.Wrapped = settings.CheckLightTransform || hasSprite;
    WriteLightGroup(context, light, plan, hasSprite && !ownSprite);
  }
  if (ownSprite) WritePlacedSprite(context, light.Display, light.Location, SpriteName(context, plan));
  return plan.Name;
}

void WriteTriggerLight(ActorContext& context, TriggerLightRecord light) {
  light.bDynamicLight = true;
  light.HasOn = true;
  light.On = light.bInitiallyOn;
  const std::string name = WriteLight(context, light);
  if (!name.empty()) NoteLink(context, light.Header.Tag, "isActive", name, "set_on");
}

void WriteGlobalAmbientLight(ActorContext& context, const ZoneBlock& zone, const Bounds3& bounds) {
  const ConversionSettings& settings = context.Settings;
  LightRecord light;
  light.Header.Name = "GlobalAmbientLight";
  light.bDynamicLight = light.IsAmbient = true;
  light.LightBrightness = zone.AmbientBrightness;
  light.LightHue = zone.AmbientHue;
  light.LightSaturation = zone.AmbientSaturation;
  if (!IsEmpty(bounds)) {
    const Vector3 center = ScaleVector(BoundsCenter(bounds), 1 / settings.TextScale);
    light.Location = {center.X, center.Z, center.Y}; // back on the editor's axes
    const double reach = VectorLength(SubtractVector(bounds.Max, bounds.Min)) / 2;
    light.LightRadius = reach / (settings.TextLightRadiusScale * settings.TextScale) - 1;
  }
  WriteLight(context, light);
}

void WriteFlare(ActorContext& context, const DisplayRecord& flare) {
  if (!HasSprite(context, flare.Display, flare.Header.Name))
    return context.Findings.Count("flares left out because they have no texture of their own");
  WritePlacedSprite(context, flare.Display, flare.Location, context.Scene.TakeName(LightDefName(flare.Header)));
}

} // namespace quarvel
