#include "tests/calc/UserHands.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XNameAccess.hpp>
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/document/XUndoManagerSupplier.hpp>
#include <com/sun/star/drawing/XShape.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/frame/XStorable.hpp>
#include <com/sun/star/frame/XTitle.hpp>
#include <com/sun/star/frame/theGlobalEventBroadcaster.hpp>
#include <com/sun/star/lang/IndexOutOfBoundsException.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/sheet/FilterOperator.hpp>
#include <com/sun/star/sheet/FormulaLanguage.hpp>
#include <com/sun/star/sheet/FormulaMapGroup.hpp>
#include <com/sun/star/sheet/TableFilterField.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XFormulaOpCodeMapper.hpp>
#include <com/sun/star/sheet/XNamedRanges.hpp>
#include <com/sun/star/sheet/XSheetFilterable.hpp>
#include <com/sun/star/sheet/XSheetOutline.hpp>
#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <com/sun/star/sheet/XSpreadsheetDocument.hpp>
#include <com/sun/star/sheet/XSpreadsheets2.hpp>
#include <com/sun/star/sheet/XViewFreezable.hpp>
#include <com/sun/star/style/XStyleFamiliesSupplier.hpp>
#include <com/sun/star/table/XColumnRowRange.hpp>
#include <com/sun/star/util/XCloseable.hpp>
#include <com/sun/star/util/XMergeable.hpp>
#include <com/sun/star/util/XModifiable.hpp>
#include <com/sun/star/util/XNumberFormatsSupplier.hpp>
#include <com/sun/star/util/XProtectable.hpp>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "host/calc/marks/MarkShape.h"
#include "host/calc/office/MainThread.h"
#include "host/calc/office/OfficeConnection.h"
#include "host/calc/uno/Arguments.h"
#include "host/calc/uno/OfficeFiles.h"
#include "host/calc/uno/Text.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

css::uno::Sequence<rtl::OUString> namesIn(const Reference<css::uno::XInterface>& owner,
                                          const char* property) {
  const Reference<css::beans::XPropertySet> properties(owner, UNO_QUERY_THROW);
  const Reference<css::container::XNameAccess> names(
      properties->getPropertyValue(rtl::OUString::createFromAscii(property)), UNO_QUERY_THROW);
  return names->getElementNames();
}

void add(std::ostream& state, const char* what, const css::uno::Sequence<rtl::OUString>& texts) {
  state << what << ":";
  for (const rtl::OUString& text : texts) state << " [" << toText(text) << "]";
  state << "\n";
}

}  // namespace

struct UserHands::Objects {
  explicit Objects(const OfficeAddress& office)
      : connection(office, std::chrono::seconds(60)),
        desktop(css::frame::Desktop::create(connection.context())) {}

  Reference<css::sheet::XSpreadsheetDocument> workbook(const std::string& book) const {
    const auto all = desktop->getComponents()->createEnumeration();
    while (all->hasMoreElements()) {
      const Reference<css::frame::XModel> model(all->nextElement(), UNO_QUERY);
      if (!model.is()) continue;
      const std::string url = toText(model->getURL());
      const std::string title =
          toText(Reference<css::frame::XTitle>(model, UNO_QUERY_THROW)->getTitle());
      if (url.empty() ? title == book : pathOfUrl(url).string().ends_with("/" + book)) {
        return {model, UNO_QUERY_THROW};
      }
    }
    throw std::runtime_error("no workbook " + book);
  }
  Reference<css::sheet::XSpreadsheet> sheet(const std::string& book,
                                            const std::string& name) const {
    return {workbook(book)->getSheets()->getByName(toUno(name)), UNO_QUERY_THROW};
  }
  Reference<css::table::XCellRange> cells(const std::string& book, const std::string& name,
                                          const std::string& address) const {
    return sheet(book, name)->getCellRangeByName(toUno(address));
  }
  css::table::CellRangeAddress addressOf(const std::string& book, const std::string& name,
                                         const std::string& address) const {
    return Reference<css::sheet::XCellRangeAddressable>(cells(book, name, address), UNO_QUERY_THROW)
        ->getRangeAddress();
  }
  Reference<css::document::XUndoManager> undoManager(const std::string& book) const {
    return Reference<css::document::XUndoManagerSupplier>(workbook(book), UNO_QUERY_THROW)
        ->getUndoManager();
  }

