// evaluate name.
#include "host/model/Answers.h"
#include "host/model/Codes.h"
#include "host/model/Commands.h"
#include "host/model/Resolver.h"
#include "kit/value/EventErrors.h"

namespace quorin::host {
namespace {

using Descriptor = AppleEventDescriptor;

// The sheet that the tell addresses, or the active one.
SheetRef contextOf(Session& session, const AppleEvent& event) {
  if (const Descriptor* const subject = event.attribute(keySubject)) {
    const Resolved what = resolve(session, *subject).what;
    const auto* const object = std::get_if<Object>(&what);
    const auto* const sheet = object == nullptr ? nullptr : std::get_if<SheetObject>(object);
    if (sheet != nullptr) return sheet->sheet;
    const auto* const book = object == nullptr ? nullptr : std::get_if<WorkbookObject>(object);
    if (book != nullptr) return session.spreadsheet.activeSheetOf(book->name);
  }
  const auto active = session.spreadsheet.activeSheet();
  if (!active) throw EventError(eventErrors::noSuchObject);
  return *active;
}

struct EvaluationAnswer {
  // Excel itself answers missing value for an error, which a caller cannot tell from no answer.
  // The event fails instead, so that asking for a value never yields something else: -1708 is what
  // callers take for "this expression has no value" and look for the error's name on.
  Descriptor operator()(CellValue&& value) const {
    if (std::holds_alternative<CellError>(value)) throw EventError(eventErrors::notUnderstood);
    return valueAnswer(std::move(value));
  }
  Descriptor operator()(Grid<CellValue>&& grid) const {
    if (grid.cells.size() == 1) return (*this)(std::move(grid.cells.front()));
    return valueAnswer(std::move(grid));
  }
  Descriptor operator()(RangeRef&& range) const { return specifierOf(range); }
};

}  // namespace

CommandResult evaluateCommand(Session& session, const AppleEvent& event) {
  const Descriptor* const given = event.parameter(codes::name);
  if (given == nullptr) throw EventError(eventErrors::missingParameter);
  const auto text = given->stringValue();
  if (!text) throw EventError(eventErrors::badParameter, *given);
  std::string_view expression = *text;
  if (expression.starts_with('=')) expression.remove_prefix(1);
  return std::visit(EvaluationAnswer(), session.spreadsheet.evaluate(std::string(expression),
                                                                     contextOf(session, event)));
}

}  // namespace quorin::host
