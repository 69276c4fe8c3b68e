#include "tools/quorinctl/RequestLine.h"

#include <utility>

#include "kit/value/JSONText.h"

namespace quorin::ctl {

namespace {

Refused refused(JSONValue id, const std::string& message) {
  JSONValue::Object error{{"kind", "transport"}, {"message", message}};
  return {std::move(id), {false, std::move(error)}};
}

}  // namespace

std::variant<Request, Refused> parseRequest(std::string_view line) {
  const ParsedJSON parsed = parseJSON(line);
  if (!parsed)
    return refused(nullptr, "malformed request: " + parsed.error + " (byte " +
                                std::to_string(parsed.offset) + ")");
  if (!parsed.value->object()) return refused(nullptr, "malformed request: not an object");
  const JSONValue* const id = parsed.value->member("id");
  if (!id || !id->number()) return refused(nullptr, "malformed request: \"id\" is not a number");
  const JSONValue* const verb = parsed.value->member("verb");
  if (!verb || !verb->string() || verb->string()->empty()) return refused(*id, "missing verb");
  Request request{*id, *verb->string(), {}};
  const JSONValue* const args = parsed.value->member("args");
  if (args && args->array()) request.args = *args->array();
  return request;
}

Refused tooLong(std::size_t limit) {
  return refused(nullptr, "malformed request: longer than " + std::to_string(limit) + " bytes");
}

JSONValue replyObject(const JSONValue& id, Bridge::Reply reply,
                      std::optional<double> milliseconds) {
  JSONValue::Object line{{"id", id}, {"ok", reply.ok}};
  line["payload"] = std::move(reply.payload);  // it may be large, and braces would copy it
  if (milliseconds) line["ms"] = *milliseconds;
  return line;
}

}  // namespace quorin::ctl
