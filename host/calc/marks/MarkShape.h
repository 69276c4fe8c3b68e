// MarkShape: a mark as a shape of its own on the sheet's internal layer: half transparent over the
// cells, out of reach of the mouse, not printed. Call thread.
//
// A shape that is made changes nothing in the workbook. Putting it on the page, taking it off and
// putting another in its place are QuietChanges.
#pragma once

#include <com/sun/star/drawing/PointSequenceSequence.hpp>
#include <com/sun/star/drawing/XDrawPage.hpp>
#include <com/sun/star/drawing/XShape.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/sheet/XSpreadsheet.hpp>

#include "host/calc/marks/MarkText.h"
#include "host/calc/workbook/CallLimits.h"

namespace quorin::host::calc {

// A shape on a page.
struct NamedShape {
  std::string name;
  css::uno::Reference<css::drawing::XShape> shape;
};
// Those that have a name. The user and the marks keeper may take some away meanwhile: then the page
// is read again.
std::vector<NamedShape> namedShapes(const css::uno::Reference<css::drawing::XDrawPage>& page,
                                    const CallLimits& limits = CallLimits());

struct PlacedMark : NumberedMark {
  css::uno::Reference<css::drawing::XShape> shape;
};

// Where marks lie: the sheet's page of drawings. A sheet that the office has made without a name
// can lack one; for who looks through all sheets such a one has none.
css::uno::Reference<css::drawing::XDrawPage> drawPageIfAny(
    const css::uno::Reference<css::sheet::XSpreadsheet>& sheet);
css::uno::Reference<css::drawing::XDrawPage> drawPageOf(
    const css::uno::Reference<css::sheet::XSpreadsheet>& sheet);

// The marks of a page by their numbers, also those that came out of a file as another kind of
// shape.
std::vector<PlacedMark> readMarks(const css::uno::Reference<css::drawing::XDrawPage>& page,
                                  const CallLimits& limits = CallLimits());

// The outlines of the areas on their sheet, which must not overlap. What is hidden has none, and a
// part of a merged cell stands for all of it.
css::drawing::PointSequenceSequence outlinesOf(
    const css::uno::Reference<css::sheet::XSpreadsheet>& sheet, const std::vector<Area>& areas);

// A shape that is on no page yet.
css::uno::Reference<css::drawing::XShape> makeMarkShape(
    const css::uno::Reference<css::frame::XModel>& document, const NumberedMark& mark,
    const css::drawing::PointSequenceSequence& outlines);

// One of that name that is never seen, on no page yet.
css::uno::Reference<css::drawing::XShape> makeEmptyShape(
    const css::uno::Reference<css::frame::XModel>& document, const std::string& name);

// True if it is of the kind that is made here; one that came out of a file may not be.
bool isMarkShape(const css::uno::Reference<css::drawing::XShape>& shape);

}  // namespace quorin::host::calc
