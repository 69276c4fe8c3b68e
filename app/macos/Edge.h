// Where the system calls us: C++ exceptions must not travel through its frames.
#pragma once

#import <Foundation/Foundation.h>
#include <exception>

namespace quorin {

// Runs the work; what it throws ends in the system's log.
template <typename Work>
void atEdge(const char* place, const Work& work) noexcept {
  try {
    work();
  } catch (const std::exception& error) {
    NSLog(@"%s: %s", place, error.what());
  } catch (...) {
    NSLog(@"%s: an exception of an unknown kind", place);
  }
}

}  // namespace quorin
