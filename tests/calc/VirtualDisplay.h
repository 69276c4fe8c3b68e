// VirtualDisplay: an X server of this test's own with a window manager, and keys typed into it.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace quorin::host::calc {

class VirtualDisplay {
 public:
  VirtualDisplay();
  ~VirtualDisplay();
  VirtualDisplay(const VirtualDisplay&) = delete;
  VirtualDisplay& operator=(const VirtualDisplay&) = delete;

  const std::string& name() const { return name_; }  // ":5"
  // Runs xdotool with the arguments. True when it succeeded.
  bool xdotool(const std::vector<std::string>& arguments) const;

 private:
  std::string name_;
  pid_t server_ = 0, manager_ = 0;
};

}  // namespace quorin::host::calc
