#include "actors/lights.h"

#include "actors/light_sprites.h"
#include "actors/script_writer.h"
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

/// What a light is for, besides what its record says.
struct LightUse {
  bool IsAmbient = false;     ///< it only adds ambient light
  bool AlwaysWritten = false; ///< also when static lights are left out
  bool On = true;             ///< at first
};

/// A light on its way into the scene.
struct LightPlan {
  LightUse Use;
  double Brightness, Saturation, Radius, Cone; ///< of the record, within what the fields may be
  std::string Base;                            ///< DEF of its Transform
  std::string Name;                            ///< DEF of the light itself
  bool Wrapped = false;
};

const char* NodeType(LightKind kind) {
  return kind == LightKind::Spot ? "SpotLight" : kind == LightKind::Directional ? "DirectionalLight" : "PointLight";
}

/// The values within what the fields may be (VRML97, clauses 6.17, 6.32 and 6.48).
LightPlan PlanLight(SceneContext& context, const LightRecord& light, const LightUse& use) {
  bool inRange = true;
  const auto within = [&](double value, double low, double high) {
    const bool good = value >= low && value <= high;
    inRange = inRange && good;
    return good ? value : value > high ? high : low;
  };
  LightPlan plan{use, 0, 0, light.LightRadius, light.LightCone, {}, {}, false};
  plan.Brightness = within(light.LightBrightness, 0, 255);
  plan.Saturation = within(light.LightSaturation, 0, 255);
  if (light.Kind != LightKind::Directional) plan.Radius = within(light.LightRadius, -1, 1e9);
  if (light.Kind == LightKind::Spot) plan.Cone = within(light.LightCone, 1, 255);
  if (!inRange) context.Findings.Add(FindingCode::LightOutOfRange, light.Header.Name);
  return plan;
}

void WriteIntensityAndColor(const SceneContext& context, double hue, const LightPlan& plan, SceneNode& node) {
  const ConversionSettings& settings = context.Settings;
  const double brightness = plan.Brightness / 255;
  if (plan.Use.IsAmbient) {
    node.Field("  ambientIntensity", FormatFlt(brightness * settings.TextAmbientInfluence));
    node.Field("  intensity", "0");
  } else {
    node.Field("  intensity",
               settings.OptionIntensityOverride ? settings.TextLightIntensity.Text : FormatFlt(brightness));
  }
  // The intensity carries the brightness unless all lights have one intensity.
  const bool ownBrightness = settings.OptionIntensityOverride && !plan.Use.IsAmbient;
  node.Field("  color", LightColor(ownBrightness ? plan.Brightness : 255, hue, plan.Saturation));
}

/// The editor's forward axis, turned as the light is.
std::string DirectionText(const SceneContext& context, const Rotator3& rotation) {
  const Vector3 forward = TransformPoint(BrushRotationMatrix(rotation), {1, 0, 0});
  return FormatVec(TransformPoint(context.Space.ConversionMatrix(), forward));
}

void WriteReach(const SceneContext& context, const LightRecord& light, const LightPlan& plan, SceneNode& node) {
  if (light.Kind != LightKind::Directional) {
    const double radius = (plan.Radius + 1) * context.Settings.TextLightRadiusScale * context.Space.Scale();
    node.Field("  radius", FormatFlt(radius));
  }
  if (light.Kind == LightKind::Point && !plan.Use.IsAmbient) node.Field("  attenuation", "0 1 0");
  if (light.Kind != LightKind::Point) node.Field("  direction", DirectionText(context, light.Rotation));
  if (light.Kind != LightKind::Spot) return;
  const double cutOff = (Pi / 2) * plan.Cone / 512, beam = (Pi / 2) * plan.Cone / 255;
  node.Field("  cutOffAngle", FormatFlt(cutOff));
  node.Field("  beamWidth", FormatFlt(context.Scene.Conforming() ? std::min(beam, cutOff) : beam));
}

void WriteLightNode(SceneContext& context, const LightRecord& light, const LightPlan& plan) {
  SceneWriter& scene = context.Scene;
  SceneNode node = scene.Open("    ", NodeType(light.Kind), plan.Name, {.BraceBelow = true});
  if (light.Kind != LightKind::Directional) {
    if (plan.Wrapped)
      node.Attribute("location", "0 0 0");
    else
      node.Field(" location", context.Space.PositionText(light.Location));
  }
  WriteIntensityAndColor(context, light.LightHue, plan, node);
  WriteReach(context, light, plan, node);
  node.Flag("  on", plan.Use.On);
}

