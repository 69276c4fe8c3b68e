#include "app/linux/GLibMainLoop.h"

#include <glib.h>

#include "kit/platform/Thread.h"

namespace quorin {

namespace {

// The action outlives its source as long as it runs, so that it may destroy its own timer.
struct Work {
  std::shared_ptr<MainLoop::Action> action;
  bool repeats = false;
};

gboolean perform(gpointer data) {
  const Work work = *static_cast<Work*>(data);
  (*work.action)();
  return work.repeats ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
}

void attach(GSource* source, MainLoop::Action action, bool repeats) {
  auto* work = new Work{std::make_shared<MainLoop::Action>(std::move(action)), repeats};
  g_source_set_callback(source, perform, work,
                        [](gpointer data) { delete static_cast<Work*>(data); });
  g_source_attach(source, nullptr);
}

class GLibTimer : public Timer {
 public:
  GLibTimer(std::chrono::milliseconds interval, TimerKind kind, MainLoop::Action action)
      : source_(g_timeout_source_new(static_cast<guint>(interval.count()))) {
    attach(source_, std::move(action), kind == TimerKind::repeating);
  }
  ~GLibTimer() override {
    g_source_destroy(source_);
    g_source_unref(source_);
  }

 private:
  GSource* source_;
};

}  // namespace

bool GLibMainLoop::isMainThread() const {
  return MainThread::isCurrent();
}

// An attached source and not g_main_context_invoke, which would run the action at once when called
// on the main thread.
void GLibMainLoop::post(Action action) {
  GSource* source = g_idle_source_new();
  g_source_set_priority(source, G_PRIORITY_DEFAULT);
  attach(source, std::move(action), false);
  g_source_unref(source);
}

std::unique_ptr<Timer> GLibMainLoop::startTimer(std::chrono::milliseconds interval, TimerKind kind,
                                                Action action) {
  return std::make_unique<GLibTimer>(interval, kind, std::move(action));
}

}  // namespace quorin
