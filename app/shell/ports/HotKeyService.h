// HotKeyService: key combinations that reach this application whichever application is in front.
// Main thread only; the pressed ones are told there too.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

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
  static constexpr Status notHandled = -9874;     // the combination is passed on to others
  static constexpr Status badParameter = -50;     // no such key or modifier
  static constexpr Status alreadyExists = -9878;  // held by another program, or added before

  // The answer to a pressed combination.
  using Handler = std::function<Status(HotKeyID)>;

  virtual ~HotKeyService() = default;

  // Installs the one handler of all combinations; once. Gives the system's status.
  virtual Status install(Handler handler) = 0;

  // Registers a combination until it is removed or the service goes: a virtual key code of the ANSI
  // layout and a mask of command 256, shift 512, option 2048, control 4096. Gives the system's
  // status.
  virtual Status add(HotKeyID id, std::uint32_t keyCode, std::uint32_t modifiers) = 0;

  // Lets the combination of this number go to others; does nothing where there is none.
  virtual void remove(HotKeyID id) = 0;

  // Why none of them will come, in a few words; none as long as they may.
  virtual std::optional<std::string> unavailable() const { return std::nullopt; }
};

}  // namespace quorin
