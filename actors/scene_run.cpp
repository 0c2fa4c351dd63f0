#include "actors/scene_run.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

namespace quarvel {

SceneRun::SceneRun(const LevelRun& run, TextFile& file, std::string sceneName, const ConversionSettings& settings,
                   const ScenePart& part, const SkyZoneRecord* sky)
    : Level(run.Level), Part(part), Sky(sky), File(file), SceneName(std::move(sceneName)),
      Context(file, settings, run.Resources, run.User, run.Findings, run.Level.LitColor), Numbers(run.Numbers),
      Totals(run.Totals) {}

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
