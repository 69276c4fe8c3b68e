// get, set, count and exists.
#include "host/Address.h"
#include "host/model/Answers.h"
#include "host/model/Codes.h"
#include "host/model/Commands.h"
#include "host/model/Resolver.h"
#include "kit/value/EventErrors.h"

namespace quorin::host {
namespace {

using Descriptor = AppleEventDescriptor;

Descriptor specifiersOf(Session& session, const Resolved& found) {
  Descriptor::Items items;
  for (const Object& object : objectsOf(session, found)) items.push_back(specifierOf(object));
  if (items.empty()) return Descriptor::missingValue();
  return Descriptor::list(std::move(items));
}

long long countOfObject(const Object& object, const Descriptor& given) {
  if (const auto* const range = std::get_if<RangeObject>(&object))
    return cellCount(range->range.areas);
  throw EventError(eventErrors::notUnderstood, given);
}

}  // namespace

const Descriptor& directObject(const AppleEvent& event) {
  const Descriptor* direct = event.parameter(keyDirectObject);
  if (direct == nullptr) direct = event.attribute(keySubject);
  if (direct == nullptr) throw EventError(eventErrors::missingParameter);
  return *direct;
}

bool flag(const AppleEvent& event, FourCharCode keyword, bool otherwise) {
  const Descriptor* const given = event.parameter(keyword);
  return given == nullptr ? otherwise : given->booleanValue().value_or(otherwise);
}

CommandResult getCommand(Session& session, const AppleEvent& event) {
  const Descriptor& given = directObject(event);
  Resolution found = resolve(session, given);
  if (auto* const value = std::get_if<Descriptor>(&found.what)) return std::move(*value);
  if (const auto* const object = std::get_if<Object>(&found.what))
    return found.dynamic ? given : specifierOf(*object);
  return specifiersOf(session, found.what);
}

CommandResult setCommand(Session& session, const AppleEvent& event) {
  const Descriptor* const value = event.parameter(codes::setTo);
  if (value == nullptr) throw EventError(eventErrors::missingParameter);
  setProperty(session, directObject(event), *value);
  return std::nullopt;
}

CommandResult countCommand(Session& session, const AppleEvent& event) {
  const Descriptor& given = directObject(event);
  const Resolved what = resolve(session, given).what;
  const Descriptor* const each = event.parameter(codes::countEach);
  if (each != nullptr && each->codeValue()) {
    const auto* const owner = std::get_if<Object>(&what);
    if (owner == nullptr) throw EventError(eventErrors::notUnderstood, given);
    return countAnswer(countOf(session, *owner, *each->codeValue()));
  }
  if (const auto* const elements = std::get_if<Elements>(&what))
    return countAnswer(elements->last - elements->first + 1);
  if (const auto* const objects = std::get_if<Objects>(&what))
    return countAnswer(std::ssize(*objects));
  if (const auto* const object = std::get_if<Object>(&what))
    return countAnswer(countOfObject(*object, given));
  const Descriptor& value = std::get<Descriptor>(what);
  if (value.type() == codes::list) return countAnswer(std::ssize(value.items()));
  if (value.isMissingValue()) return countAnswer(0);
  throw EventError(eventErrors::notUnderstood, given);
}

CommandResult existsCommand(Session& session, const AppleEvent& event) {
  try {
    const Resolved what = resolve(session, directObject(event)).what;
    if (const auto* const elements = std::get_if<Elements>(&what))
      return Descriptor::boolean(elements->last >= elements->first);
    if (const auto* const objects = std::get_if<Objects>(&what))
      return Descriptor::boolean(!objects->empty());
    const auto* const value = std::get_if<Descriptor>(&what);
    return Descriptor::boolean(value == nullptr || !value->isMissingValue());
  } catch (const EventError& error) {
    if (error.number() != eventErrors::noSuchObject) throw;
    return Descriptor::boolean(false);
  }
}

}  // namespace quorin::host
