// The main queue, and sources that tell it of signals.
#include <atomic>
#include <chrono>
#include <csignal>
#import <dispatch/dispatch.h>
#include <dlfcn.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "tests/macos/runtime/foundation/Loop.h"
#include "tests/macos/runtime/objc/Runtime.h"

struct dispatch_queue_s {
  void* unused[2];
};
struct dispatch_source_type_s {
  char unused;
};

extern "C" {
struct dispatch_queue_s _dispatch_main_q;
extern const struct dispatch_source_type_s _dispatch_source_type_signal {};
}

using namespace quorin;

namespace {

constexpr int signals = 65;

// The kernel tells a source of each signal beside the signal's handler (kqueue's EVFILT_SIGNAL).
// Here the handler is told through one of ours, which comes between.
struct Watched {
  std::atomic<int> sources{0};
  std::atomic<void (*)(int)> handler{nullptr};
  std::atomic<bool> ignored{false};
};
Watched watched[signals];
int pipeEnds[2] = {-1, -1};

void arrived(int signal) {
  const auto byte = static_cast<unsigned char>(signal);
  [[maybe_unused]] const auto written = ::write(pipeEnds[1], &byte, 1);
  if (void (*handler)(int) = watched[signal].handler) handler(signal);
}

int systemSigaction(int signal, const struct sigaction* action, struct sigaction* before) {
  using Function = int (*)(int, const struct sigaction*, struct sigaction*);
  static const auto next = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "sigaction"));
  return next(signal, action, before);
}

}  // namespace

@interface QXFakeSource : NSObject <OS_dispatch_source>
@end

@implementation QXFakeSource {
 @public
  int _signal;
  bool _active;
  bool _cancelled;
  dispatch_block_t _event;
  dispatch_block_t _registration;
}

// "Releasing the last reference to a source that was never activated is an error" and crashes
// (dispatch_activate, dispatch_release).
- (void)dealloc {
  if (!_active) objc::breach("a dispatch source is released that was never activated");
  if (!_cancelled) objc::breach("a signal's source is released and was not cancelled");
}

@end

namespace {

// Those that were activated and not cancelled; main thread.
std::vector<QXFakeSource*>& sources() {
  static auto& all = *new std::vector<QXFakeSource*>;
  return all;
}

QXFakeSource* of(NSObject* source) {
  return static_cast<QXFakeSource*>(source);
}

void tell(int signal) {
  const auto all = sources();
  for (QXFakeSource* each : all) {
    if (each->_signal == signal && each->_event) each->_event();
  }
}

void watchSignals() {
  if (::pipe(pipeEnds) != 0) objc::breach("no pipe for signals");
  const auto loop = Loop::main();
  std::thread([loop] {
    unsigned char signal = 0;
    while (::read(pipeEnds[0], &signal, 1) == 1) {
      loop->performOnMainQueue([signal] { tell(signal); });
    }
  }).detach();
}

}  // namespace

extern "C" {

int sigaction(int signal, const struct sigaction* action, struct sigaction* before) noexcept {
  if (!action || signal < 0 || signal >= signals || watched[signal].sources == 0 ||
      action->sa_handler == SIG_DFL) {
    const int answer = systemSigaction(signal, action, before);
    // Ours that comes between is no answer to who asks.
    if (!action && before && before->sa_handler == &arrived && watched[signal].ignored)
      before->sa_handler = SIG_IGN;
    return answer;
  }
  watched[signal].ignored = action->sa_handler == SIG_IGN;
  watched[signal].handler = action->sa_handler == SIG_IGN ? nullptr : action->sa_handler;
  struct sigaction between = *action;
  between.sa_handler = &arrived;
  return systemSigaction(signal, &between, before);
}

void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) {
  if (queue != dispatch_get_main_queue()) objc::breach("there is no queue but the main queue");
  Loop::main()->performOnMainQueue([block] { block(); });
}

dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta) {
  if (when != DISPATCH_TIME_NOW) objc::breach("a time that does not begin now");
  return static_cast<dispatch_time_t>(delta);
}

void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block) {
  const auto timer = std::make_shared<Loop::Timer>();
  timer->next = std::chrono::steady_clock::now() + std::chrono::nanoseconds(when);
  timer->fire = [queue, block] { dispatch_async(queue, block); };
  Loop::main()->add(timer, Loop::commonModes);
}

dispatch_source_t dispatch_source_create(dispatch_source_type_t type, uintptr_t handle,
                                         uintptr_t mask, dispatch_queue_t queue) {
  if (type != DISPATCH_SOURCE_TYPE_SIGNAL || queue != dispatch_get_main_queue())
    objc::breach("a source of another kind, or at another queue");
  if (pipeEnds[0] < 0) watchSignals();
  QXFakeSource* made = [[QXFakeSource alloc] init];
  made->_signal = static_cast<int>(handle);
  return made;
}
void dispatch_source_set_event_handler(dispatch_source_t source, dispatch_block_t handler) {
  of(source)->_event = handler;
}
void dispatch_source_set_registration_handler(dispatch_source_t source, dispatch_block_t handler) {
  of(source)->_registration = handler;
}
// "Sources are created in an inactive state": nothing is told before.
void dispatch_activate(dispatch_object_t object) {
  QXFakeSource* source = of(object);
  source->_active = true;
  ++watched[source->_signal].sources;
  sources().push_back(source);
  Loop::main()->performOnMainQueue([source] {
    if (!source->_cancelled && source->_registration) source->_registration();
    source->_registration = nil;
  });
}
void dispatch_source_cancel(dispatch_source_t source) {
  QXFakeSource* cancelled = of(source);
  if (std::exchange(cancelled->_cancelled, true)) return;
  --watched[cancelled->_signal].sources;
  cancelled->_event = nil;
  cancelled->_registration = nil;
  std::erase(sources(), cancelled);
}
}
