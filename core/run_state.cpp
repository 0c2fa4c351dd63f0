#include "core/run_state.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace quarvel {

namespace {

TextEncoding EncodingOf(const ConversionSettings& settings) {
  if (settings.OptionFlux) return TextEncoding::X3DClassic;
  return settings.OptionContact ? TextEncoding::Contact : TextEncoding::Vrml97;
}

} // namespace

RunState::RunState(const SceneFileNames& files, const ConversionSettings& settings, const T3DLevel& level,
                   ResourceFiles& resources, RunInterface& user, RunResult& result)
    : Settings(settings), Level(level), User(user), Result(result),
      File(files.Text, settings.CheckConforming ? TextCoding::Utf8 : TextCoding::AsIs),
      Scene(File, EncodingOf(settings), settings.CheckConforming), Resources(resources),
      Materials(Scene, Resources, settings, level.LitColor),
      Meshes(Scene, Resources, settings), Geometry{Scene, Materials, settings, user, result.Findings},
      Actors{Scene, settings, resources, Materials, user, result.Findings}, Numbers{user} {}

void StepOn(RunState& run) {
  const double total = static_cast<double>(std::max<std::size_t>(run.Level.Actors.size(), 1));
  run.User.ShowFraction(std::min(1.0, static_cast<double>(++run.ActorsDone) / total));
  run.User.ProcessEvents();
  if (run.User.StopRequested()) throw RunStopped();
}

void WaitWhilePaused(RunState& run) {
  while (!run.User.RunActive()) {
    run.User.ShowItem("Paused");
    run.User.ProcessEvents();
    if (run.User.StopRequested()) throw RunStopped();
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

void FlushBlock(RunState& run) { run.Scene.Flush(); }

} // namespace quarvel
