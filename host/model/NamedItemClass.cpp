// The class `named item`.
#include <array>

#include "host/model/Answers.h"
#include "host/model/Codes.h"
#include "host/model/ObjectClass.h"
#include "host/model/RangeText.h"
#include "kit/value/EventErrors.h"

namespace quorin::host {
namespace {

using Descriptor = AppleEventDescriptor;
using Property = PropertyEntry<NamedItemObject>;

Resolved references(Session&, const NamedItemObject& item) {
  return Descriptor::text(item.name.refersTo);
}

// A name of a constant, of a formula or of what is gone has no range.
Resolved referenceRange(Session& session, const NamedItemObject& item) {
  const SheetRef from = item.name.sheet.empty() ? session.spreadsheet.activeSheetOf(item.book)
                                                : SheetRef{item.book, item.name.sheet};
  std::string_view text = item.name.refersTo;
  if (text.starts_with('=')) text.remove_prefix(1);
  auto range = bindReference(session, from, text);
  if (!range) throw EventError(eventErrors::noSuchObject, specifierOf(Object(item)));
  return Object(RangeObject{std::move(*range)});
}

Resolved entryIndex(Session& session, const NamedItemObject& item) {
  std::int32_t index = 0;
  for (const DefinedName& each : session.spreadsheet.definedNames(item.book)) {
    ++index;
    if (each == item.name) return Descriptor::integer(index);
  }
  throw EventError(eventErrors::noSuchObject, specifierOf(Object(item)));
}

const std::array properties = {
    Property{codes::name,
             [](Session&, const NamedItemObject& item) -> Resolved {
               return Descriptor::text(listedName(item.name));
             }},
    Property{codes::references, references},
    Property{codes::value, references},
    Property{codes::referenceRange, referenceRange},
    Property{codes::visible,
             [](Session&, const NamedItemObject& item) -> Resolved {
               return Descriptor::boolean(item.name.visible);
             }},
    Property{codes::entryIndex, entryIndex},
};

}  // namespace

const ClassTable<NamedItemObject>& classTable(const NamedItemObject&) {
  static const ClassTable<NamedItemObject> table{codes::namedItem, properties, {}};
  return table;
}

}  // namespace quorin::host
