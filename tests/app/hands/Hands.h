// Hands: the user and the user's other programs, for the contract suites of this folder. A Mac's
// own tests have none: no program may act so for a user there. Beside the fakes and on Linux's
// displays each test program defines the functions below. Main thread only.
#pragma once

#include <memory>
#include <string>

#include "app/shell/ports/StatusItem.h"
#include "tests/app/contract/ContractWorld.h"

namespace quorin::contract {

// What one platform does otherwise than another, and may.
struct Traits {
  // Somebody tells of keys and buttons that are pressed in whichever program (UserInput).
  bool tellsOfUserInput = true;
};

Traits traits();

// The user opens the menu of the status item made last and chooses the item of this title. False
// where it is not there or cannot be chosen.
bool chooseFromMenu(const std::string& title);

// Another program of the user's starts, in front of all others, as the desktop knows it: the same
// identifier twice is the same program started twice.
class OtherProgram {
 public:
  explicit OtherProgram(const std::string& identifier);
  ~OtherProgram();  // it ends
  OtherProgram(const OtherProgram&) = delete;
  OtherProgram& operator=(const OtherProgram&) = delete;

  void comeForward() const;

 private:
  struct Program;
  const std::unique_ptr<Program> program_;
};

// From now on the system keeps the program from starting with the session, or no longer.
void refuseLoginItem(bool refused);

// The user presses a key in whichever program.
void pressAnyKey();

}  // namespace quorin::contract
