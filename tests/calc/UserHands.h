// UserHands: what the user does in an office and what they see of it, over a connection of its own
// that shares nothing with the code under test.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/calc/OfficeSource.h"

namespace quorin::host::calc {

class OfficeConnection;

class UserHands {
 public:
  explicit UserHands(const OfficeAddress& office);
  ~UserHands();
  UserHands(const UserHands&) = delete;
  UserHands& operator=(const UserHands&) = delete;

  void open(const std::string& file);
  // In the workbook whose file name is `book`. Entered and undone like a user's own change.
  void enter(const std::string& book, const std::string& sheet, const std::string& cell,
             const std::string& formula);
  void undo(const std::string& book);
  void setModified(const std::string& book, bool modified);
  void lockUndo(const std::string& book);  // as a process that died in the middle of a change

  // Everything of the workbook that a trace could be left in: undo and redo list, modified flag,
  // sheets, names, styles, number formats.
  std::string stateOf(const std::string& book);
  int documents();  // all of them that the office holds, hidden ones too
  bool quit();      // true when the office agreed

 private:
  struct Objects;
  std::unique_ptr<Objects> objects_;
};

}  // namespace quorin::host::calc
