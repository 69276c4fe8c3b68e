// WindowList: the windows of the session as its compositor tells them. Main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace quorin {

struct ListedWindow {
  std::uint32_t id = 0;
  std::string program;  // its application id
  std::string title;
  std::uint32_t owner = 0;  // the window that a dialog stands in front of; 0: none, or not told
  bool isActive = false;
};

class WindowList {
 public:
  virtual ~WindowList() = default;

  virtual std::vector<ListedWindow> windows() const = 0;

  // Brings a window forward and gives it the keyboard. One that is gone is no error.
  virtual void activate(std::uint32_t id) = 0;

  // Called after anything of the list has changed. One handler; a second call replaces it.
  virtual void setOnChanged(std::function<void()> handler) = 0;
};

}  // namespace quorin
