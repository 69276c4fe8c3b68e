// RequestLine: one line of input as a request, and a reply as one line of output, in the words that
// the page and the panel use with each other. Pure.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "kit/bridge/Bridge.h"
#include "kit/value/JSONValue.h"

namespace quorin::ctl {

struct Request {
  JSONValue id;  // a number
  std::string verb;
  Bridge::Args args;
  bool operator==(const Request&) const = default;
};

// What is answered at once, because the line is no request.
struct Refused {
  JSONValue id;  // null where the line has none that can be used
  Bridge::Reply reply;
  bool operator==(const Refused&) const = default;
};

// {"id": number, "verb": text, "args": array}. Without args, or with args that are no array, there
// are none; an empty verb is "missing verb", as in the panel. Anything else is malformed.
std::variant<Request, Refused> parseRequest(std::string_view line);

// What is answered to a line that is too long to be read.
Refused tooLong(std::size_t limit);

// {"id", "ok", "payload"}, and "ms" where it was measured.
JSONValue replyObject(const JSONValue& id, Bridge::Reply reply, std::optional<double> milliseconds);

}  // namespace quorin::ctl
