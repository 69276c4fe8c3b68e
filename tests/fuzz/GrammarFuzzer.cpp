// Plays scripts that a grammar writes until the time is over.
//
//   grammar_fuzzer SECONDS [SEED]   each script has a seed of its own, from SEED on
//   grammar_fuzzer show SEED        prints the script of a seed
//
// A crash, or a script that takes more than a minute, ends the process after a line with its seed.
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <unistd.h>

#include "tests/fuzz/ScriptGrammar.h"
#include "tests/fuzz/ScriptPlayer.h"

// Where the program is built with a sanitizer, what runs before it ends the process.
extern "C" void __sanitizer_set_death_callback(void (*)()) __attribute__((weak));

namespace {

constexpr unsigned longestScript = 60;  // seconds

std::atomic<std::uint64_t> seed = 0;

// Only what a signal handler may do.
void nameSeed() {
  char text[] = "\nin the script of seed 00000000000000000000\n";
  std::uint64_t rest = seed;
  for (char* digit = text + sizeof text - 3; rest > 0; --digit, rest /= 10)
    *digit = static_cast<char>('0' + rest % 10);
  [[maybe_unused]] const auto written = write(STDERR_FILENO, text, sizeof text - 1);
}

void nameSeedAndEnd(int number) {
  nameSeed();
  std::signal(number, SIG_DFL);
  std::raise(number);
}

}  // namespace

int main(int count, char** arguments) {
  using quorin::fuzz::ScriptGrammar;
  const std::string_view first = count > 1 ? arguments[1] : "";
  const std::uint64_t second = count > 2 ? std::strtoull(arguments[2], nullptr, 10) : 1;
  if (first == "show") {
    std::fputs(ScriptGrammar(second).script().c_str(), stdout);
    return 0;
  }
  const long seconds = std::strtol(std::string(first).c_str(), nullptr, 10);
  if (seconds < 1) {
    std::fputs("usage: grammar_fuzzer SECONDS [SEED] | show SEED\n", stderr);
    return 2;
  }
  if (__sanitizer_set_death_callback) __sanitizer_set_death_callback(nameSeed);
  std::signal(SIGABRT, nameSeedAndEnd);
  std::signal(SIGALRM, nameSeedAndEnd);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  std::uint64_t compiled = 0;
  for (seed = second; std::chrono::steady_clock::now() < end; ++seed) {
    alarm(longestScript);
    compiled += quorin::fuzz::play(ScriptGrammar(seed).script()) ? 1 : 0;
  }
  alarm(0);
  const std::uint64_t played = seed - second;
  std::printf("%llu scripts, %llu of them compiled\n", static_cast<unsigned long long>(played),
              static_cast<unsigned long long>(compiled));
  // A grammar whose scripts do not compile would try the parser's first steps alone.
  return compiled * 4 >= played ? 0 : 1;
}
