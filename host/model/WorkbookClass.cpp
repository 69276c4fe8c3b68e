// The class `workbook`.
#include <array>

#include "host/model/Answers.h"
#include "host/model/Codes.h"
#include "host/model/ObjectClass.h"
#include "host/model/RangeText.h"
#include "host/model/Windows.h"
#include "kit/value/EventErrors.h"
#include "kit/value/Unicode.h"

namespace quorin::host {
namespace {

using Descriptor = AppleEventDescriptor;
using Property = PropertyEntry<WorkbookObject>;
using Element = ElementEntry<WorkbookObject>;

const std::array properties = {
    Property{codes::name,
             [](Session&, const WorkbookObject& book) -> Resolved {
               return Descriptor::text(book.name);
             }},
    Property{codes::activeSheet,
             [](Session& session, const WorkbookObject& book) {
               return objectAnswer(session.spreadsheet.activeSheetOf(book.name));
             },
             nullptr, Property::Kind::dynamic},
};

long long sheetCount(Session& session, const WorkbookObject& book) {
  return static_cast<long long>(session.spreadsheet.worksheets(book.name).size());
}

Object sheetAt(Session& session, const WorkbookObject& book, long long index) {
  return SheetObject{{book.name, session.spreadsheet.worksheets(book.name).at(
                                     static_cast<std::size_t>(index - 1))}};
}

std::optional<Object> sheetNamed(Session& session, const WorkbookObject& book,
                                 const std::string& name) {
  auto sheet = findWorksheet(session, book.name, name);
  if (!sheet) return std::nullopt;
  return SheetObject{std::move(*sheet)};
}

std::vector<Object> allSheets(Session& session, const WorkbookObject& book) {
  std::vector<Object> sheets;
  for (std::string& name : session.spreadsheet.worksheets(book.name))
    sheets.push_back(SheetObject{{book.name, std::move(name)}});
  return sheets;
}

long long nameCount(Session& session, const WorkbookObject& book) {
  return std::ssize(session.spreadsheet.definedNames(book.name));
}

Object nameAt(Session& session, const WorkbookObject& book, long long index) {
  return NamedItemObject{book.name, session.spreadsheet.definedNames(book.name).at(
                                        static_cast<std::size_t>(index - 1))};
}

std::optional<Object> nameNamed(Session& session, const WorkbookObject& book,
                                const std::string& name) {
  for (DefinedName& each : session.spreadsheet.definedNames(book.name))
    if (caselesslyEqual(listedName(each), name)) return NamedItemObject{book.name, std::move(each)};
  return std::nullopt;
}

std::vector<Object> allNames(Session& session, const WorkbookObject& book) {
  std::vector<Object> items;
  for (DefinedName& name : session.spreadsheet.definedNames(book.name))
    items.push_back(NamedItemObject{book.name, std::move(name)});
  return items;
}

Object onlyWindow(Session& session, const WorkbookObject& book, long long) {
  const auto window = windowOf(session, book.name);
  if (!window) throw EventError(eventErrors::noSuchObject);
  return *window;
}

// The port knows no chart sheets, so that sheets and worksheets are the same.
const std::array elements = {
    Element{codes::worksheet, sheetCount, sheetAt, sheetNamed, allSheets},
    Element{codes::sheet, sheetCount, sheetAt, sheetNamed, allSheets},
    Element{codes::namedItem, nameCount, nameAt, nameNamed, allNames},
    Element{codes::window, [](Session&, const WorkbookObject&) -> long long { return 1; },
            onlyWindow},
};

}  // namespace

const ClassTable<WorkbookObject>& classTable(const WorkbookObject&) {
  static const ClassTable<WorkbookObject> table{codes::workbook, properties, elements};
  return table;
}

}  // namespace quorin::host
