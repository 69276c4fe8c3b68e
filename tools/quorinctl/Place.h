// Place: where a Session has its office, its log and its records, and how it begins. Main thread.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "kit/support/FolderLock.h"
#include "tools/quorinctl/Session.h"
#include "tools/quorinctl/Waiter.h"

namespace quorin::ctl {

// Why the call cannot be served.
class Unserved : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Removes a folder at the end of its scope. Whatever goes wrong with that stays untold.
class FolderRemoval {
 public:
  explicit FolderRemoval(std::filesystem::path folder) : folder_(std::move(folder)) {}
  ~FolderRemoval();
  FolderRemoval(const FolderRemoval&) = delete;
  FolderRemoval& operator=(const FolderRemoval&) = delete;

 private:
  const std::filesystem::path folder_;
};

struct Place {
  std::unique_ptr<FolderRemoval> folder;  // first: everything else ends before it goes
  std::optional<FolderLock> lock;
  Session::Parts parts;
};

// Throws Unserved when there is no such file.
void requireWorkbook(const std::filesystem::path& file);

// A private office. Without a folder of the caller's its files are kept in the office's own, which
// is removed with the office, whatever happens to this process. Throws Unserved when the caller's
// is in use.
Place privatePlace(const std::optional<std::filesystem::path>& data);

// The user's own folders, as Quorin itself uses them; so never while it runs: then Unserved is
// thrown.
Place attachedPlace();

struct Opening {
  bool isEnded = false;                // a signal came
  std::optional<std::string> failure;  // why the workbook is not open
};

// Waits until the office answers and the workbook, if one is given, is open in it.
Opening openAndWait(Session& session, Waiter& waiter,
                    const std::optional<std::filesystem::path>& workbook);

}  // namespace quorin::ctl
