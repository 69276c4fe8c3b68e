// The errors of a running script, as C++ exceptions inside the engine only.
#pragma once

#include <string>
#include <utility>

#include "script/values/Value.h"

namespace quorin::script {

// An AppleScript error; `try` catches it.
struct Failure {
  int number = 0;
  std::string message;
  Value offender = {};
  Value partial = {};
  Value expected = {};  // the class that something could not be made into
};

// The end of the whole call: cancelled or out of steps. No `try` catches it.
struct Stopped {};

[[noreturn]] void failCannotGet(const std::string& what, Value offender = {});
[[noreturn]] void failCannotCoerce(const Value& value, FourCharCode type);
[[noreturn]] void failStackOverflow();
[[noreturn]] void failOutOfMemory();

// Values may nest this deep before comparing, copying or sending them is a stack overflow.
constexpr int maximumValueDepth = 400;

// How many parts of values one operation may look at; shared parts count each time.
class WorkBudget {
 public:
  explicit WorkBudget(std::size_t parts = std::size_t{1} << 22) : left_(parts) {}
  void spend(std::size_t parts = 1) {
    if (parts > left_) failOutOfMemory();
    left_ -= parts;
  }

 private:
  std::size_t left_;
};

}  // namespace quorin::script
