#include "actors/scene_run.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace quarvel {

SceneRun::SceneRun(const std::filesystem::path& textFile, const ConversionSettings& settings, const T3DLevel& level,
                   const ScenePart& part, const SkyZoneRecord* sky, ResourceFiles& resources, RunInterface& user,
                   Report& findings)
    : Level(level), Part(part), Sky(sky),
      File(textFile, settings.CheckConforming ? TextCoding::Utf8 : TextCoding::AsIs),
      Context(File, settings, resources, user, findings, level.LitColor), Numbers{user} {}

void StepOn(SceneRun& run) {
  const double total = static_cast<double>(std::max<std::size_t>(run.Level.Actors.size(), 1));
  run.Context.User.ShowFraction(std::min(1.0, static_cast<double>(++run.ActorsDone) / total));
  run.Context.User.ProcessEvents();
  if (run.Context.User.StopRequested()) throw RunStopped();
}

void WaitWhilePaused(SceneRun& run) {
  while (!run.Context.User.RunActive()) {
    run.Context.User.ShowItem("Paused");
    run.Context.User.ProcessEvents();
    if (run.Context.User.StopRequested()) throw RunStopped();
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

} // namespace quarvel
