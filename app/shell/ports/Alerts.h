// Alerts: questions and messages that stop the user, one at a time. Main thread only.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace quorin {

struct Alert {
  std::string message;
  std::string informativeText;       // empty: none
  std::vector<std::string> buttons;  // the first is the default one; none: a single "OK"
  bool operator==(const Alert&) const = default;
};

class Alerts {
 public:
  // The index of the pressed button; dismissed in another way: the last one.
  using Answer = std::function<void(std::size_t button)>;

  virtual ~Alerts() = default;

  // Shows the alert. The answer comes on the main thread, inside this call where the platform's
  // alerts wait for the user, later where they do not.
  virtual void show(const Alert& alert, Answer answer) = 0;
};

}  // namespace quorin
