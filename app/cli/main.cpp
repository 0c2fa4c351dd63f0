#include "app/cli/command_line.h"

#include <atomic>
#include <csignal>
#include <iostream>
#include <unistd.h>

namespace {

std::atomic<bool> stopRequested = false;
static_assert(std::atomic<bool>::is_always_lock_free);

/// The run ends at its next look; a second signal ends the program as usual.
extern "C" void RequestStop(int signal) {
  stopRequested = true;
  std::signal(signal, SIG_DFL);
}

} // namespace

int main(int argc, char** argv) {
  std::signal(SIGINT, RequestStop);
  std::signal(SIGTERM, RequestStop);
  const quarvel::Console console{std::cout, std::cerr, isatty(STDERR_FILENO) == 1, [] { return stopRequested.load(); }};
  return static_cast<int>(quarvel::RunCommandLine(argc, argv, console));
}
