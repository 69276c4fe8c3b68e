// quorin-marks-keeper PIPE PROCESS OWNER: keeps the marks and shown lines of that owner in the
// office that listens at the pipe. Its standard input is the owner's socket, whose end means that
// all of them go. What MarksKeeper starts.
//
// Two processes, of which the second does the work. The office waits for its answers, and would
// wait for ever while somebody has it stopped; so the first one ends it when it stops, and ends
// with it. The owner starts another where there are marks.
#include <csignal>
#include <cstdlib>
#include <exception>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/calc/keeper/Keeper.h"

namespace {

using quorin::host::calc::Keeper;
using quorin::host::calc::Owner;

int keep(const char* pipe, int process, const char* owner) {
  try {
    Keeper keeper({process, pipe}, Owner(owner), STDIN_FILENO);
    keeper.run();
  } catch (const std::exception&) {
    return EXIT_FAILURE;
  } catch (const css::uno::Exception&) {
    return EXIT_FAILURE;  // the office ended
  }
  return EXIT_SUCCESS;
}

// Until the process ends; one that stops is ended. Its exit status.
int guard(pid_t keeper) {
  ::close(STDIN_FILENO);  // the owner is to see when the keeper has gone
  int status = 0;
  while (::waitpid(keeper, &status, WUNTRACED) == keeper && WIFSTOPPED(status)) {
    ::kill(keeper, SIGKILL);
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : EXIT_FAILURE;
}

}  // namespace

int main(int count, char** arguments) {
  constexpr int badCall = 2;
  if (count != 4) return badCall;
  // Of the owner's files only the socket: one more held open would outlive whom it belongs to.
  ::close_range(STDERR_FILENO + 1, ~0U, 0);
  // When the session ends the owner ends too, and then there is work to do.
  for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGPIPE}) std::signal(signal, SIG_IGN);
  const pid_t first = ::getpid();
  const pid_t second = ::fork();
  if (second < 0) return EXIT_FAILURE;
  if (second > 0) return guard(second);
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != first) return EXIT_FAILURE;
  return keep(arguments[1], std::atoi(arguments[2]), arguments[3]);
}
