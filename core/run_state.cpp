#include "core/run_state.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace quarvel {

RunState::RunState(const SceneFileNames& files, const ConversionSettings& settings, const T3DLevel& level,
                   const ScenePart& part, const SkyZoneRecord* sky, SceneOutputs& outputs,
                   std::filesystem::path& textName, ResourceFiles& resources, NumberCheck& numbers, RunInterface& user,
                   RunResult& result)
    : Level(level), Part(part), Sky(sky), Result(result), Outputs(outputs),
      File(outputs.Begin(files.Text, settings.CheckConforming ? TextCoding::Utf8 : TextCoding::AsIs, textName)),
      Context(File, settings, resources, user, result.Findings, level.LitColor), Numbers(numbers),
      SceneName(files.Document.stem().string()) {}

void StepOn(RunState& run) {
  const double total = static_cast<double>(std::max<std::size_t>(run.Level.Actors.size(), 1));
  run.Context.User.ShowFraction(std::min(1.0, static_cast<double>(++run.ActorsDone) / total));
  run.Context.User.ProcessEvents();
  if (run.Context.User.StopRequested()) throw RunStopped();
}

void WaitWhilePaused(RunState& run) {
  while (!run.Context.User.RunActive()) {
    run.Context.User.ShowItem("Paused");
    run.Context.User.ProcessEvents();
    if (run.Context.User.StopRequested()) throw RunStopped();
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

void FlushBlock(RunState& run) { run.Context.Scene.Flush(); }

} // namespace quarvel
