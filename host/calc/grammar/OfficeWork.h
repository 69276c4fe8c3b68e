// OfficeWork: what Calc has to do for an expression in one go, which nobody can end: how many
// values it makes, how often it looks through cells and how much text it puts together. What is
// more than some seconds is not asked of it. Pure.
#pragma once

#include <functional>
#include <vector>

#include "host/Spreadsheet.h"

namespace quorin::host::calc {

constexpr double longestOfCell = 32'767;  // characters

struct OfficeWork {
  // A call that looks through cells and values of arrays so many times, as COUNTIF does with many
  // criteria.
  struct Search {
    double times = 0;
    bool perCharacter = false;  // of the longest text, in addition
    bool perItem = false;       // of what it looks through, in addition
    double items = 0;           // values of arrays
    std::vector<RangeRef> cells = {};
  };

  double crossed = 0;   // values where columns meet rows
  double values = 0;    // of arrays, and steps that count as much: a ten millionth of a second each
  double texts = 0;     // values of arrays that are put together of texts
  double written = 0;   // characters of the longest text that stands in it or comes of REPT
  double replaced = 0;  // steps for each character of the longest text
  double replacedByAny = 0;  // and for each pair of these
  double counted = 0;        // turns of what counts up to a number
  std::vector<Search> searches = {};

  void add(const OfficeWork& more);
  // True if it matters how long the texts are.
  bool isOfTexts() const;
};

// SpreadsheetError -50 for what is not to be worked out, as it would hold the office up, whatever
// the cells hold.
void refuseLargeArrays(const OfficeWork& work);

// The same once it is known how many of such cells are filled, and how many characters the longest
// text in any of them has.
void refuseLongSearches(const OfficeWork& work,
                        const std::function<double(const RangeRef& cells)>& filled,
                        double longestText);

}  // namespace quorin::host::calc
