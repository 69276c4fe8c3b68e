// SessionBus: a message bus of the test's own, on which nothing starts by itself. This process and
// the programs it starts use it while it lives.
#pragma once

#include <memory>
#include <string>

#include "tests/fakes/ui/ChildProcess.h"

namespace quorin::ui {

class SessionBus {
 public:
  SessionBus();
  ~SessionBus();

  const std::string& address() const { return address_; }

 private:
  std::string folder_;
  std::string address_;
  std::unique_ptr<ChildProcess> daemon_;
};

}  // namespace quorin::ui
