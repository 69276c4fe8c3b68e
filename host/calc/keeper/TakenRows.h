// TakenRows: which shown rows the user has hidden or opened by steps that he can undo, and
// whether he has. A row is ours up to a place in the undo list and his from another on; what lies
// between was never looked at, and is settled when he undoes so far. For each workbook, on the
// keeper's main thread.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "host/calc/keeper/UndoList.h"
#include "host/calc/reveal/ShownRows.h"

namespace quorin::host::calc {

class TakenRows {
 public:
  // A look begins with where the undo list is, and ends with looked(). One that is given up is
  // begun anew.
  void begin(const UndoList::Place& place);
  void looked();

  // The user has hidden or opened the row since the last look. False where undoing cannot have it
  // back.
  bool take(const ShownRows::Entry& row);
  // True if what the user did has been undone, so that the row is ours as before. False where it
  // is no longer known what that was.
  bool isUndone(const ShownRows::Entry& row, bool isVisible);
  void forget(const ShownRows::Entry& row);

 private:
  using Id = std::pair<std::string, int>;
  struct Places {
    int ours = 0, his = 0;
  };
  static Id idOf(const ShownRows::Entry& row) { return {row.key, row.asked.number}; }

  std::map<Id, Places> rows_;
  int last_ = 0;              // of the last look
  int now_ = 0, lowest_ = 0;  // of this one, and since the last
};

}  // namespace quorin::host::calc
