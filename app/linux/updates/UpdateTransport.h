// UpdateTransport: fetches files of a release from their server. Main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "app/linux/updates/UpdateFailure.h"

namespace quorin {

class UpdateTransport {
 public:
  // A file on its way. Destroying it ends that: no handler is called any more.
  class Transfer {
   public:
    virtual ~Transfer() = default;
  };

  // Called on the main thread, never inside `fetch`; any of them may destroy the transfer.
  struct Handlers {
    std::function<void(std::uint64_t received)> progress;
    std::function<void(std::string body)> finished;
    std::function<void(const UpdateFailure& failure)> failed;
  };

  virtual ~UpdateTransport() = default;

  // Fetches what is at an https address, following the server only to itself. A body of more than
  // `limit` bytes is given up as soon as that is known.
  virtual std::unique_ptr<Transfer> fetch(const std::string& url, std::uint64_t limit,
                                          Handlers handlers) = 0;
};

}  // namespace quorin
