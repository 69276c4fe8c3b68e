// HotKeyService: key combinations that reach this application whichever application is in front.
// Main thread only; the pressed ones are told there too.
#pragma once

#include <cstdint>
#include <functional>

namespace quorin {

struct HotKeyID {
  std::uint32_t signature = 0;
  std::uint32_t id = 0;
  bool operator==(const HotKeyID&) const = default;
};

class HotKeyService {
 public:
  using Status = std::int32_t;
  static constexpr Status noError = 0;
  static constexpr Status notHandled = -9874;  // the combination is passed on to others

  // The answer to a pressed combination.
  using Handler = std::function<Status(HotKeyID)>;

  virtual ~HotKeyService() = default;

  // Installs the one handler of all combinations; once. Gives the system's status.
  virtual Status install(Handler handler) = 0;

  // Registers a combination for as long as the service lives: a virtual key code of the ANSI layout
  // and a mask of command 256, shift 512, option 2048, control 4096. Gives the system's status.
  virtual Status add(HotKeyID id, std::uint32_t keyCode, std::uint32_t modifiers) = 0;
};

}  // namespace quorin
