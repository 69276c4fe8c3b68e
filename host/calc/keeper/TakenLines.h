// TakenLines: which shown lines the user has hidden or opened by steps that he can undo, and
// whether he has. A line is ours up to a place in the undo list and his from another on; what lies
// between was never looked at, and is settled when he undoes so far. For each workbook, on the
// keeper's main thread.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "host/calc/keeper/UndoList.h"
#include "host/calc/reveal/ShownLines.h"

namespace quorin::host::calc {

class TakenLines {
 public:
  // A look begins with where the undo list is, and ends with looked(). One that is given up is
  // begun anew.
  void begin(const UndoList::Place& place);
  void looked();

  // The user has hidden or opened the line since the last look. False where undoing cannot have it
  // back.
  bool take(const ShownLines::Entry& line);
  // True if what the user did has been undone, so that the line is ours as before. False where it
  // is no longer known what that was.
  bool isUndone(const ShownLines::Entry& line, bool isVisible);
  void forget(const ShownLines::Entry& line);

 private:
  using Id = std::pair<std::string, int>;
  struct Places {
    int ours = 0, his = 0;
  };
  static Id idOf(const ShownLines::Entry& line) { return {line.key, line.asked.number}; }

  std::map<Id, Places> lines_;
  int last_ = 0;              // of the last look
  int now_ = 0, lowest_ = 0;  // of this one, and since the last
};

}  // namespace quorin::host::calc
