// RowsBack: hides shown rows again, but for those that the user has made visible himself, and
// tells which of them the user has hidden or opened. Any thread that may call the office.
#pragma once

#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <string>
#include <vector>

#include "host/calc/reveal/ShownRows.h"
#include "host/calc/workbook/QuietChanges.h"

namespace quorin::host::calc {

struct HiddenRows {
  css::uno::Reference<css::sheet::XSpreadsheet> sheet;
  std::string name;  // of the sheet
  Axis axis = Axis::rows;
  std::vector<int> numbers;
};
struct HiddenAgain {
  std::vector<HiddenRows> rows;  // for each sheet, which may have had none to hide
  ShownRows::Entries opened;     // what the user has made visible himself
};

// Hides the rows of these entries of the workbook, `all` being all of them, that are visible and
// not over, but for those that the user has made visible himself meanwhile: the filter that hid it
// has ended, what is filtered there has changed, or everything that was hidden beside it in the
// same way, and beside others of ours next to it, is visible.
HiddenAgain hideShownRows(QuietChanges& changes, const Workbook& workbook,
                          const ShownRows::Entries& entries, const ShownRows::Entries& all);

// Of the rows that are shown: what the user has hidden since, and what he has opened as above.
// From then on that is his own, until he undoes it.
struct UsersRows {
  ShownRows::Entries hidden, opened;
};
UsersRows usersRows(const Workbook& workbook, const ShownRows::Entries& all);

// The shown rows that have a place, by what the user sees of them now.
struct SeenRows {
  ShownRows::Entries visible, hidden;
};
SeenRows seenRows(const Workbook& workbook, const ShownRows::Entries& entries);

// Hides them whatever the user has made of them.
void hideRows(QuietChanges& changes, const Workbook& workbook, const ShownRows::Entries& entries);

}  // namespace quorin::host::calc
