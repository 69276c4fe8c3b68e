// LinesBack: hides shown lines again, but for those that the user has made visible himself, and
// tells which of them the user has hidden or opened. Any thread that may call the office.
#pragma once

#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <string>
#include <vector>

#include "host/calc/reveal/ShownLines.h"
#include "host/calc/workbook/QuietChanges.h"

namespace quorin::host::calc {

struct HiddenLines {
  css::uno::Reference<css::sheet::XSpreadsheet> sheet;
  std::string name;  // of the sheet
  Lines kind = Lines::rows;
  std::vector<int> numbers;
};
struct HiddenAgain {
  std::vector<HiddenLines> lines;  // for each sheet, which may have had none to hide
  ShownLines::Entries opened;      // what the user has made visible himself
};

// Hides the lines of these entries of the workbook, `all` being all of them, that are visible and
// not over, but for those that the user has made visible himself meanwhile: the filter that hid it
// has ended, what is filtered there has changed, or everything that was hidden beside it in the
// same way, and beside others of ours next to it, is visible.
HiddenAgain hideShownLines(QuietChanges& changes, const Workbook& workbook,
                           const ShownLines::Entries& entries, const ShownLines::Entries& all);

// Of the lines that are shown: what the user has hidden since, and what he has opened as above.
// From then on that is his own, until he undoes it.
struct UsersLines {
  ShownLines::Entries hidden, opened;
};
UsersLines usersLines(const Workbook& workbook, const ShownLines::Entries& all);

// The shown lines that have a place, by what the user sees of them now.
struct SeenLines {
  ShownLines::Entries visible, hidden;
};
SeenLines seenLines(const Workbook& workbook, const ShownLines::Entries& entries);

// Hides them whatever the user has made of them.
void hideLines(QuietChanges& changes, const Workbook& workbook, const ShownLines::Entries& entries);

}  // namespace quorin::host::calc
