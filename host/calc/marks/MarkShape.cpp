#include "host/calc/marks/MarkShape.h"

#include <algorithm>
#include <com/sun/star/awt/Point.hpp>
#include <com/sun/star/awt/Size.hpp>
#include <com/sun/star/beans/XMultiPropertySet.hpp>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/drawing/FillStyle.hpp>
#include <com/sun/star/drawing/LineStyle.hpp>
#include <com/sun/star/drawing/XDrawPageSupplier.hpp>
#include <com/sun/star/lang/IndexOutOfBoundsException.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/lang/XServiceInfo.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XSheetCellCursor.hpp>
#include <com/sun/star/util/XMergeable.hpp>
#include <limits>
#include <map>
#include <string>
#include <utility>

#include "host/calc/uno/Answered.h"
#include "host/calc/uno/Arguments.h"
#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"

namespace quorin::host::calc {
namespace {

using css::awt::Point;
using css::awt::Size;
using css::beans::XMultiPropertySet;
using css::drawing::PointSequenceSequence;
using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

constexpr const char* shapeService = "com.sun.star.drawing.PolyPolygonShape";
constexpr sal_Int16 internalLayer = 2;  // whatever lies there cannot be clicked
constexpr sal_Int16 transparency = 50;  // per cent

// Sorted by name, as some objects want them.
using Properties = std::map<rtl::OUString, Any>;

void set(const Reference<css::uno::XInterface>& object, const Properties& properties) {
  const auto count = static_cast<sal_Int32>(properties.size());
  css::uno::Sequence<rtl::OUString> names(count);
  css::uno::Sequence<Any> values(count);
  auto* name = names.getArray();
  auto* value = values.getArray();
  for (const auto& [key, content] : properties) {
    *name++ = key;
    *value++ = content;
  }
  Reference<XMultiPropertySet>(object, UNO_QUERY_THROW)->setPropertyValues(names, values);
}

Reference<css::drawing::XShape> newShape(const Reference<css::frame::XModel>& document) {
  return {Reference<css::lang::XMultiServiceFactory>(document, UNO_QUERY_THROW)
              ->createInstance(rtl::OUString::createFromAscii(shapeService)),
          UNO_QUERY_THROW};
}

sal_Int32 colorNumber(const Color& color) {
  return color.red << 16 | color.green << 8 | color.blue;
}

// The cells with all of the merged ones that they touch.
Reference<css::table::XCellRange> withMerged(const Reference<css::sheet::XSpreadsheet>& sheet,
                                             const Reference<css::table::XCellRange>& cells) {
  const auto cursor = answered(
      sheet->createCursorByRange(Reference<css::sheet::XSheetCellRange>(cells, UNO_QUERY_THROW)));
  cursor->collapseToMergedArea();
  return {cursor, UNO_QUERY_THROW};
}

struct Box {
  Point position;
  Size size;
};

Box boxOf(const Reference<css::table::XCellRange>& cells) {
  const css::uno::Sequence<Any> values =
      Reference<XMultiPropertySet>(cells, UNO_QUERY_THROW)
          ->getPropertyValues(sequenceOf<rtl::OUString>({"Position", "Size"}));
  Box box;
  values[0] >>= box.position;
  values[1] >>= box.size;
  return box;
}

Box boxAround(const PointSequenceSequence& outlines) {
  constexpr auto most = std::numeric_limits<sal_Int32>::max();
  Point first(most, most), last(-most, -most);
  for (const auto& outline : outlines) {
    for (const Point& corner : outline) {
      first = {std::min(first.X, corner.X), std::min(first.Y, corner.Y)};
      last = {std::max(last.X, corner.X), std::max(last.Y, corner.Y)};
    }
  }
  return {first, {last.X - first.X, last.Y - first.Y}};
}

}  // namespace

// UNO calls this interface deprecated, yet a sheet has no other.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
Reference<css::drawing::XDrawPage> drawPageIfAny(const Reference<css::sheet::XSpreadsheet>& sheet) {
  return Reference<css::drawing::XDrawPageSupplier>(sheet, UNO_QUERY_THROW)->getDrawPage();
}
#pragma GCC diagnostic pop

Reference<css::drawing::XDrawPage> drawPageOf(const Reference<css::sheet::XSpreadsheet>& sheet) {
  return answered(drawPageIfAny(sheet));
}

namespace {

// An object that the office made while its predecessor was being unmade has lost its shape, and
// with it name and place. Several may have been on their way.
bool hasLostItsShape(const Reference<css::container::XNamed>& shape) {
  return !Reference<css::beans::XPropertySet>(shape, UNO_QUERY_THROW)
              ->getPropertyValue("ZOrder")
              .hasValue();
}

constexpr int mostTries = 20;

// Throws css::lang::IndexOutOfBoundsException when one is taken away meanwhile.
std::vector<NamedShape> shapesAtOnce(const Reference<css::drawing::XDrawPage>& page,
                                     const CallLimits& limits) {
  std::vector<NamedShape> shapes;
  const sal_Int32 count = page->getCount();
  for (sal_Int32 i = 0; i < count; ++i) {
    limits.check();
    Reference<css::container::XNamed> shape(page->getByIndex(i), UNO_QUERY_THROW);
    rtl::OUString name = shape->getName();
    for (int tries = 1; name.isEmpty() && tries < mostTries && hasLostItsShape(shape); ++tries) {
      shape.set(page->getByIndex(i), UNO_QUERY_THROW);
      name = shape->getName();
    }
    if (!name.isEmpty()) shapes.push_back({toText(name), {shape, UNO_QUERY_THROW}});
  }
  return shapes;
}

}  // namespace

std::vector<NamedShape> namedShapes(const Reference<css::drawing::XDrawPage>& page,
                                    const CallLimits& limits) {
  for (int tries = 1;; ++tries) {
    try {
      return shapesAtOnce(page, limits);
    } catch (const css::lang::IndexOutOfBoundsException&) {
      if (tries == mostTries) throw;
    }
  }
}

std::vector<PlacedMark> readMarks(const Reference<css::drawing::XDrawPage>& page,
                                  const CallLimits& limits) {
  std::vector<PlacedMark> marks;
  for (NamedShape& each : namedShapes(page, limits))
    if (auto mark = parseMarkName(each.name))
      marks.push_back({std::move(*mark), std::move(each.shape)});
  std::stable_sort(marks.begin(), marks.end(),
                   [](const PlacedMark& a, const PlacedMark& b) { return a.number < b.number; });
  return marks;
}

PointSequenceSequence outlinesOf(const Reference<css::sheet::XSpreadsheet>& sheet,
                                 const std::vector<Area>& areas) {
  const bool merged = Reference<css::util::XMergeable>(sheet, UNO_QUERY_THROW)->getIsMerged();
  std::vector<css::uno::Sequence<Point>> outlines;
  for (const Area& area : areas) {
    Reference<css::table::XCellRange> cells = cellsOf(sheet, area);
    if (merged) cells = withMerged(sheet, cells);
    const Box box = boxOf(cells);
    // A size counts both of its edges, so that the next cell begins one less away.
    const auto [left, top] = box.position;
    const sal_Int32 right = left + box.size.Width - 1, bottom = top + box.size.Height - 1;
    if (right <= left || bottom <= top) continue;
    outlines.push_back(sequenceOf<Point>(
        {{left, top}, {right, top}, {right, bottom}, {left, bottom}, {left, top}}));
  }
  return {outlines.data(), static_cast<sal_Int32>(outlines.size())};
}

Reference<css::drawing::XShape> makeMarkShape(const Reference<css::frame::XModel>& document,
                                              const NumberedMark& mark,
                                              const PointSequenceSequence& outlines) {
  Reference<css::drawing::XShape> shape = newShape(document);
  const std::optional<Color>& fill = mark.mark.fill;
  const bool drawn = fill && outlines.hasElements();
  Properties properties{
      {"FillStyle", Any(drawn ? css::drawing::FillStyle_SOLID : css::drawing::FillStyle_NONE)},
      {"FillTransparence", Any(transparency)},
      {"LayerID", Any(internalLayer)},
      {"LineStyle", Any(css::drawing::LineStyle_NONE)},
      {"Name", Any(toUno(markName(mark)))},
      {"Printable", Any(false)},
  };
  if (fill) properties["FillColor"] <<= colorNumber(*fill);
  if (outlines.hasElements()) properties["PolyPolygon"] <<= outlines;
  set(shape, properties);
  // A shape gets its own place and size only on a page; what it was given before is what counts.
  if (!outlines.hasElements()) return shape;
  const Box box = boxAround(outlines);
  shape->setPosition(box.position);
  shape->setSize(box.size);
  return shape;
}

Reference<css::drawing::XShape> makeEmptyShape(const Reference<css::frame::XModel>& document,
                                               const std::string& name) {
  Reference<css::drawing::XShape> shape = newShape(document);
  set(shape, {{"FillStyle", Any(css::drawing::FillStyle_NONE)},
              {"LayerID", Any(internalLayer)},
              {"LineStyle", Any(css::drawing::LineStyle_NONE)},
              {"Name", Any(toUno(name))},
              {"Printable", Any(false)}});
  return shape;
}

bool isMarkShape(const Reference<css::drawing::XShape>& shape) {
  return Reference<css::lang::XServiceInfo>(shape, UNO_QUERY_THROW)
      ->supportsService(rtl::OUString::createFromAscii(shapeService));
}

}  // namespace quorin::host::calc
