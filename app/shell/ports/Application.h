// Application: the process as the desktop sees it, and its event loop. Main thread only.
#pragma once

namespace quorin {

// What the portable shell does at the two ends of a run.
class ApplicationDelegate {
 public:
  virtual ~ApplicationDelegate() = default;
  virtual void applicationDidFinishLaunching() = 0;  // once, from inside run()
  virtual void applicationWillTerminate() = 0;       // once, before run() or the process ends
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

  // Ends the application after the current event; applicationWillTerminate is called first. A
  // second call has no effect.
  virtual void terminate() = 0;

  // Brings the application to the front, for an alert.
  virtual void activate() = 0;
};

}  // namespace quorin