void WriteLightSound(SceneContext& context, const LightRecord& light, const LightPlan& plan) {
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

SceneNode OpenWrapper(SceneContext& context, const LightRecord& light, const LightPlan& plan) {
  SceneNode transform = context.Scene.Open("", "Transform", plan.Base);
  transform.Field(" translation", context.Space.PositionText(light.Location));
  transform.Children(" ", 2);
  return transform;
}

/// Whether the light's effect is the one that makes it flicker.
bool Flickers(const LightRecord& light) { return SameText(light.LightEffect, "LT_FLICKER"); }

/// Writes the script that switches a light on and off at random, and its timer. Returns the timer's name.
std::string WriteFlicker(SceneContext& context, const std::string& base) {
  SceneWriter& scene = context.Scene;
  SceneNode script = scene.Open("", "Script", base + "SCRIPT");
  // By default the document declares another type than the text, and all timers have one name.
  WriteScriptField(script, "eventIn  SFFloat  set_time", {scene.Conforming() ? "SFFloat" : "SFBool", {}});
  WriteScriptField(script, "eventOut SFBool  bool_changed");
  script.Code({"  function set_time(value,time) {", "     bool_changed = (Math.random() > .5);", "  }"}, "", "");
  script.Close();
  const std::string timer = scene.Conforming() ? base + "TIMER" : "FlickerTimer";
  WriteTimeSensor(scene, timer, 1, Cycles::Endless);
  if (!scene.Conforming()) {
    scene.NoteQuirk("the one name of all flicker timers");
    scene.NoteQuirk("the type of the time in the flicker scripts of the .x3d");
  }
  return timer;
}

/// Connects the timer, the script and the light; where a ROUTE may stand.
void RouteFlicker(SceneContext& context, const std::string& base, const std::string& timer, const std::string& light) {
  AddRoute(context.Scene, base + "SCRIPT", "bool_changed", light, "set_on");
  AddRoute(context.Scene, timer, "fraction_changed", base + "SCRIPT", "set_time");
}

/// The light and what belongs to it. `innerSprite` says that its sprite stands in the same Transform.
void WriteLightGroup(SceneContext& context, const LightRecord& light, const LightPlan& plan, bool innerSprite) {
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
std::string SpriteName(const SceneContext& context, const LightPlan& plan) {
  if (context.Scene.Conforming() && context.Scene.IsDefined(plan.Base, SceneScope::Document))
    return plan.Base + "SPRITE";
  return plan.Base;
}

/// Returns the DEF name of the light; empty when none was written.
std::string WriteLightFor(SceneContext& context, const LightRecord& light, const LightUse& use) {
  const ConversionSettings& settings = context.Settings;
  if (settings.CheckIgnoreBlackLight && light.LightBrightness == 0) return {};
  LightPlan plan = PlanLight(context, light, use);
  const bool written =
      (settings.CheckOutputStaticLights && !context.Light) || use.AlwaysWritten || IsDynamicLight(light);
  if (!written && !context.Light) context.Findings.Count(FindingCode::StaticLights);
  const bool hasSprite = HasSprite(context, light.Display, light.Header.Name);
  if (!written && !hasSprite) return {};

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

/// The brightest ambient light of the level and its zones; a brightness of 0 when there is none.
ZoneBlock BrightestAmbience(const SceneRun& run) {
  ZoneBlock brightest;
  const auto keep = [&](const ZoneBlock& zone) {
    if (zone.AmbientBrightness > brightest.AmbientBrightness) brightest = zone;
  };
  for (const LevelRecord& info : ReadAllShown(run, ActorFamily::Level, ReadLevel))
    keep(info.Zone);
  for (const ZoneRecord& zone : ReadAllShown(run, ActorFamily::Zone, ReadZone))
    keep(zone.Zone);
  return brightest;
}

} // namespace

bool IsDynamicLight(const LightRecord& light) { return light.bDynamicLight || Flickers(light); }

std::string LightDefName(const ActorHeader& header) {
  const bool useName = header.Tag.empty() || SameText(header.Tag, "Light") || SameText(header.Tag, "Spotlight");
  return MakeDefName("L_" + (useName ? header.Name : header.Tag));
}

std::string WriteLight(SceneContext& context, const LightRecord& light) { return WriteLightFor(context, light, {}); }

void WriteTriggerLight(SceneContext& context, TriggerList& triggers, const TriggerLightRecord& light) {
  const std::string name = WriteLightFor(context, light, {.AlwaysWritten = true, .On = light.bInitiallyOn});
  if (!name.empty() && !NoteLink(triggers, light.Header.Tag, "isActive", name, "set_on"))
    context.Findings.Add(FindingCode::NeverSwitched, light.Header.Name);
}

void WriteGlobalAmbientLight(SceneContext& context, const ZoneBlock& zone, const Bounds3& bounds) {
  LightRecord light;
  light.Header.Name = "GlobalAmbientLight";
  light.LightBrightness = zone.AmbientBrightness;
  light.LightHue = zone.AmbientHue;
  light.LightSaturation = zone.AmbientSaturation;
  if (!IsEmpty(bounds)) {
    light.Location = context.Space.Location(BoundsCenter(bounds));
    const double reach = VectorLength(SubtractVector(bounds.Max, bounds.Min)) / 2;
    light.LightRadius = reach / (context.Settings.TextLightRadiusScale * context.Space.Scale()) - 1;
  }
  WriteLightFor(context, light, {.IsAmbient = true, .AlwaysWritten = true});
}

void WriteFlare(SceneContext& context, const DisplayRecord& flare) {
  if (!HasSprite(context, flare.Display, flare.Header.Name))
    return context.Findings.Count(FindingCode::FlaresWithoutTexture);
  WritePlacedSprite(context, flare.Display, flare.Location, context.Scene.TakeName(LightDefName(flare.Header)));
}

void WriteLights(SceneRun& run) {
  const ZoneBlock ambience = run.Context.Light ? ZoneBlock() : BrightestAmbience(run); // baked light has it already
  if (ambience.AmbientBrightness > 0) WriteGlobalAmbientLight(run.Context, ambience, run.Bounds);
  FlushBlock(run);
  ForEachActor(run, ActorFamily::Light, ReadLight, [&](const LightRecord& light) { WriteLight(run.Context, light); });
  ForEachActor(run, ActorFamily::Flare, ReadDisplay,
               [&](const DisplayRecord& flare) { WriteFlare(run.Context, flare); });
}

void WriteTriggerLights(SceneRun& run) {
  ForEachActor(run, ActorFamily::TriggerLight, ReadTriggerLight,
               [&](const TriggerLightRecord& light) { WriteTriggerLight(run.Context, run.Triggers, light); });
}

} // namespace quarvel
