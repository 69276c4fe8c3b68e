// RowsNote: an empty shape of ours on each sheet whose rows are shown, which says by its name
// what is remembered of them. The copy of a sheet gets it too, in whichever workbook, and nothing
// else tells that a sheet is a copy. Any thread that may call the office; on the owner's and the
// keeper's side in turns, as with marks.
#pragma once

#include <com/sun/star/drawing/XDrawPage.hpp>
#include <com/sun/star/drawing/XShape.hpp>
#include <string>
#include <vector>

#include "host/calc/reveal/ShownRows.h"
#include "host/calc/workbook/QuietChanges.h"

namespace quorin::host::calc {

// On the sheet's page, for what is remembered under that key; nothing for none.
void addNote(QuietChanges& changes, const Workbook& workbook,
             const css::uno::Reference<css::drawing::XDrawPage>& page, const std::string& key);

// Hides the rows on copies of their sheet, but for those that were over, and removes the notes
// there, and those whose rows are all over.
void tidyNotes(QuietChanges& changes, const Workbook& workbook, const ShownRows& shown);

struct TakenNote {
  css::uno::Reference<css::drawing::XDrawPage> page;
  std::string name;
};
// Takes the notes off the workbook's sheets, but for those that another owner takes care of.
std::vector<TakenNote> takeNotes(QuietChanges& changes, const Workbook& workbook,
                                 const ShownRows& shown);
void putBack(QuietChanges& changes, const Workbook& workbook, const TakenNote& note);

}  // namespace quorin::host::calc
