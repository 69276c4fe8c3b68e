// CompileError: why a script's text did not compile, and where. A plain value.
#pragma once

#include <cstddef>
#include <string>

namespace quorin::script {

struct CompileError {
  int number = -2741;      // -2741 and -2740 for syntax, others as AppleScript numbers them
  std::string message;     // "Expected end of line but found identifier."
  int line = 0;            // 1-based
  std::size_t offset = 0;  // of the offending text in the source, in bytes
  std::size_t length = 0;  // of the offending text, in bytes
  bool operator==(const CompileError&) const = default;
};

}  // namespace quorin::script
