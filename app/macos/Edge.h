// Where the system calls us: exceptions must not travel through its frames, C++ ones and those that
// the system's own classes raise inside of the work.
#pragma once

#import <Foundation/Foundation.h>
#include <exception>

namespace quorin {

// Runs the work; what it throws ends in the system's log.
template <typename Work>
void atEdge(const char* place, const Work& work) noexcept {
  @try {
    try {
      work();
    } catch (const std::exception& error) {
      NSLog(@"%s: %s", place, error.what());
    }
  } @catch (NSException* exception) {
    NSLog(@"%s: %@: %@", place, exception.name, exception.reason);
  } @catch (...) {
    NSLog(@"%s: an exception of an unknown kind", place);
  }
}

}  // namespace quorin
