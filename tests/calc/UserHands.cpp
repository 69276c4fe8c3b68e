#include "tests/calc/UserHands.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XNameAccess.hpp>
#include <com/sun/star/document/XUndoManagerSupplier.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/frame/theGlobalEventBroadcaster.hpp>
#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <com/sun/star/sheet/XSpreadsheetDocument.hpp>
#include <com/sun/star/style/XStyleFamiliesSupplier.hpp>
#include <com/sun/star/util/XModifiable.hpp>
#include <com/sun/star/util/XNumberFormatsSupplier.hpp>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "host/calc/Arguments.h"
#include "host/calc/OfficeConnection.h"
#include "host/calc/OfficeFiles.h"
#include "host/calc/Text.h"

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
      if (model.is() && pathOfUrl(toText(model->getURL())).filename() == book) {
        return {model, UNO_QUERY_THROW};
      }
    }
    throw std::runtime_error("no workbook " + book);
  }
  Reference<css::sheet::XSpreadsheet> sheet(const std::string& book,
                                            const std::string& name) const {
    return {workbook(book)->getSheets()->getByName(toUno(name)), UNO_QUERY_THROW};
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

void UserHands::enter(const std::string& book, const std::string& sheet, const std::string& cell,
                      const std::string& formula) {
  objects_->sheet(book, sheet)
      ->getCellRangeByName(toUno(cell))
      ->getCellByPosition(0, 0)
      ->setFormula(toUno(formula));
}

void UserHands::undo(const std::string& book) {
  objects_->undoManager(book)->undo();
}

void UserHands::setModified(const std::string& book, bool modified) {
  Reference<css::util::XModifiable>(objects_->workbook(book), UNO_QUERY_THROW)
      ->setModified(modified);
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

int UserHands::documents() {
  const auto all = css::frame::theGlobalEventBroadcaster::get(objects_->connection.context())
                       ->createEnumeration();
  int count = 0;
  for (; all->hasMoreElements(); all->nextElement()) ++count;
  return count;
}

bool UserHands::quit() {
  return objects_->desktop->terminate();
}

}  // namespace quorin::host::calc
