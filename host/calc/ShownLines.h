// ShownLines: knows where the rows and columns are now that were shown for the user to look at, so
// that these are hidden again and no others, wherever edits have moved them, and tells those that
// the user has made visible himself. Any thread that may call the office.
//
// The memory is the office's own: objects in its component context, one entry there for all lines
// that were shown together. They follow the user's edits by themselves, call nobody, and outlive
// this process and its connection; the marks keeper reads the same. They end with their workbook;
// from then on LineTraces tell the lines. Of one reader and one writer at a time: who changes an
// entry replaces it.
#pragma once

#include <com/sun/star/container/XNameContainer.hpp>
#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/Spreadsheet.h"
#include "host/calc/CalcWorkbooks.h"
#include "host/calc/LineStates.h"

namespace quorin::host::calc {

// One line as it was when it was shown, by which it is asked for again.
struct AskedLine {
  SheetRef sheet;
  Lines kind = Lines::rows;
  int number = 0;

  bool operator==(const AskedLine&) const = default;
};

class ShownLines {
 public:
  explicit ShownLines(const css::uno::Reference<css::uno::XComponentContext>& context);

  struct Place {
    css::uno::Reference<css::sheet::XSpreadsheet> sheet;
    std::string name;  // of the sheet
    int number = 0;
  };
  // What is remembered of one line.
  struct Entry {
    std::string key;        // of those that were shown together with it
    std::size_t index = 0;  // among them
    AskedLine asked;
    bool isSettled = false;       // it is hidden again, or was never ours: nothing is to be done
    std::optional<Place> place;   // none when it is deleted, or its sheet is
    bool isFiltered = false;      // a filter hid it
    std::vector<int> neighbours;  // hidden together with it, where they are now; at most two
  };
  using Entries = std::vector<Entry>;

  // Everything that is remembered of the workbook.
  Entries entries(const Workbook& workbook) const;

  // Remembers lines of one sheet that are about to be shown. What had the same numbers before and
  // has moved since is still asked for by them. The others are not to be hidden when they are asked
  // for by these numbers: they are visible already.
  void remember(const Workbook& workbook, const SheetRef& sheet, Lines kind,
                const std::vector<int>& numbers, const LineStates& states,
                const std::vector<int>& others) const;
  // The lines are not to be hidden any more when they are asked for.
  void settle(const Entries& entries) const;
  void forget(const Entries& entries) const;

 private:
  void put(const std::string& key, const css::uno::Any& value) const;
  void read(const Workbook& workbook, const std::string& key, Entries& found) const;

  const css::uno::Reference<css::container::XNameContainer> memory_;  // or none
};

// Hides the lines of these entries of the workbook, `all` being all of them, that are visible and
// not settled, but for those that the user has made visible himself meanwhile: the filter that hid
// it has ended, or everything that was hidden beside it and beside others of ours next to it is
// visible.
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
HiddenAgain hideShownLines(QuietChanges& changes, const Workbook& workbook,
                           const ShownLines::Entries& entries, const ShownLines::Entries& all);

}  // namespace quorin::host::calc
