// RequestMemory: what the calls of one request read of the office, told again to those that follow,
// so that a request asks the office for each thing once and sees the workbooks as they were at one
// moment. Outside of a request it keeps nothing. Plain values; call thread.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/Spreadsheet.h"

namespace quorin::host::calc {

class RequestMemory {
 public:
  void begin();
  void end();
  void forget();  // something was changed

  // What `read` gave when it was first asked.
  template <typename Read>
  std::vector<std::string> workbooks(Read read) {
    return known(workbooks_, read);
  }
  template <typename Read>
  std::optional<std::string> activeWorkbook(Read read) {
    return known(activeWorkbook_, read);
  }
  template <typename Read>
  std::optional<SheetRef> activeSheet(Read read) {
    return known(activeSheet_, read);
  }

  template <typename Read>
  std::vector<DefinedName> definedNames(const std::string& book, Read read) {
    return known(definedNames_[book], read);
  }

  // Nothing when these cells were not read. Only the values that were kept last are.
  std::optional<Grid<CellValue>> values(const RangeRef& range) const;
  // Takes the values out of the memory when they are those of the range's first column.
  std::optional<Grid<CellValue>> takeFirstColumn(const RangeRef& range);
  void keepValues(const RangeRef& range, Grid<CellValue> values);

  // What is going to be asked for with these displayed texts: who looks at those of the first
  // column of what was read asks for all of them next, where there are not too many and no error
  // in that column stops it.
  RangeRef textsAskedNext(const RangeRef& range) const;
  // Once, and only those of this very range.
  std::optional<Grid<std::string>> takeTexts(const RangeRef& range);
  void keepTexts(const RangeRef& range, Grid<std::string> texts);

  // True if the values that are kept say that there are no long texts in these cells.
  bool hasShortTexts(const RangeRef& range) const;

  // True if the values that were read last say that there is no error in these cells.
  bool hasNoErrors(const RangeRef& range) const;
  // True if the values that are kept say which of these cells are errors.
  bool knowsErrors(const RangeRef& range) const;
  // Puts what these are called in their places among the texts of the cells.
  void nameErrors(const RangeRef& range, Grid<std::string>& texts) const;
  void noteErrors(const RangeRef& range, const Grid<CellValue>& values);

 private:
  template <typename T, typename Read>
  T known(std::optional<T>& place, Read read) {
    if (place) return *place;
    T told = read();
    if (lasts_) place = told;
    return told;
  }

  bool lasts_ = false;
  std::optional<std::vector<std::string>> workbooks_;
  std::map<std::string, std::optional<std::vector<DefinedName>>> definedNames_;
  std::optional<std::optional<std::string>> activeWorkbook_;
  std::optional<std::optional<SheetRef>> activeSheet_;
  RangeRef valuesRange_;
  std::optional<Grid<CellValue>> values_;
  RangeRef textsRange_;
  std::optional<Grid<std::string>> texts_;
  std::optional<RangeRef> withoutErrors_;
};

// The values of a range whose first column was read before.
Grid<CellValue> withFirstColumn(Grid<CellValue> first, Grid<CellValue> rest);

}  // namespace quorin::host::calc
