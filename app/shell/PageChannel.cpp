#include "app/shell/PageChannel.h"

#include <utility>

#include "kit/value/Marshal.h"

namespace quorin {

void PageChannel::reply(double id, bool ok, const JSONValue& payload) {
  // The payload may be large: it is not copied into an object for this.
  std::string call = "window.__qxResolve(" + Marshal::encode(id);
  call += ok ? ", {\"ok\":true,\"payload\":" : ", {\"ok\":false,\"payload\":";
  call += Marshal::encode(payload);
  call += "})";
  view_.evaluate(call);
}

void PageChannel::sendEvent(const std::string& name, const JSONValue& payload) {
  if (!ready_) {
    queued_.push_back({name, payload});
    return;
  }
  view_.evaluate("window.__qxEvent && window.__qxEvent(" + Marshal::encode(name) + ", " +
                 Marshal::encode(payload) + ")");
}

void PageChannel::pageFinished() {
  ready_ = true;
  const std::vector<Event> held = std::exchange(queued_, {});
  for (const Event& event : held) sendEvent(event.name, event.payload);
}

}  // namespace quorin
