// quorin-marks-keeper PIPE PROCESS: keeps the marks in the office that listens at the pipe. Its
// standard input is the socket of its owner, whose end means that all marks go. What MarksKeeper
// starts.
#include <csignal>
#include <cstdlib>
#include <exception>
#include <unistd.h>

#include "host/calc/keeper/Keeper.h"

int main(int count, char** arguments) {
  constexpr int badCall = 2;
  if (count != 3) return badCall;
  // Of the owner's files only the socket: one more held open would outlive whom it belongs to.
  ::close_range(STDERR_FILENO + 1, ~0U, 0);
  // When the session ends the owner ends too, and then there is work to do.
  for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGPIPE}) std::signal(signal, SIG_IGN);
  try {
    quorin::host::calc::Keeper keeper({std::atoi(arguments[2]), arguments[1]}, STDIN_FILENO);
    keeper.run();
  } catch (const std::exception&) {
    return EXIT_FAILURE;
  } catch (const css::uno::Exception&) {
    return EXIT_FAILURE;  // the office ended
  }
  return EXIT_SUCCESS;
}
