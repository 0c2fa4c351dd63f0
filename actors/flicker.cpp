#include "actors/flicker.h"

#include "actors/script_writer.h"
#include "base/ascii_text.h"

namespace quarvel {

bool Flickers(const LightRecord& light) { return SameText(light.LightEffect, "LT_FLICKER"); }

std::string WriteFlicker(SceneContext& context, const std::string& base) {
  SceneWriter& scene = context.Scene;
  SceneNode script = scene.Open("", "Script", base + "SCRIPT");
  // By default the document declares another type than the text, and all timers have one name.
  WriteScriptField(script, "eventIn  SFFloat  set_time", {scene.Conforming() ? "SFFloat" : "SFBool", {}});
  WriteScriptField(script, "eventOut SFBool  bool_changed");
  script.Code({"  function set_time(value,time) {", "     bool_changed = (Math.random() > .5);", "  }"}, "", "");
  script.Close();
  const std::string timer = scene.Conforming() ? base + "TIMER" : "FlickerTimer";
  WriteTimeSensor(scene, timer, 1, true, true);
  if (!scene.Conforming()) {
    scene.NoteQuirk("the one name of all flicker timers");
    scene.NoteQuirk("the type of the time in the flicker scripts of the .x3d");
  }
  return timer;
}

void RouteFlicker(SceneContext& context, const std::string& base, const std::string& timer, const std::string& light) {
  AddRoute(context.Scene, base + "SCRIPT", "bool_changed", light, "set_on");
  AddRoute(context.Scene, timer, "fraction_changed", base + "SCRIPT", "set_time");
}

} // namespace quarvel
