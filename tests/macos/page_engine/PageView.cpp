#include "tests/macos/page_engine/PageView.h"

#include <algorithm>
#include <memory>
#include <sstream>
#include <string_view>
#include <utility>

#include "tests/macos/page_engine/Wire.h"

namespace quorin {
namespace {

// WKWebView does not connect to where links lead before anyone goes there.
void turnOffPreconnecting(WebKitSettings* settings) {
#if WEBKIT_CHECK_VERSION(2, 42, 0)
  WebKitFeatureList* const all = webkit_settings_get_all_features();
  for (gsize i = 0; i < webkit_feature_list_get_length(all); ++i) {
    WebKitFeature* const feature = webkit_feature_list_get(all, i);
    const std::string_view name = webkit_feature_get_identifier(feature);
    if (name.starts_with("LinkPreconnect") || name == "LinkDNSPrefetch")
      webkit_settings_set_feature_enabled(settings, feature, FALSE);
  }
  webkit_feature_list_unref(all);
#else
  webkit_settings_set_enable_dns_prefetching(settings, FALSE);
#endif
}

// WebKit on a Mac calls itself so; pages tell by it which keys there are.
constexpr const char* agent =
    "Mozilla/5.0 (Macintosh; Intel Mac OS X 10_15_7) AppleWebKit/605.1.15 (KHTML, like Gecko)";
constexpr const char* platform =
    "Object.defineProperty(Navigator.prototype, 'platform', {get: () => 'MacIntel'})";

const char* addressOf(WebKitPolicyDecision* decision) {
  WebKitNavigationAction* const action = webkit_navigation_policy_decision_get_navigation_action(
      WEBKIT_NAVIGATION_POLICY_DECISION(decision));
  const char* const address =
      webkit_uri_request_get_uri(webkit_navigation_action_get_request(action));
  return address ? address : "";
}

void send(GdkEvent* event, GtkWidget* to, GdkDevice* device) {
  event->any.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(to)));
  event->any.send_event = TRUE;
  gdk_event_set_device(event, device);
  gtk_main_do_event(event);
  gdk_event_free(event);
}

GdkSeat* seat() {
  return gdk_display_get_default_seat(gdk_display_get_default());
}

}  // namespace

