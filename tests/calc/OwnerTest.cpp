#include <gtest/gtest.h>
#include <unistd.h>

#include "host/calc/marks/Owner.h"
#include "host/calc/office/OfficeProcess.h"
#include "tests/calc/ChildProgram.h"

namespace quorin::host::calc {
namespace {

std::string ownerOf(pid_t process, int number) {
  return std::to_string(process) + "-" + std::to_string(startOf(process)) + "-" +
         std::to_string(number);
}

TEST(Owner, TakesCareOfWhatIsItsOwn) {
  const Owner owner = Owner::ofThisProcess();
  EXPECT_TRUE(owner.caresFor(owner.text()));
  EXPECT_EQ(owner.text().find(' '), std::string::npos);
}

TEST(Owner, TakesCareOfWhatAnEarlierOneOfItsProcessLeft) {
  const Owner first = Owner::ofThisProcess(), second = Owner::ofThisProcess();
  EXPECT_TRUE(second.caresFor(first.text()));
  EXPECT_FALSE(first.caresFor(second.text()));
}

TEST(Owner, LeavesToAnotherProcessWhatIsItsUntilThatIsGone) {
  const Owner owner = Owner::ofThisProcess();
  ChildProgram other({"/bin/cat"});
  const std::string its = ownerOf(other.process(), 1);
  EXPECT_FALSE(owner.caresFor(its));
  EXPECT_FALSE(Owner(its).caresFor(owner.text()));
  const std::string before = std::to_string(other.process()) + "-1-1";
  EXPECT_TRUE(owner.caresFor(before)) << "another process had its number then";
  other.kill();
  EXPECT_TRUE(owner.caresFor(its));
}

// Its parent may take its time to ask for its end.
TEST(Owner, TakesAProcessForGoneThatHasEnded) {
  const pid_t other = ::fork();
  if (other == 0) ::pause();
  const std::string its = ownerOf(other, 1);
  EXPECT_FALSE(Owner::ofThisProcess().caresFor(its));
  ::kill(other, SIGKILL);
  siginfo_t end{};
  ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(other), &end, WEXITED | WNOWAIT), 0);
  EXPECT_TRUE(Owner::ofThisProcess().caresFor(its));
  ::waitpid(other, nullptr, 0);
}

TEST(Owner, TakesCareOfWhatTellsNoOwner) {
  const Owner owner = Owner::ofThisProcess();
  for (const char* text : {"", "1", "1-2", "one-2-3", "1-2-3-4", "1-2-3 ", "-1-2-3"})
    EXPECT_TRUE(owner.caresFor(text)) << text;
}

}  // namespace
}  // namespace quorin::host::calc
