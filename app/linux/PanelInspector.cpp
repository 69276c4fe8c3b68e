#include "app/linux/PanelInspector.h"

#include "kit/value/JSONText.h"
#include "kit/value/Marshal.h"

namespace quorin {

namespace {

constexpr std::size_t longestLine = 16 * 1024 * 1024;

JSONValue describe(const PanelWindow& window) {
  const ScreenFrame frame = window.frame();
  return JSONValue::Object{
      {"visible", window.isVisible()}, {"key", window.isKey()}, {"x", frame.x}, {"y", frame.y},
      {"width", frame.width},          {"height", frame.height}};
}

JSONValue describe(const Alert* alert) {
  if (!alert) return {};
  JSONValue::Array buttons(alert->buttons.begin(), alert->buttons.end());
  return JSONValue::Object{{"message", alert->message},
                           {"informativeText", alert->informativeText},
                           {"buttons", std::move(buttons)}};
}

}  // namespace

PanelInspector::PanelInspector(const std::filesystem::path& socket, GtkPlatform& platform,
                               TimedBridge& calls)
    : platform_(platform),
      calls_(calls),
      server_(socket, longestLine,
              [this](const std::string& line, const LineServer::Answer& to) { answer(line, to); }) {
}

void PanelInspector::answer(const std::string& line, const LineServer::Answer& answer) {
  if (line == "quit") {
    platform_.application().terminate();
    answer("ok true");
  } else if (line == "window" && platform_.panelWindow()) {
    answer("ok " + Marshal::encode(describe(*platform_.panelWindow())));
  } else if (line == "alert") {
    answer("ok " + Marshal::encode(describe(platform_.alerts().shown())));
  } else if (line == "calls") {
    answer("ok " + Marshal::encode(calls_.take()));
  } else if (line == "progress") {
    const std::optional<std::string> text = platform_.updateProgress().shown();
    answer("ok " + Marshal::encode(text ? JSONValue(*text) : JSONValue()));
  } else if (line.starts_with("eval ") && platform_.webView()) {
    const ParsedJSON script = parseJSON(line.substr(5));
    if (!script || !script.value->string()) {
      answer("error not a JSON text");
      return;
    }
    platform_.webView()->evaluate(
        *script.value->string(),
        [answer](bool ok, const std::string& text) { answer((ok ? "ok " : "error ") + text); });
  } else {
    answer("error unknown request");
  }
}

}  // namespace quorin
