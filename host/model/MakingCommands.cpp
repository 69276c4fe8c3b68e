// make, delete, close, modify applies to range and set first priority.
#include "host/model/Codes.h"
#include "host/model/Commands.h"
#include "host/model/Resolver.h"
#include "kit/value/EventErrors.h"

namespace quorin::host {
namespace {

using Descriptor = AppleEventDescriptor;

const Descriptor& required(const AppleEvent& event, FourCharCode keyword) {
  const Descriptor* const given = event.parameter(keyword);
  if (given == nullptr) throw EventError(eventErrors::missingParameter);
  return *given;
}

// Where `at` points to: an object, or a place before, behind or inside it.
const Descriptor& placeOf(const AppleEvent& event) {
  const Descriptor* place = event.parameter(codes::makeAt);
  if (place == nullptr) place = event.attribute(keySubject);
  if (place == nullptr) throw EventError(eventErrors::missingParameter);
  const Descriptor* const inside =
      place->type() == codes::insertion ? place->field(codes::insertionObject) : nullptr;
  return inside == nullptr ? *place : *inside;
}

// Only conditions on a formula are made. Excel takes what it is told of the look at birth and
// forgets it, so nothing but the type and the formula is looked at.
Descriptor makeCondition(Session& session, const AppleEvent& event) {
  const Object target = resolveObject(session, placeOf(event));
  const auto* const range = std::get_if<RangeObject>(&target);
  if (range == nullptr) throw EventError(eventErrors::badContainer, placeOf(event));
  const Descriptor& properties = required(event, codes::makeWithProperties);
  const Descriptor* const type = properties.field(codes::conditionType);
  const Descriptor* const formula = properties.field(codes::formula1);
  const auto text = formula == nullptr ? std::nullopt : formula->stringValue();
  if (type == nullptr || type->codeValue() != codes::expression || !text)
    throw EventError(eventErrors::badParameter, properties);
  const std::string id = session.spreadsheet.addFormatCondition(range->range, std::string(*text));
  const auto all = session.spreadsheet.formatConditions(range->range);
  for (std::size_t place = 0; place < all.size(); ++place)
    if (all[place].id == id)
      return specifierOf(ConditionObject{range->range, static_cast<int>(place) + 1, all[place]});
  throw EventError(eventErrors::noSuchObject);
}

ConditionObject conditionIn(Session& session, const Descriptor& given) {
  Object object = resolveObject(session, given);
  auto* const condition = std::get_if<ConditionObject>(&object);
  if (condition == nullptr) throw EventError(eventErrors::notUnderstood, given);
  return std::move(*condition);
}

}  // namespace

CommandResult makeCommand(Session& session, const AppleEvent& event) {
  const auto wanted = required(event, codes::makeNew).codeValue();
  if (wanted == codes::workbook)
    return specifierOf(WorkbookObject{session.spreadsheet.makeWorkbook()});
  if (wanted == codes::formatCondition) return makeCondition(session, event);
  throw EventError(eventErrors::notUnderstood);
}

// Conditions alone. Several are deleted from the last one on.
CommandResult deleteCommand(Session& session, const AppleEvent& event) {
  const Descriptor& given = directObject(event);
  const Objects objects = objectsOf(session, resolve(session, given).what);
  if (objects.empty()) throw EventError(eventErrors::noSuchObject, given);
  for (auto object = objects.rbegin(); object != objects.rend(); ++object) {
    const auto* const condition = std::get_if<ConditionObject>(&*object);
    if (condition == nullptr) throw EventError(eventErrors::notUnderstood, given);
    session.spreadsheet.deleteCondition(condition->range, condition->condition.id);
  }
  return std::nullopt;
}

// Unsaved and without asking, which needs `saving no`. Anything else would put a question to the
// user, and is refused.
CommandResult closeCommand(Session& session, const AppleEvent& event) {
  const Descriptor& given = directObject(event);
  const Object object = resolveObject(session, given);
  const auto* const book = std::get_if<WorkbookObject>(&object);
  if (book == nullptr) throw EventError(eventErrors::notUnderstood, given);
  const Descriptor* const saving = event.parameter(codes::closeSaving);
  if (saving == nullptr || saving->codeValue() != codes::no)
    throw EventError(eventErrors::badParameter, given);
  session.toldBook.clear();
  session.spreadsheet.closeWorkbook(book->name);
  return std::nullopt;
}

CommandResult modifyAppliesToRangeCommand(Session& session, const AppleEvent& event) {
  const Descriptor& given = directObject(event);
  const ConditionObject condition = conditionIn(session, given);
  const RangeRef range = resolveRange(session, required(event, codes::modifyRange));
  if (range.sheet != condition.range.sheet) throw EventError(eventErrors::badParameter, given);
  session.spreadsheet.setConditionRange(range, condition.condition.id);
  return std::nullopt;
}

CommandResult setFirstPriorityCommand(Session& session, const AppleEvent& event) {
  const ConditionObject condition = conditionIn(session, directObject(event));
  session.spreadsheet.setConditionPriority(condition.range.sheet, condition.condition.id, 1);
  return std::nullopt;
}

}  // namespace quorin::host
