#include "app/cli/command_line.h"

#include <atomic>
#include <csignal>
#include <iostream>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::atomic<bool> stopRequested = false;
static_assert(std::atomic<bool>::is_always_lock_free);

/// The run ends at its next look; a second signal ends the program as usual.
extern "C" void RequestStop(int signal) {
  stopRequested = true;
  std::signal(signal, SIG_DFL);
}

/// A call that waits (opening a pipe that nobody reads) is broken off, not taken up again.
void StopBy(int signal) {
  struct sigaction action {};
  action.sa_handler = RequestStop;
  sigaction(signal, &action, nullptr);
}

/// The desktop knows the user's browser. The file's name never sees a shell.
bool OpenInBrowser(const std::filesystem::path& file) {
  std::string program = "xdg-open", path = std::filesystem::absolute(file).string();
  char* arguments[] = {program.data(), path.data(), nullptr};
  pid_t child = 0;
  int status = 0;
  return posix_spawnp(&child, program.c_str(), nullptr, nullptr, arguments, environ) == 0 &&
         waitpid(child, &status, 0) == child && status == 0;
}

} // namespace

int main(int argc, char** argv) {
  StopBy(SIGINT);
  StopBy(SIGTERM);
  const quarvel::Console console{std::cout, std::cerr, isatty(STDERR_FILENO) == 1, [] { return stopRequested.load(); },
                                 OpenInBrowser};
  return static_cast<int>(quarvel::RunCommandLine(argc, argv, console));
}
