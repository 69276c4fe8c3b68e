// Victim: the side of the process that is killed. Before every step it tells the test where it is
// and goes on only when it is told to, so that the test can count the points and end the process
// at any of them.
#pragma once

#include <mutex>
#include <string>
#include <unistd.h>

#include "host/Spreadsheet.h"
#include "tests/kit/crash/Link.h"
#include "tests/kit/crash/SpreadsheetWire.h"

namespace quorin::crash {

class Victim {
 public:
  explicit Victim(Link link) : link_(std::move(link)) {}

  int socket() const { return link_.socket(); }

  // The error number that the step is to fail with; 0 for none.
  int pass(const std::string& point) {
    return integer(*ask(JSONValue::Object{{"point", point}}).member("number"));
  }

  // The next request, [verb, arguments], for the answer to the one before; null for no more.
  JSONValue next(JSONValue answer) { return ask(JSONValue::Object{{"answer", std::move(answer)}}); }

  // A call of the spreadsheet that the test holds. Throws SpreadsheetError.
  JSONValue call(const std::string& name, JSONValue::Array arguments) {
    JSONValue reply =
        ask(JSONValue::Object{{"point", name}, {"arguments", JSONValue(std::move(arguments))}});
    if (const JSONValue* const number = reply.member("error"))
      throw host::SpreadsheetError(integer(*number), *reply.member("message")->string());
    return *reply.member("result");
  }

 private:
  JSONValue ask(const JSONValue& message) {
    const std::lock_guard lock(mutex_);
    std::optional<JSONValue> reply;
    if (link_.send(message)) reply = link_.receive();
    if (!reply) ::_exit(3);  // the test is gone
    return *std::move(reply);
  }

  std::mutex mutex_;
  Link link_;
};

}  // namespace quorin::crash
