#include "scene/texture_animation.h"

#include "math/number_text.h"
#include "math/vector.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace quarvel {

namespace {

constexpr double texelsPerSecond = 35; // of a panning texture at speed 1
constexpr double waveTexels = 8;       // radius of a small wave
constexpr double waveSeconds = 2 * Pi; // the engine's phase is the time in radians
constexpr int waveSteps = 16;          // straight pieces of the circle
constexpr double unknownSide = 256;    // texels
constexpr int maxRepeats = 64;         // of the slower direction within one cycle
constexpr double maxRatio = 4096;      // beyond it the slower direction stands still

/// The DEF names of the nodes that animate one shared transform.
struct AnimationNames {
  TextureMotion Motion;
  const char* Timer;
  const char* Script;
  const char* Interpolator;
};

constexpr AnimationNames animations[] = {
    {TextureMotion::PanUV, "TIMERUVPAN", "SCRIPTUVPAN", "POSINT2DUVPAN"},
    {TextureMotion::PanU, "TIMERUPAN", "SCRIPTUPAN", "POSINT2DUPAN"},
    {TextureMotion::PanV, "TIMERVPAN", "SCRIPTVPAN", "POSINT2DVPAN"},
    {TextureMotion::SmallWavy, "TIMERSMALLWAVY", "SCRIPTSMALLWAVY", "WAVYPOSINT"},
};

struct CommonCycle {
  int Slow = 1;
  double Fast = 1;
};

/// After how many repeats of the slower direction both are where they began, within a thousandth.
CommonCycle FindCommonCycle(double slow, double fast) {
  CommonCycle best;
  double bestError = INFINITY;
  for (int repeats = 1; repeats <= maxRepeats && bestError > 0.001; ++repeats) {
    const double exact = repeats * fast / slow;
    const double error = std::fabs(std::round(exact) / exact - 1);
    if (error < bestError) best = {repeats, std::round(exact)};
    bestError = std::min(error, bestError);
  }
  return best;
}

/// `u` and `v` are in textures a second.
TextureMovement LineMovement(double u, double v) {
  if (!std::isfinite(u)) u = 0;
  if (!std::isfinite(v) || std::fabs(v) * maxRatio < std::fabs(u)) v = 0;
  if (std::fabs(u) * maxRatio < std::fabs(v)) u = 0;
  const double slow = std::min(std::fabs(u), std::fabs(v)), fast = std::max(std::fabs(u), std::fabs(v));
  if (fast == 0) return {};
  const CommonCycle cycle = slow == 0 ? CommonCycle() : FindCommonCycle(slow, fast);
  const auto extent = [&](double speed) {
    if (speed == 0) return 0.0;
    return std::copysign(std::fabs(speed) == fast ? cycle.Fast : cycle.Slow, speed);
  };
  return {false, {extent(u), extent(v)}, slow == 0 ? 1 / fast : cycle.Slow / slow};
}

std::string PairText(double u, double v) { return FormatFlt(u) + " " + FormatFlt(v); }

struct KeyFrames {
  std::string Keys, Values;
};

KeyFrames KeyFramesOf(const TextureMovement& movement) {
  if (!movement.Circles) return {"0 1", "0 0, " + PairText(movement.Extent.U, movement.Extent.V)};
  KeyFrames frames;
  for (int step = 0; step <= waveSteps; ++step) {
    const double fraction = static_cast<double>(step) / waveSteps;
    const double angle = 2 * Pi * (step % waveSteps) / waveSteps; // ends exactly where it begins
    if (step > 0) {
      frames.Keys += ' ';
      frames.Values += ", ";
    }
    frames.Keys += FormatFlt(fraction);
    frames.Values += PairText(movement.Extent.U * std::sin(angle), movement.Extent.V * std::cos(angle));
  }
  return frames;
}

/// In the text alone. The code stands on one line: some readers cannot take a string that spans several.
void WriteScript(SceneWriter& scene, const char* name, const TextureMovement& movement) {
  SceneNode script = scene.Open("", "Script", name, {.Scope = SceneScope::Text});
  script.TextField(" eventIn", "SFFloat set_fraction");
  script.TextField(" eventOut", "SFVec2f translation_changed");
  script.TextField(" field", "SFVec2f extent " + PairText(movement.Extent.U, movement.Extent.V));
  const char* u = movement.Circles ? "extent.x * Math.sin(value * 2 * Math.PI)" : "extent.x * value";
  const char* v = movement.Circles ? "extent.y * Math.cos(value * 2 * Math.PI)" : "extent.y * value";
  script.Strings(" url", std::string("javascript: function set_fraction(value, time) { translation_changed = ") +
                             "new SFVec2f(" + u + ", " + v + "); }");
}

void WriteInterpolator(SceneWriter& scene, const char* name, const KeyFrames& frames, SceneScope scope) {
  SceneNode node = scene.Open("", "PositionInterpolator2D", name, {.Scope = scope});
  node.List(" key", frames.Keys, ListLayout::OneLine);
  node.List(" keyValue", frames.Values, ListLayout::OneLine);
  if (!scene.Conforming())
    scene.NoteQuirk("the node \"PositionInterpolator2D\" in an X3D scene whose head names no component for it");
}

void WriteAnimation(SceneWriter& scene, const AnimationNames& names, const TextureMovement& movement) {
  const char* transform = TextureTransformName(names.Motion);
  const KeyFrames frames = KeyFramesOf(movement);
  WriteTimeSensor(scene, names.Timer, movement.Seconds, Cycles::Endless);
  const SceneScope interpolated = scene.IsX3DClassic() ? SceneScope::Both : SceneScope::Document;
  WriteInterpolator(scene, names.Interpolator, frames, interpolated);
  if (!scene.IsX3DClassic()) {
    WriteScript(scene, names.Script, movement);
    AddRoute(scene, names.Timer, "fraction_changed", names.Script, "set_fraction", SceneScope::Text);
    AddRoute(scene, names.Script, "translation_changed", transform, "set_translation", SceneScope::Text);
  }
  AddRoute(scene, names.Timer, "fraction_changed", names.Interpolator, "set_fraction", interpolated);
  AddRoute(scene, names.Interpolator, "value_changed", transform, "set_translation", interpolated);
}

} // namespace

TextureMovement MovementOf(TextureMotion motion, const TextureFile& image, const TexturePanSpeeds& speeds) {
  const double width = image.Width > 0 ? image.Width : unknownSide;
  const double height = image.Height > 0 ? image.Height : unknownSide;
  if (motion == TextureMotion::SmallWavy) return {true, {waveTexels / width, waveTexels / height}, waveSeconds};
  if (motion == TextureMotion::Still) return {};
  // A pan moves the point of the texture that a surface shows; V grows downwards in the engine and upwards here.
  const double u = motion == TextureMotion::PanV ? 0 : texelsPerSecond * speeds.U / width;
  const double v = motion == TextureMotion::PanU ? 0 : -texelsPerSecond * speeds.V / height;
  return LineMovement(u, v);
}

void WriteTextureAnimations(SceneWriter& scene, const MaterialWriter& materials, const TexturePanSpeeds& speeds) {
  for (const AnimationNames& names : animations) {
    const int texture = materials.DefinedBy(names.Motion);
    if (texture < 0) continue;
    const TextureMovement movement = MovementOf(names.Motion, materials.Entry(texture).File, speeds);
    if (movement.Seconds > 0) WriteAnimation(scene, names, movement);
  }
}

} // namespace quarvel
