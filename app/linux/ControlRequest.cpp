#include "app/linux/ControlRequest.h"

#include <algorithm>
#include <vector>

#include "app/shell/Views.h"

namespace quorin {

std::string ControlRequest::line() const {
  if (direction) return "step " + std::to_string(*direction);
  return view.empty() ? "show" : "show " + view;
}

std::optional<ControlRequest> parseControlRequest(const std::string& line) {
  std::vector<ControlRequest> requests{{}, {"", 1}, {"", -1}};
  for (const SummonedView& view : views::all) {
    requests.push_back({std::string(view.name), std::nullopt});
  }
  const auto found = std::find_if(requests.begin(), requests.end(),
                                  [&](const auto& request) { return request.line() == line; });
  return found == requests.end() ? std::nullopt : std::optional(*found);
}

}  // namespace quorin
