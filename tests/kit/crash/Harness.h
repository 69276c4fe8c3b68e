// Harness: has a process serve requests, numbers the points that it passes and kills it at one of
// them.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

#include "kit/value/JSONValue.h"
#include "tests/kit/crash/Link.h"

namespace quorin::crash {

struct Request {
  std::string verb;
  JSONValue::Array args = {};
};

// What became of such a process.
struct Life {
  std::vector<std::string> points;  // that it passed; the last one is where it was killed
  std::vector<JSONValue> answers;
  bool killed = false;
};

// What goes wrong in such a life. Points are counted from 0.
struct Fate {
  std::optional<std::size_t> killAt = std::nullopt;
  // True if to kill at the last of these points, in place of a number.
  std::function<bool(const std::vector<std::string>& points)> kills = nullptr;
  std::optional<std::size_t> failAt = std::nullopt;  // a step of the stores, with `number`
  bool failsFromThereOn = false;                     // all their later steps but reads as well
  int number = 0;                                    // ENOSPC ...
};

class Harness {
 public:
  // Carries out a call of the spreadsheet: its name and arguments. Throws SpreadsheetError.
  using Call = std::function<JSONValue(const std::string&, const JSONValue&)>;

  // The program is given the number of a socket and after it these arguments. It makes a process
  // for each life and tells how that ended.
  explicit Harness(const std::vector<std::string>& command);
  ~Harness();
  Harness(const Harness&) = delete;
  Harness& operator=(const Harness&) = delete;

  // Returns when the process has ended: killed, or with all requests served. Throws when it ended
  // in any other way. Without `call` its spreadsheet is its own affair.
  Life run(const std::filesystem::path& folder, const std::vector<Request>& requests,
           const Call& call, const Fate& fate = {});

 private:
  int number();

  Link control_{-1};
  pid_t program_ = 0;
};

}  // namespace quorin::crash
