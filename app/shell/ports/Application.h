// Application: the process as the desktop sees it, and its event loop. Main thread only.
#pragma once

#include <chrono>
#include <functional>

namespace quorin {

// What the portable shell does at the two ends of a run.
class ApplicationDelegate {
 public:
  using GoOn = std::function<void()>;

  // The longest time that the delegate may keep the application from terminating.
  static constexpr std::chrono::milliseconds longestDelay{100};

  virtual ~ApplicationDelegate() = default;
  virtual void applicationDidFinishLaunching() = 0;  // once, from inside run()
  // Once, before applicationWillTerminate: what is still to be shown is shown now, while the event
  // loop runs. The application terminates when `goOn` is called, on the main thread, in this call
  // or later; without that after longestDelay. A second call has no effect.
  virtual void applicationShouldTerminate(GoOn goOn) { goOn(); }
  virtual void applicationWillTerminate() = 0;  // once, before run() or the process ends
  // The user has opened the application once more while it runs, where the desktop tells of it.
  virtual void applicationShouldHandleReopen() {}
};

class Application {
 public:
  virtual ~Application() = default;

  // No Dock icon, no task-bar entry.
  virtual void setAccessory() = 0;

  // The delegate must outlive run().
  virtual void setDelegate(ApplicationDelegate& delegate) = 0;

  // Runs the event loop until the application terminates. Whether it returns then is the platform's
  // affair; all that has to be done is done in applicationWillTerminate.
  virtual void run() = 0;

  // Ends the application after the current event; applicationShouldTerminate and
  // applicationWillTerminate are called first. A second call has no effect.
  virtual void terminate() = 0;

  // Brings the application to the front, for an alert.
  virtual void activate() = 0;
};

}  // namespace quorin