  OfficeConnection connection;
  const Reference<css::frame::XDesktop2> desktop;
};

UserHands::UserHands(const OfficeAddress& office) : objects_(std::make_unique<Objects>(office)) {}

UserHands::~UserHands() = default;

void UserHands::open(const std::string& file) {
  objects_->desktop->loadComponentFromURL(toUno(fileUrl(file)), "_blank", 0,
                                          sequenceOf({argument("OnMainThread", true)}));
}

std::string UserHands::openBlank() {
  const Reference<css::frame::XTitle> blank(
      objects_->desktop->loadComponentFromURL("private:factory/scalc", "_blank", 0,
                                              sequenceOf({argument("OnMainThread", true)})),
      UNO_QUERY_THROW);
  return toText(blank->getTitle());
}

void UserHands::enter(const std::string& book, const std::string& sheet, const std::string& cell,
                      const std::string& formula) {
  objects_->sheet(book, sheet)
      ->getCellRangeByName(toUno(cell))
      ->getCellByPosition(0, 0)
      ->setFormula(toUno(formula));
}

void UserHands::enterTogether(const std::string& book, const std::string& sheet,
                              const std::string& cells, const std::string& formula) {
  const auto undo = objects_->undoManager(book);
  const auto range = objects_->cells(book, sheet, cells);
  const auto area = objects_->addressOf(book, sheet, cells);
  undo->enterUndoContext("Together");
  for (sal_Int32 row = 0; row <= area.EndRow - area.StartRow; ++row)
    for (sal_Int32 column = 0; column <= area.EndColumn - area.StartColumn; ++column)
      range->getCellByPosition(column, row)->setFormula(toUno(formula));
  undo->leaveUndoContext();
}

void UserHands::fill(const std::string& book, const std::string& sheet, const std::string& cells,
                     std::int32_t color) {
  Reference<css::beans::XPropertySet>(
      objects_->sheet(book, sheet)->getCellRangeByName(toUno(cells)), UNO_QUERY_THROW)
      ->setPropertyValue("CellBackColor", css::uno::Any(color));
}

void UserHands::undo(const std::string& book) {
  objects_->undoManager(book)->undo();
}

void UserHands::save(const std::string& book) {
  Reference<css::frame::XStorable>(objects_->workbook(book), UNO_QUERY_THROW)->store();
}

bool UserHands::canUndo(const std::string& book) {
  return objects_->undoManager(book)->isUndoPossible();
}

std::vector<std::string> UserHands::sheets(const std::string& book) {
  std::vector<std::string> names;
  for (const rtl::OUString& name : objects_->workbook(book)->getSheets()->getElementNames())
    names.push_back(toText(name));
  return names;
}

void UserHands::redo(const std::string& book) {
  objects_->undoManager(book)->redo();
}

void UserHands::close(const std::string& book) {
  Reference<css::util::XCloseable>(objects_->workbook(book), UNO_QUERY_THROW)->close(true);
}

void UserHands::protect(const std::string& book, const std::string& sheet) {
  Reference<css::util::XProtectable>(objects_->sheet(book, sheet), UNO_QUERY_THROW)
      ->protect("secret");
}

void UserHands::unprotect(const std::string& book, const std::string& sheet) {
  Reference<css::util::XProtectable>(objects_->sheet(book, sheet), UNO_QUERY_THROW)
      ->unprotect("secret");
}

void UserHands::draw(const std::string& book, const std::string& sheet, const std::string& name) {
  const Reference<css::lang::XMultiServiceFactory> factory(objects_->workbook(book),
                                                           UNO_QUERY_THROW);
  const Reference<css::drawing::XShape> shape(
      factory->createInstance("com.sun.star.drawing.RectangleShape"), UNO_QUERY_THROW);
  shape->setSize({2000, 1000});
  drawPageOf(objects_->sheet(book, sheet))->add(shape);
  Reference<css::container::XNamed>(shape, UNO_QUERY_THROW)->setName(toUno(name));
}

namespace {

// Marks may be taken away between counting and looking; then all are looked at again.
std::vector<Reference<css::drawing::XShape>> shapesOn(
    const Reference<css::drawing::XDrawPage>& page) {
  while (true) {
    try {
      std::vector<Reference<css::drawing::XShape>> shapes;
      const sal_Int32 count = page.is() ? page->getCount() : 0;
      for (sal_Int32 i = 0; i < count; ++i)
        shapes.emplace_back(page->getByIndex(i), UNO_QUERY_THROW);
      return shapes;
    } catch (const css::lang::IndexOutOfBoundsException&) {
    }
  }
}

}  // namespace