PageView::PageView(int socket) : socket_(socket), content_(webkit_user_content_manager_new()) {
  const GObjectPtr<WebKitWebsiteDataManager> data(webkit_website_data_manager_new_ephemeral());
  const GObjectPtr<WebKitWebContext> context(
      webkit_web_context_new_with_website_data_manager(data.get()));
  const GObjectPtr<WebKitSettings> settings(webkit_settings_new());
  webkit_settings_set_hardware_acceleration_policy(settings.get(),
                                                   WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
  turnOffPreconnecting(settings.get());
  webkit_settings_set_user_agent(settings.get(), agent);
  view_ = WEBKIT_WEB_VIEW(g_object_new(WEBKIT_TYPE_WEB_VIEW, "web-context", context.get(),
                                       "user-content-manager", content_.get(), "settings",
                                       settings.get(), nullptr));
  g_signal_connect(view_, "load-changed", G_CALLBACK(loadChanged), this);
  g_signal_connect(view_, "load-failed", G_CALLBACK(loadFailed), this);
  g_signal_connect(view_, "decide-policy", G_CALLBACK(decide), this);
  g_signal_connect(view_, "permission-request", G_CALLBACK(permission), this);
  refuseWhatNobodyAsks();
  told("script", platform);
  window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_window_set_decorated(GTK_WINDOW(window_), FALSE);
  gtk_container_add(GTK_CONTAINER(window_), GTK_WIDGET(view_));
}

// What macOS refuses by itself: downloads nobody takes, permissions that the program does not ask
// the system for. A window that was allowed is told.
void PageView::refuseWhatNobodyAsks() {
  g_signal_connect(webkit_web_view_get_context(view_), "download-started",
                   G_CALLBACK(+[](WebKitWebContext*, WebKitDownload* download, gpointer) {
                     webkit_download_cancel(download);
                   }),
                   nullptr);
  g_signal_connect(view_, "create",
                   G_CALLBACK(+[](WebKitWebView*, WebKitNavigationAction*, gpointer self) {
                     static_cast<PageView*>(self)->tell("window");
                     return static_cast<GtkWidget*>(nullptr);
                   }),
                   this);
  g_signal_connect(view_, "web-process-terminated",
                   G_CALLBACK(+[](WebKitWebView*, WebKitWebProcessTerminationReason,
                                  gpointer self) { static_cast<PageView*>(self)->tell("gone"); }),
                   this);
}

void PageView::tell(const std::string& word, const std::string& text) const {
  wire::send(socket_, word, text);
}

std::string PageView::ask(const char* word, GObject* about, const std::string& text) {
  const std::string number = std::to_string(++asked_);
  open_[number].reset(G_OBJECT(g_object_ref(about)));
  tell(word, number + " " + text);
  return number;
}

void PageView::told(const std::string& word, std::string text) {
  if (word == "script") {
    WebKitUserScript* script =
        webkit_user_script_new(text.c_str(), WEBKIT_USER_CONTENT_INJECT_TOP_FRAME,
                               WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START, nullptr, nullptr);
    webkit_user_content_manager_add_script(content_.get(), script);
    webkit_user_script_unref(script);
  } else if (word == "handler") {
    g_signal_connect(content_.get(), ("script-message-received::" + text).c_str(),
                     G_CALLBACK(message), this);
    webkit_user_content_manager_register_script_message_handler(content_.get(), text.c_str());
  } else if (word == "load") {
    load(std::move(text));
  } else if (word == "html") {
    seconds_ = 0;
    webkit_web_view_load_html(view_, text.c_str(), nullptr);
  } else if (word == "reload") {
    webkit_web_view_reload(view_);
  } else if (word == "run") {
    webkit_web_view_evaluate_javascript(view_, text.data(), static_cast<gssize>(text.size()),
                                        nullptr, nullptr, nullptr, nullptr, nullptr);
  } else if (word == "ask") {
    evaluate(std::move(text));
  } else if (word == "window") {
    show(text);
  } else if (word == "answer") {
    answered(std::move(text));
  } else if (word == "click") {
    click(text);
  } else if (word == "key") {
    key(text);
  }
}

void PageView::load(std::string text) {
  seconds_ = static_cast<guint>(std::stod(wire::takeWord(text)));
  webkit_web_view_load_uri(view_, text.c_str());
}

void PageView::evaluate(std::string text) {
  struct Asked {
    PageView& view;
    std::string number;
  };
  auto* const asked = new Asked{*this, wire::takeWord(text)};
  webkit_web_view_evaluate_javascript(
      view_, text.data(), static_cast<gssize>(text.size()), nullptr, nullptr, nullptr,
      [](GObject* view, GAsyncResult* done, gpointer data) {
        const std::unique_ptr<Asked> mine(static_cast<Asked*>(data));
        GError* error = nullptr;
        const GObjectPtr<JSCValue> value(
            webkit_web_view_evaluate_javascript_finish(WEBKIT_WEB_VIEW(view), done, &error));
        const GErrorPtr owned(error);
        const GTextPtr json(value ? jsc_value_to_json(value.get(), 0) : nullptr);
        const std::string told = error ? std::string("error ") + error->message
                                       : "ok " + std::string(json ? json.get() : "null");
        mine->view.tell("value", mine->number + " " + told);
      },
      asked);
}

void PageView::show(const std::string& text) {
  std::istringstream words(text);
  int width = 0, height = 0;
  bool visible = false, key = false;
  words >> width >> height >> visible >> key;
  gtk_window_resize(GTK_WINDOW(window_), std::max(width, 1), std::max(height, 1));
  if (visible) {
    gtk_widget_show_all(window_);
  } else {
    gtk_widget_hide(window_);
  }
  takeFocus(visible && key);
}

// There is no window manager to give it.
void PageView::takeFocus(bool focused) {
  if (focused == focused_ || !gtk_widget_get_realized(window_)) return;
  focused_ = focused;
  gtk_widget_grab_focus(GTK_WIDGET(view_));
  GdkEvent* const event = gdk_event_new(GDK_FOCUS_CHANGE);
  event->focus_change.in = focused;
  send(event, window_, gdk_seat_get_keyboard(seat()));
}

void PageView::click(const std::string& text) {
  std::istringstream words(text);
  double x = 0, y = 0;
  words >> x >> y;
  for (const GdkEventType type : {GDK_BUTTON_PRESS, GDK_BUTTON_RELEASE}) {
    GdkEvent* const event = gdk_event_new(type);
    event->button.time = GDK_CURRENT_TIME;
    event->button.x = event->button.x_root = x;
    event->button.y = event->button.y_root = y;
    event->button.button = GDK_BUTTON_PRIMARY;
    if (type == GDK_BUTTON_RELEASE) event->button.state = GDK_BUTTON1_MASK;
    send(event, GTK_WIDGET(view_), gdk_seat_get_pointer(seat()));
  }
}

void PageView::key(const std::string& text) {
  std::string name = text;
  guint state = 0;
  for (const auto& [word, mask] : {std::pair<std::string_view, guint>{"ctrl+", GDK_CONTROL_MASK},
                                   {"shift+", GDK_SHIFT_MASK},
                                   {"alt+", GDK_MOD1_MASK}}) {
    if (!name.starts_with(word)) continue;
    state |= mask;
    name.erase(0, word.size());
  }
  const guint value = gdk_keyval_from_name(name.c_str());
  GdkKeymapKey* keys = nullptr;
  gint count = 0;
  gdk_keymap_get_entries_for_keyval(gdk_keymap_get_for_display(gdk_display_get_default()), value,
                                    &keys, &count);
  for (const GdkEventType type : {GDK_KEY_PRESS, GDK_KEY_RELEASE}) {
    GdkEvent* const event = gdk_event_new(type);
    event->key.time = GDK_CURRENT_TIME;
    event->key.state = state;
    event->key.keyval = value;
    event->key.hardware_keycode = static_cast<guint16>(count > 0 ? keys[0].keycode : 0);
    event->key.length = 0;
    event->key.string = g_strdup("");
    send(event, window_, gdk_seat_get_keyboard(seat()));
  }
  g_free(keys);
}

void PageView::loadChanged(WebKitWebView*, WebKitLoadEvent event, gpointer data) {
  auto& self = *static_cast<PageView*>(data);
  if (event == WEBKIT_LOAD_STARTED) {
    self.failed_ = self.timedOut_ = false;
    self.tell("started");
    if (self.seconds_ == 0) return;
    self.timeout_.reset(g_timeout_add_seconds(
        self.seconds_,
        [](gpointer late) -> gboolean {
          auto& view = *static_cast<PageView*>(late);
          view.timeout_.forget();
          view.timedOut_ = true;
          webkit_web_view_stop_loading(view.view_);
          return G_SOURCE_REMOVE;
        },
        data));
  } else if (event == WEBKIT_LOAD_COMMITTED) {
    self.timeout_.reset();
  } else if (event == WEBKIT_LOAD_FINISHED) {
    self.timeout_.reset();
    // WebKitGTK tells the end of a load that failed as well.
    if (!self.failed_) self.tell("finished");
  }
}

gboolean PageView::loadFailed(WebKitWebView*, WebKitLoadEvent event, char*, GError* error,
                              gpointer data) {
  auto& self = *static_cast<PageView*>(data);
  self.failed_ = true;
  self.tell(event == WEBKIT_LOAD_STARTED ? "failed" : "cut",
            self.timedOut_ ? "The request timed out." : error->message);
  return TRUE;  // no page that tells of it
}

gboolean PageView::decide(WebKitWebView*, WebKitPolicyDecision* decision,
                          WebKitPolicyDecisionType type, gpointer data) {
  auto& self = *static_cast<PageView*>(data);
  if (type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE) {
    const bool shown = webkit_response_policy_decision_is_mime_type_supported(
        WEBKIT_RESPONSE_POLICY_DECISION(decision));
    self.ask("shown", G_OBJECT(decision), shown ? "1" : "0");
  } else {
    const bool hasFrame = type == WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION;
    self.ask("go", G_OBJECT(decision), (hasFrame ? "1 " : "0 ") + std::string(addressOf(decision)));
  }
  return TRUE;
}

// Of permissions WKWebView asks its delegate about camera and microphone.
gboolean PageView::permission(WebKitWebView*, WebKitPermissionRequest* request, gpointer data) {
  if (WEBKIT_IS_USER_MEDIA_PERMISSION_REQUEST(request)) {
    static_cast<PageView*>(data)->ask("device", G_OBJECT(request), {});
  } else {
    webkit_permission_request_deny(request);
  }
  return TRUE;
}

void PageView::answered(std::string text) {
  const auto question = open_.extract(wire::takeWord(text));
  if (!question) return;
  GObject* const about = question.mapped().get();
  const bool allowed = text == "1";
  if (WEBKIT_IS_PERMISSION_REQUEST(about)) {
    allowed ? webkit_permission_request_allow(WEBKIT_PERMISSION_REQUEST(about))
            : webkit_permission_request_deny(WEBKIT_PERMISSION_REQUEST(about));
  } else if (allowed) {
    webkit_policy_decision_use(WEBKIT_POLICY_DECISION(about));
  } else {
    webkit_policy_decision_ignore(WEBKIT_POLICY_DECISION(about));
  }
}

// What JSON cannot say is nothing.
void PageView::message(WebKitUserContentManager*, WebKitJavascriptResult* body, gpointer data) {
  const GTextPtr json(jsc_value_to_json(webkit_javascript_result_get_js_value(body), 0));
  static_cast<PageView*>(data)->tell("message", json ? json.get() : "null");
}

}  // namespace quorin
