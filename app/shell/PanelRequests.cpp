// The panel's half of the page protocol: what the page asks, and who answers.
#include <cstdint>
#include <vector>

#include "app/shell/Panel.h"
#include "kit/bridge/Verbs.h"
#include "kit/support/ISO.h"
#include "kit/support/QXConfig.h"
#include "kit/value/WholeNumber.h"

namespace quorin {

namespace {

const PanelBridge::Reply done{true, nullptr};

PanelBridge::Reply failed(const char* text) {
  return {false, text};
}

const JSONValue* argument(const JSONValue::Array& args, std::size_t index) {
  return index < args.size() ? &args[index] : nullptr;
}

}  // namespace

void Panel::webViewDidReceiveMessage(const JSONValue& body) {
  requireMainThread("Panel::webViewDidReceiveMessage");
  const JSONValue* id = body.member("id");
  if (!id || !id->number()) return;
  const JSONValue* verb = body.member("verb");
  if (!verb || !verb->string() || verb->string()->empty()) {
    page_.reply(*id->number(), false,
                JSONValue::Object{{"kind", "transport"}, {"message", "missing verb"}});
    return;
  }
  const JSONValue* args = body.member("args");
  handleRequest(*id->number(), *verb->string(),
                args && args->array() ? *args->array() : JSONValue::Array{});
}

void Panel::handleRequest(double id, const std::string& verb, const JSONValue::Array& args) {
  // It answers nobody once it is gone, and the panel with it.
  const auto answer = [this, id](const PanelBridge::Reply& reply) {
    page_.reply(id, reply.ok, reply.payload);
  };
  const auto answered = [&answer](const std::optional<PanelBridge::Reply>& reply) {
    if (reply) answer(*reply);
    return reply.has_value();
  };
  const Verb* const known = findVerb(verb);
  switch (known ? known->answeredBy : AnsweredBy::bridge) {
    case AnsweredBy::panel:
      if (answered(answerLocally(verb, args))) return;
      break;
    case AnsweredBy::application:
      if (applicationVerbs_ && answered(applicationVerbs_(verb, args))) return;
      break;
    case AnsweredBy::files:
      if (reviews_.answer(verb, args, answer)) return;
      break;
    case AnsweredBy::bridge:
      break;
  }
  askBridge(id, verb, args);  // it refuses what is unknown, and what nobody answers yet
}

std::optional<PanelBridge::Reply> Panel::answerLocally(const std::string& verb,
                                                       const JSONValue::Array& args) {
  const JSONValue* first = argument(args, 0);
  if (verb == "log") {
    const JSONValue* message = argument(args, 1);
    if (message && first->string() && message->string()) {
      parts_.log.log(*first->string(), *message->string());
    }
    return done;
  }
  if (verb == "getHighlightColor") return highlightColor();
  if (verb == "setHighlightColor") return saveHighlightColor(args);
  if (verb == "isWelcomed") return isWelcomed();
  if (verb == "setWelcomed") return saveWelcomed();
  if (verb == "setPanelWidth") {
    if (first && first->boolean()) setWidth(*first->boolean());
    return done;
  }
  if (verb == "hidePanel") {
    enabled_ = false;
    window_->orderOut();
    return done;
  }
  if (verb == "focusExcel") {
    relinquishKey();
    return done;
  }
  if (verb == "setConventions") {
    const JSONValue* separator = first ? first->member("arg") : nullptr;
    if (separator && separator->string()) {
      parts_.bridgeQueue.post(
          [&bridge = parts_.bridge, text = *separator->string()] { bridge.setArgSeparator(text); });
    }
    return done;
  }
  return std::nullopt;
}

PanelBridge::Reply Panel::highlightColor() const {
  JSONValue::Array components;
  for (const auto component :
       QXConfig::load(parts_.config, FileSystem::real(), parts_.log).highlightRGB) {
    components.emplace_back(static_cast<double>(component));
  }
  return {true, std::move(components)};
}

// True if the card that a first start shows was dismissed.
PanelBridge::Reply Panel::isWelcomed() const {
  const QXConfig config = QXConfig::load(parts_.config, FileSystem::real(), parts_.log);
  return {true, config.welcomedAt.has_value()};
}

PanelBridge::Reply Panel::saveWelcomed() {
  try {
    const std::string now = ISO::string(ISO::fromClock(parts_.platform.clock().now()));
    QXConfig::merge({{"welcomedAt", JSONValue(now)}}, parts_.config);
  } catch (const std::exception& error) {
    parts_.log.log("ERROR", std::string("setWelcomed save failed: ") + error.what());
    return failed("could not save config");
  }
  return done;
}

// Elements that are not whole numbers are passed over, not refused.
PanelBridge::Reply Panel::saveHighlightColor(const JSONValue::Array& args) {
  const JSONValue* rgb = argument(args, 0);
  if (!rgb || !rgb->array()) return failed("bad args");
  const std::vector<std::int64_t> kept = wholeNumbers(*rgb->array());
  if (!isColour(kept)) return failed("rgb must be three 0\u2026255 integers");
  try {
    QXConfig::saveHighlightRGB(kept, parts_.config);
  } catch (const std::exception& error) {
    parts_.log.log("ERROR", std::string("setHighlightColor save failed: ") + error.what());
    return failed("could not save config");
  }
  return done;
}

void Panel::askBridge(double id, const std::string& verb, const JSONValue::Array& args) {
  parts_.bridgeQueue.post([this, alive = std::weak_ptr(alive_), &bridge = parts_.bridge,
                           &loop = parts_.platform.mainLoop(), id, verb, args] {
    PanelBridge::Reply reply = bridge.dispatch(verb, args);
    loop.post([this, alive, id, reply = std::move(reply)] {
      if (!alive.expired()) page_.reply(id, reply.ok, reply.payload);
    });
  });
}

}  // namespace quorin
