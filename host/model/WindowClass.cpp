// The class `window`. What is active in a window is known of the first one alone.
#include <array>
#include <cmath>

#include "host/Address.h"
#include "host/model/Answers.h"
#include "host/model/Codes.h"
#include "host/model/ObjectClass.h"
#include "host/model/Windows.h"
#include "kit/value/EventErrors.h"

namespace quorin::host {
namespace {

using Descriptor = AppleEventDescriptor;
using Property = PropertyEntry<WindowObject>;

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

RangeRef shownIn(Session& session, const WindowObject& window) {
  auto shown = window.index == 1 ? session.spreadsheet.visibleRange() : std::optional<RangeRef>();
  if (!shown) throw EventError(eventErrors::noSuchObject);
  return std::move(*shown);
}

Resolved visibleRange(Session& session, const WindowObject& window) {
  if (window.index != 1) return Descriptor::missingValue();
  return objectAnswer(session.spreadsheet.visibleRange());
}

int lineNumber(const Descriptor& value, int most) {
  const auto number = value.integerValue();
  if (!number || *number < 1 || *number > most) throw EventError(eventErrors::badParameter);
  return static_cast<int>(*number);
}

void scrollTo(Session& session, RangeRef shown, int row, int column) {
  shown.areas = {{row, column, row, column}};
  session.spreadsheet.scrollTo(shown);
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
    Property{codes::id,
             [](Session& session, const WindowObject& window) -> Resolved {
               return Descriptor::integer(idOf(session, window));
             }},
    Property{codes::bounds, bounds},
    Property{codes::visibleRange, visibleRange},
    Property{codes::scrollRow,
             [](Session& session, const WindowObject& window) -> Resolved {
               return Descriptor::integer(shownIn(session, window).areas.front().firstRow);
             },
             [](Session& session, const WindowObject& window, const Descriptor& value) {
               RangeRef shown = shownIn(session, window);
               const int column = shown.areas.front().firstColumn;
               scrollTo(session, std::move(shown), lineNumber(value, maxRow), column);
             }},
    Property{codes::scrollColumn,
             [](Session& session, const WindowObject& window) -> Resolved {
               return Descriptor::integer(shownIn(session, window).areas.front().firstColumn);
             },
             [](Session& session, const WindowObject& window, const Descriptor& value) {
               RangeRef shown = shownIn(session, window);
               const int row = shown.areas.front().firstRow;
               scrollTo(session, std::move(shown), row, lineNumber(value, maxColumn));
             }},
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
