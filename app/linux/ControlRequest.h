// ControlRequest: what a second start asks of the Quorin that is running, as one line of text:
// "show", "show map", "step -1".
#pragma once

#include <optional>
#include <string>

namespace quorin {

struct ControlRequest {
  std::string view;              // one of Views.h; empty: only the panel
  std::optional<int> direction;  // of a step in the page, 1 or -1, instead of showing anything

  bool operator==(const ControlRequest&) const = default;
  std::string line() const;
};

// Nothing for any other text.
std::optional<ControlRequest> parseControlRequest(const std::string& line);

}  // namespace quorin
