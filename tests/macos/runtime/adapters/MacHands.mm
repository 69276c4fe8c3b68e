// The user's hands and other programs over the fakes of Apple's classes.
#include "tests/app/hands/Hands.h"
#include "tests/macos/runtime/appkit/Hands.h"
#include "tests/macos/runtime/appkit/LoginItems.h"

namespace quorin::contract {

Traits traits() {
  return {.tellsOfUserInput = false};
}

bool chooseFromMenu(const std::string& title) {
  if (menusInTheBar().empty()) return false;
  return userChooses(menusInTheBar().back(), title);
}

struct OtherProgram::Program {
  int process;
};

OtherProgram::OtherProgram(const std::string& identifier)
    : program_(std::make_unique<Program>(Program{startApplication(identifier)})) {
  comeForward();
}

OtherProgram::~OtherProgram() {
  endApplication(program_->process);
}

void OtherProgram::comeForward() const {
  bringForward(program_->process);
}

void refuseLoginItem(bool refused) {
  loginItems().refusal = refused ? "denied by the user" : "";
}

void pressAnyKey() {}

}  // namespace quorin::contract
