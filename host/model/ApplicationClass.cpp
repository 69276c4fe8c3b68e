// The class `application`. Elements that belong to a sheet are those of the active one.
#include <array>

#include "host/model/Answers.h"
#include "host/model/Codes.h"
#include "host/model/ObjectClass.h"
#include "host/model/RangeText.h"
#include "host/model/Windows.h"
#include "kit/value/EventErrors.h"

namespace quorin::host {
namespace {

using Descriptor = AppleEventDescriptor;
using Property = PropertyEntry<ApplicationObject>;
using Element = ElementEntry<ApplicationObject>;

void setFlag(bool& flag, const Descriptor& value) {
  const auto given = value.booleanValue();
  if (!given) throw EventError(eventErrors::badParameter);
  flag = *given;
}

const std::array properties = {
    Property{codes::name,
             [](Session&, const ApplicationObject&) -> Resolved {
               return Descriptor::text("Microsoft Excel");
             }},
    Property{codes::version,
             [](Session& session, const ApplicationObject&) -> Resolved {
               return Descriptor::text(session.spreadsheet.version());
             }},
    Property{codes::frontmost,
             [](Session& session, const ApplicationObject&) -> Resolved {
               return Descriptor::boolean(session.spreadsheet.isFrontmost());
             }},
    Property{codes::displayAlerts,
             [](Session& session, const ApplicationObject&) -> Resolved {
               return Descriptor::boolean(session.displayAlerts);
             },
             [](Session& session, const ApplicationObject&, const Descriptor& value) {
               setFlag(session.displayAlerts, value);
             }},
    Property{codes::screenUpdating,
             [](Session& session, const ApplicationObject&) -> Resolved {
               return Descriptor::boolean(session.screenUpdating);
             },
             [](Session& session, const ApplicationObject&, const Descriptor& value) {
               setFlag(session.screenUpdating, value);
             }},
    Property{codes::activeCell,
             [](Session& session, const ApplicationObject&) {
               return objectAnswer(session.spreadsheet.activeCell());
             },
             nullptr, Property::Kind::dynamic},
    Property{codes::activeSheet,
             [](Session& session, const ApplicationObject&) {
               return objectAnswer(session.spreadsheet.activeSheet());
             },
             nullptr, Property::Kind::dynamic},
    Property{codes::activeWorkbook,
             [](Session& session, const ApplicationObject&) -> Resolved {
               auto book = session.spreadsheet.activeWorkbook();
               if (!book) return Descriptor::missingValue();
               if (session.inHandler) session.toldBook = *book;
               return Object(WorkbookObject{std::move(*book)});
             },
             nullptr, Property::Kind::dynamic},
    Property{codes::activeWindow,
             [](Session& session, const ApplicationObject&) -> Resolved {
               if (!session.spreadsheet.activeWorkbook()) return Descriptor::missingValue();
               return Object(WindowObject{1});
             },
             nullptr, Property::Kind::dynamic},
    Property{codes::selection,
             [](Session& session, const ApplicationObject&) {
               return objectAnswer(session.spreadsheet.selection());
             },
             nullptr, Property::Kind::dynamic},
};

long long workbookCount(Session& session, const ApplicationObject&) {
  return static_cast<long long>(session.spreadsheet.workbooks().size());
}

std::optional<Object> windowNamed(Session& session, const ApplicationObject&,
                                  const std::string& name) {
  const auto book = findWorkbook(session, name);
  const auto window = book ? windowOf(session, *book) : std::nullopt;
  if (!window) return std::nullopt;
  return *window;
}

std::optional<Object> windowIdentified(Session& session, const ApplicationObject&, long long id) {
  const auto window = windowOfID(session, id);
  if (!window) return std::nullopt;
  return *window;
}

// Elements of the active sheet; without one there are none.
template <FourCharCode code>
constexpr Element ofActiveSheet() {
  return {code,
          [](Session& session, const ApplicationObject&) -> long long {
            const auto sheet = session.spreadsheet.activeSheet();
            if (!sheet) return 0;
            const SheetObject object{*sheet};
            return classTable(object).element(code)->count(session, object);
          },
          [](Session& session, const ApplicationObject&, long long index) -> Object {
            const SheetObject object{session.spreadsheet.activeSheet().value()};
            return classTable(object).element(code)->at(session, object, index);
          },
          [](Session& session, const ApplicationObject&,
             const std::string& name) -> std::optional<Object> {
            const auto sheet = session.spreadsheet.activeSheet();
            if (!sheet) return std::nullopt;
            const SheetObject object{*sheet};
            return classTable(object).element(code)->named(session, object, name);
          }};
}

// Elements of the active workbook.
template <FourCharCode code>
constexpr Element ofActiveWorkbook() {
  return {code,
          [](Session& session, const ApplicationObject&) -> long long {
            const auto book = session.spreadsheet.activeWorkbook();
            if (!book) return 0;
            const WorkbookObject object{*book};
            return classTable(object).element(code)->count(session, object);
          },
          [](Session& session, const ApplicationObject&, long long index) -> Object {
            const WorkbookObject object{session.spreadsheet.activeWorkbook().value()};
            return classTable(object).element(code)->at(session, object, index);
          },
          [](Session& session, const ApplicationObject&,
             const std::string& name) -> std::optional<Object> {
            const auto book = session.spreadsheet.activeWorkbook();
            if (!book) return std::nullopt;
            const WorkbookObject object{*book};
            return classTable(object).element(code)->named(session, object, name);
          },
          [](Session& session, const ApplicationObject&) -> std::vector<Object> {
            const auto book = session.spreadsheet.activeWorkbook();
            if (!book) return {};
            const WorkbookObject object{*book};
            return classTable(object).element(code)->all(session, object);
          }};
}

const std::array elements = {
    Element{codes::workbook, workbookCount,
            [](Session& session, const ApplicationObject&, long long index) -> Object {
              return WorkbookObject{
                  session.spreadsheet.workbooks().at(static_cast<std::size_t>(index - 1))};
            },
            [](Session& session, const ApplicationObject&,
               const std::string& name) -> std::optional<Object> {
              auto book = findWorkbook(session, name);
              if (!book) return std::nullopt;
              return WorkbookObject{std::move(*book)};
            },
            [](Session& session, const ApplicationObject&) {
              std::vector<Object> books;
              for (std::string& name : session.spreadsheet.workbooks())
                books.push_back(WorkbookObject{std::move(name)});
              return books;
            }},
    Element{codes::window, workbookCount,
            [](Session&, const ApplicationObject&, long long index) -> Object {
              return WindowObject{static_cast<int>(index)};
            },
            windowNamed, nullptr, windowIdentified},
    ofActiveWorkbook<codes::worksheet>(),
    ofActiveWorkbook<codes::sheet>(),
    ofActiveWorkbook<codes::namedItem>(),
    // Unlike a sheet's own ranges, these may lie anywhere: on a sheet that the text names, or
    // where a defined name leads.
    Element{codes::range, ofActiveSheet<codes::range>().count, ofActiveSheet<codes::range>().at,
            [](Session& session, const ApplicationObject&,
               const std::string& name) -> std::optional<Object> {
              auto range = bindRangeText(session, std::nullopt, name);
              if (!range) return std::nullopt;
              return RangeObject{std::move(*range)};
            }},
    ofActiveSheet<codes::cell>(),
    ofActiveSheet<codes::row>(),
    ofActiveSheet<codes::column>(),
};

}  // namespace

const ClassTable<ApplicationObject>& classTable(const ApplicationObject&) {
  static const ClassTable<ApplicationObject> table{codes::application, properties, elements};
  return table;
}

}  // namespace quorin::host