std::vector<std::string> UserHands::shapes(const std::string& book, const std::string& sheet) {
  std::vector<std::string> names;
  for (const auto& shape : shapesOn(drawPageIfAny(objects_->sheet(book, sheet))))
    names.push_back(toText(Reference<css::container::XNamed>(shape, UNO_QUERY_THROW)->getName()));
  return names;
}

int UserHands::heightOfShapes(const std::string& book, const std::string& sheet) {
  int height = 0;
  for (const auto& shape : shapesOn(drawPageOf(objects_->sheet(book, sheet))))
    height += shape->getSize().Height;
  return height;
}

void UserHands::eraseShapes(const std::string& book, const std::string& sheet) {
  const auto page = drawPageOf(objects_->sheet(book, sheet));
  while (page->getCount() > 0)
    page->remove(Reference<css::drawing::XShape>(page->getByIndex(0), UNO_QUERY_THROW));
}

void UserHands::saveAs(const std::string& book, const std::string& file) {
  Reference<css::frame::XStorable>(objects_->workbook(book), UNO_QUERY_THROW)
      ->storeAsURL(toUno(fileUrl(file)),
                   sequenceOf({argument("FilterName", rtl::OUString("Calc MS Excel 2007 XML"))}));
}

void UserHands::insertRows(const std::string& book, const std::string& sheet, int row, int count) {
  Reference<css::table::XColumnRowRange>(objects_->sheet(book, sheet), UNO_QUERY_THROW)
      ->getRows()
      ->insertByIndex(row - 1, count);
}

void UserHands::removeRows(const std::string& book, const std::string& sheet, int row, int count) {
  Reference<css::table::XColumnRowRange>(objects_->sheet(book, sheet), UNO_QUERY_THROW)
      ->getRows()
      ->removeByIndex(row - 1, count);
}

void UserHands::renameName(const std::string& book, const std::string& name,
                           const std::string& fresh) {
  const Reference<css::container::XNameAccess> names(
      Reference<css::beans::XPropertySet>(objects_->workbook(book), UNO_QUERY_THROW)
          ->getPropertyValue("NamedRanges"),
      UNO_QUERY_THROW);
  Reference<css::container::XNamed>(names->getByName(toUno(name)), UNO_QUERY_THROW)
      ->setName(toUno(fresh));
}

void UserHands::renameSheet(const std::string& book, const std::string& sheet,
                            const std::string& name) {
  Reference<css::container::XNamed>(objects_->sheet(book, sheet), UNO_QUERY_THROW)
      ->setName(toUno(name));
}

void UserHands::copySheet(const std::string& book, const std::string& sheet,
                          const std::string& copy) {
  const auto sheets = objects_->workbook(book)->getSheets();
  sheets->copyByName(toUno(sheet), toUno(copy),
                     static_cast<sal_Int16>(sheets->getElementNames().getLength()));
}

void UserHands::deleteSheet(const std::string& book, const std::string& sheet) {
  objects_->workbook(book)->getSheets()->removeByName(toUno(sheet));
}

void UserHands::copySheetTo(const std::string& book, const std::string& sheet,
                            const std::string& otherBook) {
  const auto from = objects_->workbook(book);
  const auto to = objects_->workbook(otherBook)->getSheets();
  // The office does this without its lock: on another thread it dies while a window is painted.
  const bool done =
      onMainThread(objects_->connection.context(), std::chrono::seconds(60), [from, to, sheet] {
        Reference<css::sheet::XSpreadsheets2>(to, UNO_QUERY_THROW)
            ->importSheet(from, toUno(sheet), to->getElementNames().getLength());
      });
  if (!done) throw std::runtime_error("the office does not copy a sheet");
  setModified(otherBook, true);  // as the office's own command does
}

void UserHands::deleteName(const std::string& book, const std::string& name) {
  Reference<css::sheet::XNamedRanges>(
      Reference<css::beans::XPropertySet>(objects_->workbook(book), UNO_QUERY_THROW)
          ->getPropertyValue("NamedRanges"),
      UNO_QUERY_THROW)
      ->removeByName(toUno(name));
}

