// MarksKeeper: our end of the marks keeper, a small process of its own beside one office. While an
// office saves, exports or mails a workbook the keeper takes our marks out of it, it lets them
// follow the user's edits, and when this process is gone, by whatever death, it removes them all
// and ends. So nothing of that depends on this process answering. Call thread; interrupt() may come
// from any thread.
//
//   {
//     std::vector<PlacedMark> marks;        // outlives the turn: the shape of a new mark is held
//     MarksKeeper::Turn turn(keeper, uid);  // until the keeper has got hold of it too
//     ...                                   // the marks are where the user's edits have put them
//   }                                       // and stay: read, make, move and delete them
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>
#include <thread>

#include "host/calc/marks/Owner.h"
#include "host/calc/office/OfficeSource.h"

namespace quorin::host::calc {

class MarksKeeper {
 public:
  // For what is that owner's. `lost` is told on another thread when a keeper has ended that was not
  // told to.
  MarksKeeper(OfficeAddress office, Owner owner, std::function<void()> lost = {});
  // Returns when the keeper has taken every mark back, or after a moment when the office is busy:
  // the keeper then goes on alone.
  ~MarksKeeper();
  MarksKeeper(const MarksKeeper&) = delete;
  MarksKeeper& operator=(const MarksKeeper&) = delete;

  class Turn {
   public:
    // `document` is the workbook's "RuntimeUID". Starts the keeper where none is running. Throws
    // SpreadsheetError: -10000 when there can be none (then nothing may be marked), -600 when the
    // office is gone or interrupt() was called.
    Turn(MarksKeeper& keeper, const std::string& document);
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

   private:
    MarksKeeper& keeper_;
  };

  void interrupt();

  pid_t process() const { return process_; }  // 0 before it was needed

 private:
  void start();
  void forget();
  void watch();
  void endWatch();
  void ask(const std::string& request);  // and waits for the answer
  bool send(const std::string& line) const;
  bool readAnswer();  // false when the keeper is gone

  const OfficeAddress office_;
  const Owner owner_;
  const std::function<void()> lost_;
  int interrupted_ = -1;  // an eventfd
  int socket_ = -1;
  pid_t process_ = 0;
  int watchEnds_ = -1;  // an eventfd
  std::thread watcher_;
};

// The keeper's program, for the program at `self`: it lies in "libexec/quorin" of one of the
// folders above it. None when it is not there.
std::optional<std::filesystem::path> marksKeeperProgram(const std::filesystem::path& self);

}  // namespace quorin::host::calc
