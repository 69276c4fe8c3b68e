// ShownRows: knows where the rows and columns are now that were shown for the user to look at, so
// that these are hidden again and no others, wherever edits have moved them. Any thread that may
// call the office.
//
// The memory is the office's own: objects in its component context, one entry there for all rows
// that were shown together. They follow the user's edits by themselves, call nobody, and outlive
// this process and its connection; the marks keeper reads the same. They end with their workbook;
// from then on RowTraces tell the rows. Who changes an entry replaces it in one call, so that a
// reader always finds it; of two who change one at a time the last one counts.
#pragma once

#include <com/sun/star/container/XNameContainer.hpp>
#include <com/sun/star/drawing/XDrawPage.hpp>
#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <optional>
#include <string>
#include <vector>

#include "host/Spreadsheet.h"
#include "host/calc/marks/Owner.h"
#include "host/calc/reveal/RowStates.h"
#include "host/calc/workbook/CalcWorkbooks.h"

namespace quorin::host::calc {

// A row or column as it was when it was shown, by which it is asked for again.
struct AskedRow {
  SheetRef sheet;
  Axis axis = Axis::rows;
  int number = 0;

  bool operator==(const AskedRow&) const = default;
};

class ShownRows {
 public:
  // What is remembered is that owner's.
  ShownRows(const css::uno::Reference<css::uno::XComponentContext>& context, Owner owner);

  struct Place {
    css::uno::Reference<css::sheet::XSpreadsheet> sheet;
    std::string name;  // of the sheet
    int number = 0;
  };
  enum class State {
    hidden,  // still, or for the time of a save: only when it is shown can the user hide it
    shown,
    over,    // hidden again, by whomever, or never ours: what is visible of it is the user's
    opened,  // the user has made it visible himself
    taken,   // the user has hidden it or made it visible, and it is his until he undoes that
    owed     // the same, and nobody asks for it any more: once he has undone that it is hidden
  };
  // What is remembered of a row or column.
  struct Entry {
    std::string key;    // of those that were shown together with it
    std::string owner;  // whose it is
    AskedRow asked;     // different for each of them
    State state = State::hidden;
    std::optional<Place> place;   // none when it is deleted, its sheet is, or it stays over
    bool isFiltered = false;      // a filter hid it
    std::string filter;           // what was filtered there then
    std::vector<int> neighbours;  // hidden together with it, where they are now; at most two

    bool isOver() const { return state != State::hidden && state != State::shown; }
  };
  using Entries = std::vector<Entry>;

  // Everything that is remembered of the workbook, but for what is owed, and that.
  Entries entries(const Workbook& workbook) const;
  Entries owed(const Workbook& workbook) const;
  // Those that the owner does not take care of are left out.
  void leaveToOthers(Entries& entries) const;
  // Of rows that had these names in a workbook that was closed since. Its file has them hidden,
  // but for those that are over, so what is visible of them in a workbook of that name is the
  // user's.
  Entries entriesElsewhere(const Workbook& workbook, const SheetRef& sheet, Axis axis) const;

  // What a note on a sheet stands for, by the key's `id`. Nothing when all of it is over for good,
  // or owed.
  struct Noted {
    css::uno::Reference<css::drawing::XDrawPage> page;  // of the sheet that was shown on
    Axis axis = Axis::rows;
    std::vector<int> numbers;  // where the rows are there now that are not over
  };
  static std::string idOf(const std::string& key);
  bool isAnothers(const std::string& id) const;  // the owner does not take care of it
  std::optional<Noted> noted(const std::string& id) const;
  bool isEmpty() const;  // nothing is remembered of any workbook

  // Remembers rows of one sheet that are about to be shown, beside which `shown` ones are so by us
  // already. What had the same numbers before and has moved since is still asked for by them. The
  // others are not to be hidden when they are asked for by these numbers: they are visible already.
  // Gives the key of them all.
  std::string remember(const Workbook& workbook, const SheetRef& sheet, Axis axis,
                       const std::vector<int>& numbers, const RowStates& states,
                       const std::vector<int>& shown, const std::vector<int>& others) const;
  // Of those that are not over for good. What is over is not hidden any more when it is asked for.
  void set(const Entries& entries, State state) const;
  void set(const std::string& key, State state) const;
  // Those that are taken and still somewhere are owed from then on.
  void forget(const Entries& entries) const;

 private:
  void replace(const std::string& key, const css::uno::Any& value) const;
  void read(const Workbook& workbook, const std::string& key, Entries& found) const;

  const css::uno::Reference<css::container::XNameContainer> memory_;  // or none
  const Owner owner_;
};

}  // namespace quorin::host::calc