void UserHands::setModified(const std::string& book, bool modified) {
  Reference<css::util::XModifiable>(objects_->workbook(book), UNO_QUERY_THROW)
      ->setModified(modified);
}

namespace {

void show(const Reference<css::uno::XInterface>& lines, bool shown) {
  Reference<css::beans::XPropertySet>(lines, UNO_QUERY_THROW)
      ->setPropertyValue("IsVisible", css::uno::Any(shown));
}

bool isShown(const Reference<css::uno::XInterface>& lines) {
  bool shown = false;
  Reference<css::beans::XPropertySet>(lines, UNO_QUERY_THROW)->getPropertyValue("IsVisible") >>=
      shown;
  return shown;
}

}  // namespace

void UserHands::hideRows(const std::string& book, const std::string& sheet,
                         const std::string& rows) {
  show(Reference<css::table::XColumnRowRange>(objects_->cells(book, sheet, rows), UNO_QUERY_THROW)
           ->getRows(),
       false);
}

void UserHands::showRows(const std::string& book, const std::string& sheet,
                         const std::string& rows) {
  show(Reference<css::table::XColumnRowRange>(objects_->cells(book, sheet, rows), UNO_QUERY_THROW)
           ->getRows(),
       true);
}

void UserHands::hideColumns(const std::string& book, const std::string& sheet,
                            const std::string& columns) {
  show(
      Reference<css::table::XColumnRowRange>(objects_->cells(book, sheet, columns), UNO_QUERY_THROW)
          ->getColumns(),
      false);
}

void UserHands::showColumns(const std::string& book, const std::string& sheet,
                            const std::string& columns) {
  show(
      Reference<css::table::XColumnRowRange>(objects_->cells(book, sheet, columns), UNO_QUERY_THROW)
          ->getColumns(),
      true);
}

void UserHands::groupRows(const std::string& book, const std::string& sheet,
                          const std::string& rows) {
  Reference<css::sheet::XSheetOutline>(objects_->sheet(book, sheet), UNO_QUERY_THROW)
      ->group(objects_->addressOf(book, sheet, rows), css::table::TableOrientation_ROWS);
}

void UserHands::collapseRows(const std::string& book, const std::string& sheet,
                             const std::string& rows) {
  Reference<css::sheet::XSheetOutline>(objects_->sheet(book, sheet), UNO_QUERY_THROW)
      ->hideDetail(objects_->addressOf(book, sheet, rows));
}

void UserHands::expandRows(const std::string& book, const std::string& sheet,
                           const std::string& rows) {
  Reference<css::sheet::XSheetOutline>(objects_->sheet(book, sheet), UNO_QUERY_THROW)
      ->showDetail(objects_->addressOf(book, sheet, rows));
}

void UserHands::merge(const std::string& book, const std::string& sheet, const std::string& cells) {
  Reference<css::util::XMergeable>(objects_->cells(book, sheet, cells), UNO_QUERY_THROW)
      ->merge(true);
}

void UserHands::filter(const std::string& book, const std::string& sheet, const std::string& cells,
                       int column, const std::string& text) {
  const Reference<css::sheet::XSheetFilterable> range(objects_->cells(book, sheet, cells),
                                                      UNO_QUERY_THROW);
  const auto descriptor = range->createFilterDescriptor(true);
  css::sheet::TableFilterField field;
  field.Field = column;
  field.Operator = css::sheet::FilterOperator_EQUAL;
  field.StringValue = toUno(text);
  descriptor->setFilterFields(sequenceOf({field}));
  Reference<css::beans::XPropertySet>(descriptor, UNO_QUERY_THROW)
      ->setPropertyValue("ContainsHeader", css::uno::Any(true));
  range->filter(descriptor);
}

void UserHands::endFilter(const std::string& book, const std::string& sheet,
                          const std::string& cells) {
  const Reference<css::sheet::XSheetFilterable> range(objects_->cells(book, sheet, cells),
                                                      UNO_QUERY_THROW);
  range->filter(range->createFilterDescriptor(true));
}

bool UserHands::showsSheet(const std::string& book, const std::string& sheet) {
  return isShown(objects_->sheet(book, sheet));
}

void UserHands::freeze(const std::string& book, int columns, int rows) {
  const Reference<css::frame::XModel> model(objects_->workbook(book), UNO_QUERY_THROW);
  Reference<css::sheet::XViewFreezable>(model->getCurrentController(), UNO_QUERY_THROW)
      ->freezeAtPosition(columns, rows);
}

