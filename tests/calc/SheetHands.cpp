#include "tests/calc/SheetHands.h"

#include <algorithm>
#include <array>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/chart2/XChartDocument.hpp>
#include <com/sun/star/chart2/XChartTypeContainer.hpp>
#include <com/sun/star/chart2/XCoordinateSystemContainer.hpp>
#include <com/sun/star/chart2/XDataSeriesContainer.hpp>
#include <com/sun/star/chart2/data/XDataSource.hpp>
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/document/XDocumentRecovery.hpp>
#include <com/sun/star/document/XEmbeddedObjectSupplier.hpp>
#include <com/sun/star/document/XUndoManagerSupplier.hpp>
#include <com/sun/star/drawing/FillStyle.hpp>
#include <com/sun/star/drawing/PointSequenceSequence.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/frame/XStorable.hpp>
#include <com/sun/star/io/IOException.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XCellRangeMovement.hpp>
#include <com/sun/star/sheet/XSpreadsheetDocument.hpp>
#include <com/sun/star/table/XColumnRowRange.hpp>
#include <com/sun/star/table/XTableCharts.hpp>
#include <com/sun/star/table/XTableChartsSupplier.hpp>
#include <com/sun/star/util/XModifiable.hpp>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

#include "host/calc/marks/MarkShape.h"
#include "host/calc/office/OfficeConnection.h"
#include "host/calc/uno/Arguments.h"
#include "host/calc/uno/OfficeFiles.h"
#include "host/calc/uno/Text.h"

namespace quorin::host::calc {
namespace {

using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

using Rectangle = std::array<sal_Int32, 4>;  // left, top, right, bottom

const std::map<std::string, const char*> filters{{".xlsx", "Calc MS Excel 2007 XML"},
                                                 {".xls", "MS Excel 97"},
                                                 {".ods", "calc8"},
                                                 {".fods", "OpenDocument Spreadsheet Flat XML"},
                                                 {".pdf", "calc_pdf_Export"}};

template <typename Value>
Value property(const Reference<css::uno::XInterface>& object, const char* name) {
  Value value{};
  Reference<css::beans::XPropertySet>(object, UNO_QUERY_THROW)
      ->getPropertyValue(rtl::OUString::createFromAscii(name)) >>= value;
  return value;
}

template <typename Value>
void setProperty(const Reference<css::uno::XInterface>& object, const char* name, Value value) {
  Reference<css::beans::XPropertySet>(object, UNO_QUERY_THROW)
      ->setPropertyValue(rtl::OUString::createFromAscii(name), Any(value));
}

// What lies between the first and the second text.
std::string between(const std::string& text, const std::string& first, const std::string& second) {
  const std::size_t start = text.find(first) + first.size();
  return text.substr(start, text.find(second, start) - start);
}

std::set<Rectangle> drawnIn(const Reference<css::uno::XInterface>& shape) {
  std::set<Rectangle> drawn;
  if (property<css::drawing::FillStyle>(shape, "FillStyle") == css::drawing::FillStyle_NONE) {
    return drawn;
  }
  for (const auto& outline : property<css::drawing::PointSequenceSequence>(shape, "PolyPolygon")) {
    Rectangle box{outline[0].X, outline[0].Y, outline[0].X, outline[0].Y};
    for (const css::awt::Point& corner : outline) {
      box = {std::min(box[0], corner.X), std::min(box[1], corner.Y), std::max(box[2], corner.X),
             std::max(box[3], corner.Y)};
    }
    drawn.insert(box);
  }
  return drawn;
}

// The same for the cells themselves.
std::set<Rectangle> shownOf(const Reference<css::sheet::XSpreadsheet>& sheet,
                            const std::string& cells) {
  std::set<Rectangle> shown;
  std::istringstream areas(cells);
  for (std::string area; std::getline(areas, area, ',');) {
    const auto range = sheet->getCellRangeByName(toUno(area));
    const auto place = property<css::awt::Point>(range, "Position");
    const auto size = property<css::awt::Size>(range, "Size");
    if (size.Width <= 1 || size.Height <= 1) continue;
    shown.insert({place.X, place.Y, place.X + size.Width - 1, place.Y + size.Height - 1});
  }
  return shown;
}

}  // namespace

struct SheetHands::Objects {
  Objects(const OfficeAddress& office, const std::string& book)
      : connection(office, std::chrono::seconds(60)) {
    const auto all =
        css::frame::Desktop::create(connection.context())->getComponents()->createEnumeration();
    while (all->hasMoreElements()) {
      const Reference<css::frame::XModel> model(all->nextElement(), UNO_QUERY);
      if (model.is() && pathOfUrl(toText(model->getURL())).filename() == book) {
        document.set(model, UNO_QUERY_THROW);
      }
    }
    if (!document.is()) throw std::runtime_error("no workbook " + book);
  }
  Reference<css::sheet::XSpreadsheet> sheet(const std::string& name) const {
    return {document->getSheets()->getByName(toUno(name)), UNO_QUERY_THROW};
  }
  Reference<css::table::XTableRows> rows(const std::string& name) const {
    return Reference<css::table::XColumnRowRange>(sheet(name), UNO_QUERY_THROW)->getRows();
  }
  Reference<css::table::XTableColumns> columns(const std::string& name) const {
    return Reference<css::table::XColumnRowRange>(sheet(name), UNO_QUERY_THROW)->getColumns();
  }
  Reference<css::table::XTableCharts> charts(const std::string& name) const {
    const Reference<css::table::XTableChartsSupplier> supplier(sheet(name), UNO_QUERY_THROW);
    return supplier->getCharts();
  }
  Reference<css::document::XUndoManager> undoManager() const {
    return Reference<css::document::XUndoManagerSupplier>(document, UNO_QUERY_THROW)
        ->getUndoManager();
  }
  template <typename Work>
  bool stored(Work work) const {
    try {
      work(Reference<css::frame::XStorable>(document, UNO_QUERY_THROW));
      return true;
    } catch (const css::io::IOException&) {
      return false;
    }
  }

