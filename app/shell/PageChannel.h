// PageChannel: the way from the native side to the page: replies to its requests, and events.
// Events that arise while no page is loaded are held, in order and without a bound, until one is.
// Main thread only; owned by the panel.
#pragma once

#include <string>
#include <vector>

#include "app/shell/ports/WebView.h"
#include "kit/value/JSONValue.h"

namespace quorin {

class PageChannel {
 public:
  explicit PageChannel(WebView& view) : view_(view) {}

  // Settles the page's request `id`, whether a page is loaded or not: pages tolerate unknown ids.
  void reply(double id, bool ok, const JSONValue& payload);

  // Tells the page now, or once it has loaded.
  void sendEvent(const std::string& name, const JSONValue& payload);

  // A page begins to load, or is gone: nothing is sent until another one has finished.
  void pageLeft() { ready_ = false; }

  // A page has loaded: sends what was held. An event that finds the page gone again is held again.
  void pageFinished();

 private:
  struct Event {
    std::string name;
    JSONValue payload;
  };

  WebView& view_;
  bool ready_ = false;
  std::vector<Event> queued_;
};

}  // namespace quorin
