#include "host/calc/grammar/OfficeWork.h"

#include <algorithm>

#include "kit/value/EventErrors.h"

namespace quorin::host::calc {
namespace {

constexpr double mostSteps = 5e7;  // some seconds

}  // namespace

void OfficeWork::add(const OfficeWork& more) {
  crossed += more.crossed;
  values += more.values;
  counted += more.counted;
  texts += more.texts;
  written = std::max(written, more.written);
  replaced += more.replaced;
  replacedByAny += more.replacedByAny;
  searches.insert(searches.end(), more.searches.begin(), more.searches.end());
}

bool OfficeWork::isOfTexts() const {
  return texts > 0 || replaced > 0 || replacedByAny > 0 ||
         std::any_of(searches.begin(), searches.end(),
                     [](const Search& each) { return each.perCharacter; });
}

void refuseLargeArrays(const OfficeWork& work) {
  constexpr double mostCounted = 1e8;
  constexpr double mostCrossed = 4e6;  // these take the office up to some seconds
  if (work.crossed > mostCrossed || work.values > mostSteps) {
    throw SpreadsheetError(eventErrors::badParameter,
                           "The expression makes arrays of too many cells");
  }
  if (work.counted > mostCounted)
    throw SpreadsheetError(eventErrors::badParameter, "The expression counts too far");
}

void refuseLongSearches(const OfficeWork& work,
                        const std::function<double(const RangeRef& cells)>& filled,
                        double longestText) {
  constexpr double mostCharacters = 2e8;  // in arrays, two bytes each
  const double longest = std::max(work.written, longestText);
  if (work.texts * longest > mostCharacters) {
    throw SpreadsheetError(eventErrors::badParameter,
                           "The expression makes arrays of too much text");
  }
  double steps = work.values + work.replaced * longest + work.replacedByAny * longest * longest;
  for (const OfficeWork::Search& search : work.searches) {
    double items = search.items;
    for (const RangeRef& cells : search.cells) items += filled(cells);
    steps +=
        search.times * items * (search.perCharacter ? longest : 1) * (search.perItem ? items : 1);
  }
  if (steps > mostSteps) {
    throw SpreadsheetError(eventErrors::badParameter,
                           "The expression looks through too many cells too often");
  }
}

}  // namespace quorin::host::calc
