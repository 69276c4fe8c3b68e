// The class `window`. What is active in a window is known of the first one alone.
#include <array>
#include <cmath>

#include "host/Answers.h"
#include "host/Codes.h"
#include "host/ObjectClass.h"

namespace quorin::host {
namespace {

using Descriptor = AppleEventDescriptor;
using Property = PropertyEntry<WindowObject>;

// The workbook that the window shows: the active one's window is the first, then the others follow
// in the order of opening.
std::string workbookOf(Session& session, const WindowObject& window) {
  const auto active = session.spreadsheet.activeWorkbook();
  if (active && window.index == 1) return *active;
  int index = 2;
  for (const std::string& book : session.spreadsheet.workbooks()) {
    if (book == active) continue;
    if (index++ == window.index) return book;
  }
  throw EventError(EventError::noSuchObject);
}

// A list of four integers: left, top, right, bottom.
Resolved bounds(Session& session, const WindowObject& window) {
  const auto bounds = session.spreadsheet.windowBounds(window.index);
  if (!bounds) return Descriptor::missingValue();
  const auto side = [](double points) {
    return Descriptor::integer(static_cast<std::int32_t>(std::lround(points)));
  };
  return Descriptor::list(
      {side(bounds->left), side(bounds->top), side(bounds->right), side(bounds->bottom)});
}

Resolved selection(Session& session, const WindowObject& window) {
  if (window.index != 1) return Descriptor::missingValue();
  return objectAnswer(session.spreadsheet.selection());
}

const std::array properties = {
    Property{codes::name,
             [](Session& session, const WindowObject& window) -> Resolved {
               return Descriptor::text(workbookOf(session, window));
             }},
    Property{codes::index,
             [](Session&, const WindowObject& window) -> Resolved {
               return Descriptor::integer(window.index);
             }},
    Property{codes::bounds, bounds},
    Property{codes::activeCell,
             [](Session& session, const WindowObject& window) -> Resolved {
               if (window.index != 1) return Descriptor::missingValue();
               return objectAnswer(session.spreadsheet.activeCell());
             },
             nullptr, Property::Kind::dynamic},
    Property{codes::activeSheet,
             [](Session& session, const WindowObject& window) {
               return objectAnswer(session.spreadsheet.activeSheetOf(workbookOf(session, window)));
             },
             nullptr, Property::Kind::dynamic},
    Property{codes::selection, selection, nullptr, Property::Kind::dynamic},
    Property{codes::rangeSelection, selection, nullptr, Property::Kind::dynamic},
};

}  // namespace

const ClassTable<WindowObject>& classTable(const WindowObject&) {
  static const ClassTable<WindowObject> table{codes::window, properties, {}};
  return table;
}

}  // namespace quorin::host
