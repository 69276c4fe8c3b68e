// The classes `format condition` and `interior`, the latter as a condition's fill.
#include <array>

#include "host/model/Answers.h"
#include "host/model/Codes.h"
#include "host/model/ObjectClass.h"
#include "kit/value/EventErrors.h"
#include "kit/value/WholeNumber.h"

namespace quorin::host {
namespace {

using Descriptor = AppleEventDescriptor;
using Property = PropertyEntry<ConditionObject>;

// Excel numbers its types from 1 on, with gaps.
constexpr FourCharCode typeCode(ConditionKind kind) {
  constexpr std::array<FourCharCode, 14> numbers = {1, 2, 3, 4, 5, 6, 7, 9, 10, 11, 12, 13, 16, 17};
  return codes::cellValue - 1 + numbers.at(static_cast<std::size_t>(kind));
}

Resolved formula1(Session&, const ConditionObject& object) {
  if (object.condition.formula.empty())
    throw EventError(eventErrors::noSuchObject, specifierOf(Object(object)));
  return Descriptor::text(object.condition.formula);
}

void setPriority(Session& session, const ConditionObject& object, const Descriptor& value) {
  const auto priority = value.integerValue();
  if (!priority || *priority < 1 || *priority > 1'000'000)
    throw EventError(eventErrors::badParameter, specifierOf(Object(object)));
  session.spreadsheet.setConditionPriority(object.range.sheet, object.condition.id,
                                           static_cast<int>(*priority));
}

const std::array properties = {
    Property{codes::conditionType,
             [](Session&, const ConditionObject& object) -> Resolved {
               return Descriptor::enumerator(typeCode(object.condition.kind));
             }},
    Property{codes::formula1, formula1},
    Property{codes::conditionPriority,
             [](Session&, const ConditionObject& object) -> Resolved {
               return Descriptor::integer(object.condition.priority);
             },
             setPriority},
    Property{codes::stopIfTrue,
             [](Session&, const ConditionObject& object) -> Resolved {
               return Descriptor::boolean(object.condition.stopIfTrue);
             }},
    Property{codes::appliesTo,
             [](Session&, const ConditionObject& object) -> Resolved {
               return Object(RangeObject{{object.range.sheet, object.condition.areas}});
             }},
    Property{codes::interiorObject,
             [](Session&, const ConditionObject& object) -> Resolved {
               return Object(InteriorObject{object});
             }},
};

Resolved color(Session&, const InteriorObject& object) {
  const auto& fill = object.condition.condition.fill;
  if (!fill) return Descriptor::missingValue();
  return Descriptor::list({Descriptor::integer(fill->red), Descriptor::integer(fill->green),
                           Descriptor::integer(fill->blue)});
}

// Three numbers from 0 to 255, not the 65535 of AppleScript's own colours.
void setColor(Session& session, const InteriorObject& object, const Descriptor& value) {
  std::array<int, 3> parts{};
  if (value.type() != codes::list || value.items().size() != parts.size())
    throw EventError(eventErrors::notModifiable, specifierOf(Object(object)));
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const auto part = value.items()[i].integerValue();
    if (!part || !isColourPart(*part))
      throw EventError(eventErrors::notModifiable, specifierOf(Object(object)));
    parts.at(i) = static_cast<int>(*part);
  }
  session.spreadsheet.setConditionFill(object.condition.range.sheet, object.condition.condition.id,
                                       Color{parts[0], parts[1], parts[2]});
}

Resolved colorIndex(Session&, const InteriorObject& object) {
  if (object.condition.condition.fill) return Descriptor::missingValue();
  return Descriptor::enumerator(codes::colorIndexNone);
}

void setColorIndex(Session& session, const InteriorObject& object, const Descriptor& value) {
  if (value.codeValue() != codes::colorIndexNone)
    throw EventError(eventErrors::notModifiable, specifierOf(Object(object)));
  session.spreadsheet.setConditionFill(object.condition.range.sheet, object.condition.condition.id,
                                       std::nullopt);
}

const std::array interiorProperties = {
    PropertyEntry<InteriorObject>{codes::color, color, setColor},
    PropertyEntry<InteriorObject>{codes::colorIndex, colorIndex, setColorIndex},
};

}  // namespace

const ClassTable<ConditionObject>& classTable(const ConditionObject&) {
  static const ClassTable<ConditionObject> table{codes::formatCondition, properties, {}};
  return table;
}

const ClassTable<InteriorObject>& classTable(const InteriorObject&) {
  static const ClassTable<InteriorObject> table{codes::interior, interiorProperties, {}};
  return table;
}

}  // namespace quorin::host
