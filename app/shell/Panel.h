// Panel: the one window of the application. It shows the auditor's page beside Excel, answers the
// page's requests (its own verbs at once or on the file queue, all others on the bridge queue),
// passes events to it and brings it back after a failure. Hidden by closing, never destroyed before
// the end.
//
// Main thread only; a call on another thread stops the process. Owned by the application delegate.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/shell/PageChannel.h"
#include "app/shell/ReviewRequests.h"
#include "app/shell/ports/AppPlatform.h"
#include "kit/bridge/PanelBridge.h"
#include "kit/platform/Environment.h"
#include "kit/shapes/PanelPlacement.h"
#include "kit/support/DiagLog.h"
#include "kit/support/Queue.h"

namespace quorin {

class Panel : private PanelWindowDelegate, private WebViewDelegate {
 public:
  // Everything here must outlive the panel.
  struct Parts {
    AppPlatform& platform;
    PanelBridge& bridge;
    Queue& bridgeQueue;  // "qx.bridge"
    Queue& fileQueue;    // "qx.files"
    DiagLog& log;
    std::filesystem::path config;  // where the configuration file is, and reviews.json
    Environment environment;
  };

  static constexpr const char* frameDefaultsKey = "NSWindow Frame QuorinPanel";

  struct Event {
    std::string name;
    JSONValue payload;
  };

  // Builds the hidden window and starts loading the page.
  explicit Panel(Parts parts);
  ~Panel() override;

  Queue& bridgeQueue() { return parts_.bridgeQueue; }

  // True if the panel may come forward with Excel. Starts true, is cleared by the page's
  // "hidePanel" and set again whenever the user summons the panel.
  bool enabled() const { return enabled_; }

  // Called each time the panel is shown.
  void setOnSummon(std::function<void()> action) { onSummon_ = std::move(action); }

  // Who answers the verbs that concern the whole application, asked before the bridge; gives none
  // for any other verb.
  using Verbs = std::function<std::optional<PanelBridge::Reply>(const std::string& verb,
                                                                const JSONValue::Array& args)>;
  void setOnApplicationVerb(Verbs answer) { applicationVerbs_ = std::move(answer); }

  bool isVisible() const { return window_->isVisible(); }
  bool isKey() const { return window_->isKey(); }

  // True if the user has given the panel a place of its own, which then always counts.
  bool hasSavedFrame() const;

  // Shows the panel on the user's demand, with the keyboard, beside Excel's window unless the user
  // has given it a place, and sends the event.
  void show(const std::optional<BridgeShapes::WindowBounds>& beside, const Event& event);

  // Gives the keyboard to the panel, which is visible.
  void makeKey();

  // As show, where the panel is or was.
  void summon();

  // Shows the panel without taking the keyboard from Excel.
  void showCompanion();

  // Moves the panel beside Excel's window unless the user has given it a place.
  void positionBeside(const BridgeShapes::WindowBounds& excel);

  // Hides the panel together with Excel; the page clears its highlights.
  void hideCompanion();

  // Wide and narrow form. Widening moves the panel left as far as needed to stay on the screen,
  // narrowing takes exactly that back.
  void setWidth(bool expanded);

  // Gives the keyboard back to Excel; the panel stays visible.
  void relinquishKey();

  // Hides the panel; the page clears its highlights.
  void close();

  void sendEvent(const std::string& name, const JSONValue& payload);

 private:
  void loadWeb();
  void recoverPage();
  void requireMainThread(const char* what) const;

  void handleRequest(double id, const std::string& verb, const JSONValue::Array& args);
  // The reply of a verb of the panel's own; none when the verb belongs to the bridge.
  std::optional<PanelBridge::Reply> answerLocally(const std::string& verb,
                                                  const JSONValue::Array& args);
  PanelBridge::Reply highlightColor() const;
  PanelBridge::Reply isWelcomed() const;
  PanelBridge::Reply saveWelcomed();
  PanelBridge::Reply saveHighlightColor(const JSONValue::Array& args);
  void askBridge(double id, const std::string& verb, const JSONValue::Array& args);

  void panelWindowCloseRequested() override { close(); }
  void webViewDidReceiveMessage(const JSONValue& body) override;
  void webViewDidStartProvisionalNavigation() override;
  void webViewDidFinishNavigation() override;
  void webViewDidFailProvisionalNavigation(const std::string& description) override;
  void webViewDidFailNavigation(const std::string& description) override;
  void webViewDidRefuse(const std::string& what) override;
  void webViewWebProcessDidTerminate() override;

  Parts parts_;
  std::unique_ptr<WebView> webView_;
  std::unique_ptr<PanelWindow> window_;  // after the view, which it shows to its end
  PageChannel page_;
  ReviewRequests reviews_;
  std::function<void()> onSummon_;
  Verbs applicationVerbs_;
  bool enabled_ = true;
  bool expanded_ = false;
  double expandShift_ = 0;
  std::chrono::steady_clock::time_point loadedAt_{};
  int deathsInARow_ = 0;
  bool pageGivenUp_ = false;
  // What travels over the bridge queue finds out with this whether the panel is still there.
  std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace quorin
