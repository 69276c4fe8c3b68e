// select, activate, activate object and goto.
#include "host/model/Codes.h"
#include "host/model/Commands.h"
#include "host/model/Resolver.h"
#include "kit/value/EventErrors.h"

namespace quorin::host {
namespace {

using Descriptor = AppleEventDescriptor;

// Sheets, workbooks and windows come forward; what a range does is the caller's to say.
template <typename F>
void bringForward(Session& session, const Descriptor& given, F withRange) {
  if (given.stringValue()) return withRange(resolveRange(session, given));
  const Resolved what = resolve(session, given).what;
  const auto* const object = std::get_if<Object>(&what);
  if (object == nullptr) return withRange(resolveRange(session, given));
  if (const auto* const sheet = std::get_if<SheetObject>(object))
    return session.spreadsheet.activateSheet(sheet->sheet);
  if (const auto* const book = std::get_if<WorkbookObject>(object))
    return session.spreadsheet.activateWorkbook(book->name);
  if (const auto* const range = std::get_if<RangeObject>(object)) return withRange(range->range);
  throw EventError(eventErrors::notUnderstood, given);
}

}  // namespace

CommandResult selectCommand(Session& session, const AppleEvent& event) {
  bringForward(session, directObject(event),
               [&](const RangeRef& range) { session.spreadsheet.select(range); });
  return std::nullopt;
}

CommandResult activateCommand(Session& session, const AppleEvent&) {
  session.spreadsheet.activate();
  return std::nullopt;
}

CommandResult activateObjectCommand(Session& session, const AppleEvent& event) {
  bringForward(session, directObject(event),
               [&](const RangeRef& range) { session.spreadsheet.activateCell(range); });
  return std::nullopt;
}

// Without a reference Excel goes back to where it was before; that is not kept here.
CommandResult goToCommand(Session& session, const AppleEvent& event) {
  const Descriptor* const reference = event.parameter(codes::goToReference);
  if (reference == nullptr) throw EventError(eventErrors::missingParameter);
  const RangeRef range = resolveRange(session, *reference);
  session.spreadsheet.goTo(range);
  if (flag(event, codes::goToScroll, false)) session.spreadsheet.scrollTo(range);
  return std::nullopt;
}

}  // namespace quorin::host
