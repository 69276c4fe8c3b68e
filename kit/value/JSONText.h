// parseJSON: JSON text as a value, for requests and the files the system reads. Pure, any thread.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "kit/value/JSONValue.h"

namespace quorin {

// What text may hold at most. Beyond it parsing stops with an error, before memory is spent.
struct JSONLimits {
  std::size_t bytes = 16 * 1024 * 1024;
  std::size_t values = 1'000'000;  // scalars and containers together
  std::size_t depth = JSONValue::maximumDepth;
};

struct ParsedJSON {
  std::optional<JSONValue> value;
  std::string error;       // one sentence, when there is no value
  std::size_t offset = 0;  // the byte at which the error was noticed

  explicit operator bool() const { return value.has_value(); }
};

// Strict JSON (RFC 8259) in UTF-8 with one top-level value of any case; a byte order mark is
// skipped. Of equal keys the last one counts. Numbers that no double can hold are errors.
ParsedJSON parseJSON(std::string_view text, const JSONLimits& limits = {});

}  // namespace quorin
