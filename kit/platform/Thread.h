// Names of threads, and the one thread that is the main thread. Wrong-thread use stops the process
// with a message that names both threads.
#pragma once

#include <string>
#include <string_view>

namespace quorin {

// The name a thread goes by in messages; a thread without one is named by its number.
void nameCurrentThread(std::string name);
std::string currentThreadName();

// What else is done on every thread that is named from now on, by the thread itself: the system's
// own name for it, say. Set before other threads start; null: nothing.
using ThreadNamed = void (*)(const std::string& name);
void setOnThreadNamed(ThreadNamed action);

// Stops the process: "<what> belongs on the thread <owner> but was called on <this one>".
[[noreturn]] void stopForWrongThread(std::string_view what, std::string_view owner);

namespace MainThread {

// Makes the calling thread the main one. `main` calls it before it starts any other thread.
void record();
// False on every thread as long as none is recorded.
bool isCurrent();
// Stops the process unless called on the main thread. `what` names the entry: "Panel::show".
void require(std::string_view what);
// Stops the process when called on the main thread.
void forbid(std::string_view what);

}  // namespace MainThread

}  // namespace quorin