void UserHands::forgetShownRows() {
  const Reference<css::container::XNameContainer> memory(objects_->connection.context(),
                                                         UNO_QUERY_THROW);
  for (const rtl::OUString& name : memory->getElementNames())
    if (name.startsWith("/quorin/shown/")) memory->removeByName(name);
}

void UserHands::lockUndo(const std::string& book) {
  objects_->undoManager(book)->lock();
}

std::string UserHands::stateOf(const std::string& book) {
  const auto workbook = objects_->workbook(book);
  const auto undo = objects_->undoManager(book);
  std::ostringstream state;
  add(state, "undo", undo->getAllUndoActionTitles());
  add(state, "redo", undo->getAllRedoActionTitles());
  state << "locked: " << int{undo->isLocked()} << "\nmodified: "
        << int{Reference<css::util::XModifiable>(workbook, UNO_QUERY_THROW)->isModified()} << "\n";
  add(state, "sheets", workbook->getSheets()->getElementNames());
  add(state, "names", namesIn(workbook, "NamedRanges"));
  add(state, "tables", namesIn(workbook, "DatabaseRanges"));
  const auto families =
      Reference<css::style::XStyleFamiliesSupplier>(workbook, UNO_QUERY_THROW)->getStyleFamilies();
  const Reference<css::container::XNameAccess> styles(families->getByName("CellStyles"),
                                                      UNO_QUERY_THROW);
  add(state, "styles", styles->getElementNames());
  const auto formats =
      Reference<css::util::XNumberFormatsSupplier>(workbook, UNO_QUERY_THROW)->getNumberFormats();
  state << "formats: " << formats->queryKeys(0, {}, false).getLength() << "\n";
  return state.str();
}

std::string UserHands::contentOf(const std::string& book) {
  const TemporaryFolder folder;
  const std::filesystem::path file = folder / "copy.fods";
  Reference<css::frame::XStorable>(objects_->workbook(book), UNO_QUERY_THROW)
      ->storeToURL(toUno(fileUrl(file)),
                   sequenceOf({argument("FilterName", rtl::OUString("OpenDocument Spreadsheet "
                                                                    "Flat XML"))}));
  std::istringstream text(readFile(file));
  std::string content, line;
  // What comes before are dates and where the view stands.
  while (std::getline(text, line) && line.find("<office:spreadsheet>") == std::string::npos) {
  }
  while (std::getline(text, line)) {
    const auto holds = [&line](const char* part) { return line.find(part) != std::string::npos; };
    if (holds("<office:forms") || holds("<table:table-column") || holds("<table:table-cell/>") ||
        holds("<table:table-cell table:number-columns-repeated"))
      continue;
    content += line + "\n";
  }
  const auto sheets = objects_->workbook(book)->getSheets()->getElementNames();
  for (const rtl::OUString& sheet : sheets)
    for (const char* const column : {"A1", "B1", "C1", "D1", "E1", "F1"})
      content += isShown(Reference<css::table::XColumnRowRange>(
                             objects_->cells(book, toText(sheet), column), UNO_QUERY_THROW)
                             ->getColumns())
                     ? "shown "
                     : "hidden ";
  return content;
}

int UserHands::documents() {
  const auto all = css::frame::theGlobalEventBroadcaster::get(objects_->connection.context())
                       ->createEnumeration();
  int count = 0;
  for (; all->hasMoreElements(); all->nextElement()) ++count;
  return count;
}

std::vector<std::string> UserHands::functions(const std::string& book) {
  const Reference<css::lang::XMultiServiceFactory> factory(objects_->workbook(book),
                                                           UNO_QUERY_THROW);
  const Reference<css::sheet::XFormulaOpCodeMapper> mapper(
      factory->createInstance("com.sun.star.sheet.FormulaOpCodeMapper"), UNO_QUERY_THROW);
  std::vector<std::string> names;
  for (const auto& entry : mapper->getAvailableMappings(css::sheet::FormulaLanguage::OOXML,
                                                        css::sheet::FormulaMapGroup::FUNCTIONS)) {
    names.push_back(toText(entry.Name));
  }
  return names;
}

bool UserHands::quit() {
  return objects_->desktop->terminate();
}

}  // namespace quorin::host::calc
