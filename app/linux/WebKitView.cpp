#include "app/linux/WebKitView.h"

#include "app/shell/PageAddress.h"
#include "kit/value/JSONText.h"

namespace quorin {

namespace {

// A body as the portable side takes it. What JSON cannot say, is too large or too deep is null.
JSONValue bodyOf(JSCValue* value) {
  const GTextPtr text(jsc_value_to_json(value, 0));
  if (!text) return nullptr;
  ParsedJSON parsed = parseJSON(text.get());
  return parsed ? std::move(*parsed.value) : JSONValue();
}

// Links make WebKit connect to where they lead before anyone has decided that it may.
void turnOffPreconnecting(WebKitSettings* settings) {
#if WEBKIT_CHECK_VERSION(2, 42, 0)
  WebKitFeatureList* const all = webkit_settings_get_all_features();
  for (gsize i = 0; i < webkit_feature_list_get_length(all); ++i) {
    WebKitFeature* const feature = webkit_feature_list_get(all, i);
    const std::string_view name = webkit_feature_get_identifier(feature);
    if (name == "LinkPreconnect" || name == "LinkPreconnectEarlyHints" ||
        name == "LinkDNSPrefetch") {
      webkit_settings_set_feature_enabled(settings, feature, FALSE);
    }
  }
  webkit_feature_list_unref(all);
#else
  webkit_settings_set_enable_dns_prefetching(settings, FALSE);
#endif
}

GObjectPtr<WebKitSettings> makeSettings(bool inspectable) {
  GObjectPtr<WebKitSettings> settings(webkit_settings_new());
  // Without the graphics processor the first paint comes sooner and takes half the memory.
  webkit_settings_set_hardware_acceleration_policy(settings.get(),
                                                   WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
  turnOffPreconnecting(settings.get());
  webkit_settings_set_enable_developer_extras(settings.get(), inspectable);
  webkit_settings_set_enable_write_console_messages_to_stdout(settings.get(), inspectable);
  return settings;
}

GObjectPtr<WebKitWebContext> makeContext() {
  const GObjectPtr<WebKitWebsiteDataManager> data(webkit_website_data_manager_new_ephemeral());
  return GObjectPtr<WebKitWebContext>(webkit_web_context_new_with_website_data_manager(data.get()));
}

const char* addressOf(WebKitNavigationPolicyDecision* decision) {
  WebKitNavigationAction* const action =
      webkit_navigation_policy_decision_get_navigation_action(decision);
  return webkit_uri_request_get_uri(webkit_navigation_action_get_request(action));
}

}  // namespace

WebKitView::WebKitView(const WebViewOptions& options, bool inspectable)
    : context_(makeContext()), content_(webkit_user_content_manager_new()) {
  // Connected before the handler is registered, so that no message is lost.
  g_signal_connect(content_.get(),
                   ("script-message-received::" + options.messageHandlerName).c_str(),
                   G_CALLBACK(messageReceived), this);
  webkit_user_content_manager_register_script_message_handler(content_.get(),
                                                              options.messageHandlerName.c_str());
  WebKitUserScript* script =
      webkit_user_script_new(options.startScript.c_str(), WEBKIT_USER_CONTENT_INJECT_TOP_FRAME,
                             WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START, nullptr, nullptr);
  webkit_user_content_manager_add_script(content_.get(), script);
  webkit_user_script_unref(script);

  const GObjectPtr<WebKitSettings> settings = makeSettings(inspectable);
  view_.reset(WEBKIT_WEB_VIEW(g_object_ref_sink(
      g_object_new(WEBKIT_TYPE_WEB_VIEW, "web-context", context_.get(), "user-content-manager",
                   content_.get(), "settings", settings.get(), nullptr))));
  g_signal_connect(view_.get(), "load-changed", G_CALLBACK(loadChanged), this);
  g_signal_connect(view_.get(), "load-failed", G_CALLBACK(loadFailed), this);
  g_signal_connect(view_.get(), "web-process-terminated", G_CALLBACK(processTerminated), this);
  g_signal_connect(view_.get(), "decide-policy", G_CALLBACK(decidePolicy), this);
  g_signal_connect(view_.get(), "permission-request", G_CALLBACK(permissionRequested), this);
  g_signal_connect(view_.get(), "query-permission-state",
                   G_CALLBACK(+[](WebKitWebView*, WebKitPermissionStateQuery* query) {
                     webkit_permission_state_query_finish(query, WEBKIT_PERMISSION_STATE_DENIED);
                     return TRUE;
                   }),
                   nullptr);
  g_signal_connect(context_.get(), "download-started", G_CALLBACK(downloadStarted), this);
  if (!inspectable) {
    g_signal_connect(view_.get(), "context-menu", G_CALLBACK(+[] { return TRUE; }), nullptr);
  }
}

WebKitView::~WebKitView() {
  disconnect();
}

void WebKitView::disconnect() {
  g_signal_handlers_disconnect_by_data(content_.get(), this);
  g_signal_handlers_disconnect_by_data(context_.get(), this);
  g_signal_handlers_disconnect_by_data(view_.get(), this);
}

void WebKitView::endProcess() {
  disconnect();
  webkit_web_view_terminate_web_process(view_.get());
}

bool WebKitView::loadURL(const std::string& url, std::chrono::seconds timeout) {
  if (!PageAddress::onThisMachine(url)) return false;
  timeout_ = timeout;
  page_ = url;
  webkit_web_view_load_uri(view_.get(), url.c_str());
  return true;
}

// Pages loaded from files may read the files beside them in any case.
void WebKitView::loadFile(const std::filesystem::path& file, const std::filesystem::path&) {
  timeout_ = {};
  const GTextPtr uri(g_filename_to_uri(std::filesystem::absolute(file).c_str(), nullptr, nullptr));
  if (!uri) return;
  page_ = uri.get();
  webkit_web_view_load_uri(view_.get(), uri.get());
}

void WebKitView::loadHTML(const std::string& html) {
  timeout_ = {};
  page_ = PageAddress::inlinePage;
  webkit_web_view_load_html(view_.get(), html.c_str(), nullptr);
}

void WebKitView::reload() {
  webkit_web_view_reload(view_.get());
}

void WebKitView::evaluate(const std::string& script) {
  webkit_web_view_evaluate_javascript(view_.get(), script.data(),
                                      static_cast<gssize>(script.size()), nullptr, nullptr, nullptr,
                                      nullptr, nullptr);
}

void WebKitView::evaluate(const std::string& script, Result result) {
  webkit_web_view_evaluate_javascript(
      view_.get(), script.data(), static_cast<gssize>(script.size()), nullptr, nullptr, nullptr,
      [](GObject* view, GAsyncResult* done, gpointer data) {
        const std::unique_ptr<Result> tell(static_cast<Result*>(data));
        GError* error = nullptr;
        const GObjectPtr<JSCValue> value(
            webkit_web_view_evaluate_javascript_finish(WEBKIT_WEB_VIEW(view), done, &error));
        const GErrorPtr owned(error);
        const GTextPtr text(value ? jsc_value_to_json(value.get(), 0) : nullptr);
        if (error) {
          (*tell)(false, error->message);
        } else {
          (*tell)(true, text ? text.get() : "null");
        }
      },
      new Result(std::move(result)));
}

void WebKitView::loadChanged(WebKitWebView*, WebKitLoadEvent event, gpointer data) {
  auto& self = *static_cast<WebKitView*>(data);
  switch (event) {
    case WEBKIT_LOAD_STARTED:
      self.failed_ = self.timedOut_ = false;
      if (self.timeout_.count() > 0) {
        self.timeoutSource_.reset(
            g_timeout_add_seconds(static_cast<guint>(self.timeout_.count()), timedOut, data));
      }
      if (self.delegate_) self.delegate_->webViewDidStartProvisionalNavigation();
      break;
    case WEBKIT_LOAD_FINISHED:
      self.timeoutSource_.reset();
      // The end of a failed load is reported as finished, too.
      if (!self.failed_ && self.delegate_) self.delegate_->webViewDidFinishNavigation();
      break;
    case WEBKIT_LOAD_COMMITTED:
      self.timeoutSource_.reset();
      break;
    case WEBKIT_LOAD_REDIRECTED:
      break;
  }
}

// True: no error page is wanted, for that would be one more load.
gboolean WebKitView::loadFailed(WebKitWebView*, WebKitLoadEvent event, char*, GError* error,
                                gpointer data) {
  auto& self = *static_cast<WebKitView*>(data);
  self.failed_ = true;
  if (self.delegate_) {
    const std::string text = self.timedOut_ ? "The request timed out." : error->message;
    if (event == WEBKIT_LOAD_STARTED) {
      self.delegate_->webViewDidFailProvisionalNavigation(text);
    } else {
      self.delegate_->webViewDidFailNavigation(text);
    }
  }
  return TRUE;
}

gboolean WebKitView::timedOut(gpointer data) {
  auto& self = *static_cast<WebKitView*>(data);
  self.timeoutSource_.forget();
  self.timedOut_ = true;
  webkit_web_view_stop_loading(self.view_.get());
  return G_SOURCE_REMOVE;
}

// Redirections and frames are asked about here, too. What comes back is looked at again: a page
// that WebKit cannot show would be fetched as a file.
gboolean WebKitView::decidePolicy(WebKitWebView*, WebKitPolicyDecision* decision,
                                  WebKitPolicyDecisionType type, gpointer data) {
  auto& self = *static_cast<WebKitView*>(data);
  if (type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE) {
    if (webkit_response_policy_decision_is_mime_type_supported(
            WEBKIT_RESPONSE_POLICY_DECISION(decision))) {
      webkit_policy_decision_use(decision);
      return TRUE;
    }
    webkit_policy_decision_ignore(decision);
    return self.refuse("download");
  }
  const char* const address = addressOf(WEBKIT_NAVIGATION_POLICY_DECISION(decision));
  if (type == WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION && address &&
      PageAddress::isSamePage(address, self.page_)) {
    webkit_policy_decision_use(decision);
    return TRUE;
  }
  webkit_policy_decision_ignore(decision);
  return self.refuse(type == WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION ? "navigation"
                                                                           : "window");
}

gboolean WebKitView::permissionRequested(WebKitWebView*, WebKitPermissionRequest* request,
                                         gpointer data) {
  webkit_permission_request_deny(request);
  return static_cast<WebKitView*>(data)->refuse("permission");
}

// Without an end it would land in the user's folder of downloads.
void WebKitView::downloadStarted(WebKitWebContext*, WebKitDownload* download, gpointer data) {
  webkit_download_cancel(download);
  static_cast<WebKitView*>(data)->refuse("download");
}

gboolean WebKitView::refuse(const char* what) {
  if (delegate_) delegate_->webViewDidRefuse(what);
  return TRUE;
}

void WebKitView::processTerminated(WebKitWebView*, WebKitWebProcessTerminationReason,
                                   gpointer data) {
  auto& self = *static_cast<WebKitView*>(data);
  if (self.delegate_) self.delegate_->webViewWebProcessDidTerminate();
}

void WebKitView::messageReceived(WebKitUserContentManager*, WebKitJavascriptResult* message,
                                 gpointer data) {
  auto& self = *static_cast<WebKitView*>(data);
  const char* const address = webkit_web_view_get_uri(self.view_.get());
  if (!self.delegate_ || !address || !PageAddress::isSamePage(address, self.page_)) return;
  self.delegate_->webViewDidReceiveMessage(bodyOf(webkit_javascript_result_get_js_value(message)));
}

}  // namespace quorin
