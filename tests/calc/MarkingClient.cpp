// A client of an office that marks cells with the help of a marks keeper: the victim of the tests.
//
//   marking_client PIPE PROCESS BOOK
//
// It writes "ready", reads lines "SHEET CELLS", marks the cells, which must be a list such as
// "B2,C5:D6", and answers each line with the keeper's process id, or with what went wrong. It ends
// in good order when its input does.
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <iostream>
#include <string>

#include "host/Address.h"
#include "host/calc/marks/MarkShape.h"
#include "host/calc/marks/MarksKeeper.h"
#include "host/calc/office/OfficeConnection.h"
#include "host/calc/uno/OfficeFiles.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"
#include "host/calc/workbook/QuietChanges.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

Workbook workbookNamed(const OfficeConnection& office, const std::string& book) {
  const auto all =
      css::frame::Desktop::create(office.context())->getComponents()->createEnumeration();
  while (all->hasMoreElements()) {
    const Reference<css::frame::XModel> model(all->nextElement(), UNO_QUERY);
    if (!model.is() || pathOfUrl(toText(model->getURL())).filename() != book) continue;
    Workbook workbook;
    workbook.name = book;
    workbook.model = model;
    workbook.document.set(model, UNO_QUERY_THROW);
    workbook.sheets.set(workbook.document->getSheets(), UNO_QUERY_THROW);
    return workbook;
  }
  throw std::runtime_error("no workbook " + book);
}

void mark(MarksKeeper& keeper, const Owner& owner, QuietChanges& changes, const Workbook& workbook,
          int number, const std::string& sheet, const std::string& cells) {
  rtl::OUString uid;
  Reference<css::beans::XPropertySet>(workbook.model, UNO_QUERY_THROW)
      ->getPropertyValue("RuntimeUID") >>= uid;
  Reference<css::drawing::XShape> shape;  // held longer than the turn
  const MarksKeeper::Turn turn(keeper, toText(uid));
  const auto place = sheetOf(workbook, sheet);
  const std::vector<Area> areas = parseA1(cells).value();
  const AskedPlace asked{{workbook.name, sheet}, areas};
  shape = makeMarkShape(workbook.model,
                        {number, {"=1=1", Color{255, 0, 255}, areas, asked, owner.text()}},
                        outlinesOf(place, areas));
  changes.add(workbook, drawPageOf(place), shape);
}

void serve(const OfficeAddress& address, const std::string& book) {
  const OfficeConnection office(address, std::chrono::seconds(60));
  const Workbook workbook = workbookNamed(office, book);
  QuietChanges changes(office.context());
  const Owner owner = Owner::ofThisProcess();
  MarksKeeper keeper(address, owner);
  int number = 0;
  std::cout << "ready" << std::endl;
  for (std::string sheet, cells; std::cin >> sheet >> cells;) {
    try {
      mark(keeper, owner, changes, workbook, ++number, sheet, cells);
      std::cout << keeper.process() << std::endl;
    } catch (const std::exception& failure) {
      std::cout << failure.what() << std::endl;
    }
  }
}

}  // namespace
}  // namespace quorin::host::calc

int main(int count, char** arguments) {
  if (count != 4) return 2;
  quorin::host::calc::serve({std::atoi(arguments[2]), arguments[1]}, arguments[3]);
  return 0;
}
