#include "host/calc/reveal/RowsNote.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <string_view>

#include "host/calc/marks/MarkShape.h"
#include "host/calc/reveal/RowStates.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using Page = Reference<css::drawing::XDrawPage>;

constexpr std::string_view notePrefix = "Quorin shown lines ";

bool isNote(const NamedShape& shape) {
  return shape.name.starts_with(notePrefix);
}

// Two numbers. What makes names different may stand behind them on a copy.
std::string idIn(const std::string& name) {
  const std::string id = name.substr(notePrefix.size());
  const auto isDigit = [](unsigned char each) { return std::isdigit(each) != 0; };
  const auto dash = std::find_if_not(id.begin(), id.end(), isDigit);
  if (dash == id.end()) return id;
  return {id.begin(), std::find_if_not(dash + 1, id.end(), isDigit)};
}

// Hides what is remembered as it is numbered on the sheet that was copied.
void hideOnCopy(QuietChanges& changes, const Workbook& workbook,
                const Reference<css::sheet::XSpreadsheet>& sheet, const ShownRows::Noted& noted) {
  RowStates(sheet, noted.axis).setHidden(changes, workbook, noted.numbers, true);
}

}  // namespace

void addNote(QuietChanges& changes, const Workbook& workbook, const Page& page,
             const std::string& key) {
  if (!key.empty())
    changes.add(workbook, page,
                makeEmptyShape(workbook.model, std::string(notePrefix) + ShownRows::idOf(key)));
}

void tidyNotes(QuietChanges& changes, const Workbook& workbook, const ShownRows& shown) {
  for (const Reference<css::sheet::XSpreadsheet>& sheet : sheetsOf(workbook)) {
    const Page page = drawPageIfAny(sheet);
    if (!page.is()) continue;
    for (const NamedShape& shape : namedShapes(page)) {
      if (!isNote(shape)) continue;
      const auto noted = shown.noted(idIn(shape.name));
      const bool isCopy = noted && noted->page != page;
      if (isCopy) hideOnCopy(changes, workbook, sheet, *noted);
      if (isCopy || !noted) changes.remove(workbook, page, shape.shape);
    }
  }
}

// Until none is found: one whose object has lost its shape is not removed at once.
std::vector<TakenNote> takeNotes(QuietChanges& changes, const Workbook& workbook,
                                 const ShownRows& shown) {
  constexpr int mostTries = 10;
  std::vector<TakenNote> taken;
  bool found = true;
  for (int tries = 0; found && tries < mostTries; ++tries) {
    found = false;
    for (const Reference<css::sheet::XSpreadsheet>& sheet : sheetsOf(workbook)) {
      const Page page = drawPageIfAny(sheet);
      if (!page.is()) continue;
      for (const NamedShape& shape : namedShapes(page)) {
        if (!isNote(shape) || shown.isAnothers(idIn(shape.name))) continue;
        found = true;
        changes.remove(workbook, page, shape.shape);
        const bool isKnown = std::any_of(taken.begin(), taken.end(), [&](const TakenNote& each) {
          return each.page == page && each.name == shape.name;
        });
        if (!isKnown) taken.push_back({page, shape.name});
      }
    }
  }
  return taken;
}

void putBack(QuietChanges& changes, const Workbook& workbook, const TakenNote& note) {
  changes.add(workbook, note.page, makeEmptyShape(workbook.model, note.name));
}

}  // namespace quorin::host::calc