  // Marks may be put and taken between one question and the next; then all are read again.
  std::vector<std::string> marks() const {
    constexpr int mostTries = 100;
    for (int tries = 1;; ++tries) {
      try {
        return marksAtOnce();
      } catch (const css::uno::Exception&) {
        if (tries == mostTries) throw;
      }
    }
  }
  std::vector<std::string> marksAtOnce() const {
    std::vector<std::string> marks;
    for (const rtl::OUString& name : document->getSheets()->getElementNames()) {
      const auto place = sheet(toText(name));
      const auto page = drawPageOf(place);
      for (sal_Int32 i = 0; i < page->getCount(); ++i) {
        const Reference<css::uno::XInterface> shape(page->getByIndex(i), UNO_QUERY_THROW);
        const std::string text = toText(property<rtl::OUString>(shape, "Name"));
        // What was made while its predecessor was being unmade has lost its shape.
        if (text.empty()) throw css::uno::RuntimeException("a shape without a name");
        const std::string cells = between(text, "cells=", " ");
        const bool placed = drawnIn(shape) == shownOf(place, cells);
        marks.push_back(toText(name) + "!" + cells + (placed ? "" : " misplaced"));
      }
    }
    return marks;
  }

  OfficeConnection connection;
  Reference<css::sheet::XSpreadsheetDocument> document;
};

SheetHands::SheetHands(const OfficeAddress& office, const std::string& book)
    : objects_(std::make_unique<Objects>(office, book)) {}

SheetHands::~SheetHands() = default;

void SheetHands::insertRows(const std::string& sheet, int row, int count) {
  objects_->rows(sheet)->insertByIndex(row - 1, count);
}

void SheetHands::deleteRows(const std::string& sheet, int row, int count) {
  objects_->rows(sheet)->removeByIndex(row - 1, count);
}

void SheetHands::insertColumns(const std::string& sheet, int column, int count) {
  objects_->columns(sheet)->insertByIndex(column - 1, count);
}

void SheetHands::deleteColumns(const std::string& sheet, int column, int count) {
  objects_->columns(sheet)->removeByIndex(column - 1, count);
}

void SheetHands::showRow(const std::string& sheet, int row, bool shown) {
  setProperty(objects_->rows(sheet)->getByIndex(row - 1).get<Reference<css::uno::XInterface>>(),
              "IsVisible", shown);
}

void SheetHands::showColumn(const std::string& sheet, int column, bool shown) {
  setProperty(
      objects_->columns(sheet)->getByIndex(column - 1).get<Reference<css::uno::XInterface>>(),
      "IsVisible", shown);
}

void SheetHands::setRowHeight(const std::string& sheet, int row, int height) {
  setProperty(objects_->rows(sheet)->getByIndex(row - 1).get<Reference<css::uno::XInterface>>(),
              "Height", sal_Int32{height});
}

void SheetHands::setColumnWidth(const std::string& sheet, int column, int width) {
  setProperty(
      objects_->columns(sheet)->getByIndex(column - 1).get<Reference<css::uno::XInterface>>(),
      "Width", sal_Int32{width});
}

void SheetHands::moveCells(const std::string& sheet, const std::string& from,
                           const std::string& to) {
  const auto place = objects_->sheet(sheet);
  const auto addressOf = [&](const std::string& cells) {
    return Reference<css::sheet::XCellRangeAddressable>(place->getCellRangeByName(toUno(cells)),
                                                        UNO_QUERY_THROW)
        ->getRangeAddress();
  };
  const auto target = addressOf(to);
  Reference<css::sheet::XCellRangeMovement>(place, UNO_QUERY_THROW)
      ->moveRange({target.Sheet, target.StartColumn, target.StartRow}, addressOf(from));
}

void SheetHands::renameSheet(const std::string& sheet, const std::string& name) {
  Reference<css::container::XNamed>(objects_->sheet(sheet), UNO_QUERY_THROW)->setName(toUno(name));
}

void SheetHands::moveSheet(const std::string& sheet, int position) {
  objects_->document->getSheets()->moveByName(toUno(sheet), static_cast<sal_Int16>(position));
}

void SheetHands::copySheet(const std::string& sheet, const std::string& name) {
  objects_->document->getSheets()->copyByName(toUno(sheet), toUno(name), 0);
}

void SheetHands::deleteSheet(const std::string& sheet) {
  objects_->document->getSheets()->removeByName(toUno(sheet));
}

void SheetHands::enter(const std::string& sheet, const std::string& cell,
                       const std::string& formula) {
  objects_->sheet(sheet)
      ->getCellRangeByName(toUno(cell))
      ->getCellByPosition(0, 0)
      ->setFormula(toUno(formula));
}

void SheetHands::undo() {
  objects_->undoManager()->undo();
}

void SheetHands::redo() {
  objects_->undoManager()->redo();
}

void SheetHands::draw(const std::string& sheet, const std::string& cell) {
  const Reference<css::lang::XMultiServiceFactory> factory(objects_->document, UNO_QUERY_THROW);
  const Reference<css::drawing::XShape> shape(
      factory->createInstance("com.sun.star.drawing.RectangleShape"), UNO_QUERY_THROW);
  shape->setSize({2000, 1000});
  const auto place = objects_->sheet(sheet);
  const auto anchor = place->getCellRangeByName(toUno(cell));
  drawPageOf(place)->add(shape);
  shape->setPosition(property<css::awt::Point>(anchor, "Position"));
  setProperty(shape, "Anchor",
              Reference<css::table::XCell>(anchor->getCellByPosition(0, 0), UNO_QUERY_THROW));
}

int SheetHands::topOfDrawing(const std::string& sheet) {
  return Reference<css::drawing::XShape>(drawPageOf(objects_->sheet(sheet))->getByIndex(0),
                                         UNO_QUERY_THROW)
      ->getPosition()
      .Y;
}

void SheetHands::addChart(const std::string& sheet, const std::string& otherSheet,
                          const std::string& cells) {
  const Reference<css::sheet::XCellRangeAddressable> range(
      objects_->sheet(otherSheet)->getCellRangeByName(toUno(cells)), UNO_QUERY_THROW);
  objects_->charts(sheet)->addNewByName("Chart", {1000, 1000, 8000, 6000},
                                        sequenceOf({range->getRangeAddress()}), false, false);
}

int SheetHands::hiddenInChart(const std::string& sheet) {
  const Reference<css::document::XEmbeddedObjectSupplier> chart(
      objects_->charts(sheet)->getByName("Chart"), UNO_QUERY_THROW);
  const Reference<css::chart2::XCoordinateSystemContainer> diagram(
      Reference<css::chart2::XChartDocument>(chart->getEmbeddedObject(), UNO_QUERY_THROW)
          ->getFirstDiagram(),
      UNO_QUERY_THROW);
  const Reference<css::chart2::XChartTypeContainer> types(diagram->getCoordinateSystems()[0],
                                                          UNO_QUERY_THROW);
  const Reference<css::chart2::XDataSeriesContainer> series(types->getChartTypes()[0],
                                                            UNO_QUERY_THROW);
  const Reference<css::chart2::data::XDataSource> data(series->getDataSeries()[0], UNO_QUERY_THROW);
  const auto values = data->getDataSequences()[0]->getValues();
  return property<css::uno::Sequence<sal_Int32>>(values, "HiddenValues").getLength();
}

double SheetHands::number(const std::string& sheet, const std::string& cell) {
  return objects_->sheet(sheet)
      ->getCellRangeByName(toUno(cell))
      ->getCellByPosition(0, 0)
      ->getValue();
}

bool SheetHands::isModified() {
  return Reference<css::util::XModifiable>(objects_->document, UNO_QUERY_THROW)->isModified();
}

void SheetHands::setModified(bool modified) {
  Reference<css::util::XModifiable>(objects_->document, UNO_QUERY_THROW)->setModified(modified);
}

bool SheetHands::save() {
  return objects_->stored([](const auto& document) { document->store(); });
}

bool SheetHands::saveAs(const std::filesystem::path& file) {
  return objects_->stored([&](const auto& document) {
    const rtl::OUString filter = rtl::OUString::createFromAscii(filters.at(file.extension()));
    document->storeAsURL(toUno(fileUrl(file)), sequenceOf({argument("FilterName", filter)}));
  });
}

bool SheetHands::saveCopy(const std::filesystem::path& file) {
  return objects_->stored([&](const auto& document) {
    const rtl::OUString filter = rtl::OUString::createFromAscii(filters.at(file.extension()));
    document->storeToURL(toUno(fileUrl(file)), sequenceOf({argument("FilterName", filter)}));
  });
}

bool SheetHands::saveForRecovery(const std::filesystem::path& file) {
  return objects_->stored([&](const auto&) {
    const rtl::OUString filter = rtl::OUString::createFromAscii(filters.at(file.extension()));
    Reference<css::document::XDocumentRecovery>(objects_->document, UNO_QUERY_THROW)
        ->storeToRecoveryFile(toUno(fileUrl(file)), sequenceOf({argument("FilterName", filter)}));
  });
}

// Marks come and go meanwhile.
std::vector<std::string> SheetHands::marks() {
  for (int tries = 100;; --tries) {
    try {
      return objects_->marks();
    } catch (const css::uno::Exception& failure) {
      if (tries == 0) throw std::runtime_error(toText(failure.Message));
    }
  }
}

}  // namespace quorin::host::calc
