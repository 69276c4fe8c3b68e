#include "app/linux/ControlRequest.h"

#include <array>

namespace quorin {

std::string ControlRequest::line() const {
  if (direction) return "step " + std::to_string(*direction);
  return view.empty() ? "show" : "show " + view;
}

std::optional<ControlRequest> parseControlRequest(const std::string& line) {
  static const std::array<ControlRequest, 6> requests{{{},
                                                       {"tree", std::nullopt},
                                                       {"map", std::nullopt},
                                                       {"deps", std::nullopt},
                                                       {"", 1},
                                                       {"", -1}}};
  for (const ControlRequest& request : requests) {
    if (request.line() == line) return request;
  }
  return std::nullopt;
}

}  // namespace quorin
