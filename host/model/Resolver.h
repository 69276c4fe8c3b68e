// From object specifiers to what they mean. A specifier that leads nowhere is EventError -1728 with
// the part that could not be resolved as its offender.
#pragma once

#include <optional>

#include "host/model/Object.h"
#include "host/model/Session.h"

namespace quorin::host {

struct Resolution {
  Resolved what;
  bool dynamic = false;  // the property changes its meaning with what is active
};

// A specifier's meaning; the null descriptor is the application, any other value is itself.
Resolution resolve(Session& session, const AppleEventDescriptor& specifier);

// What an operand of a `whose` test is worth for the element that is being looked at.
AppleEventDescriptor valueFor(Session& session, const AppleEventDescriptor& operand,
                              const Object& examined);

// The one object that a specifier names; -1708 for a value or several of them.
Object resolveObject(Session& session, const AppleEventDescriptor& given);

// The range that a command is given: a specifier of a range, of all cells, rows or columns of one,
// or text to bind on the active sheet. -1708 for anything else.
RangeRef resolveRange(Session& session, const AppleEventDescriptor& given);

// Sets the property that a specifier names, of every element where it names several. -10006 when it
// is read-only or unknown.
void setProperty(Session& session, const AppleEventDescriptor& specifier,
                 const AppleEventDescriptor& value);

// The objects, one by one. -50 when there are more than Excel could list in reasonable time.
Objects objectsOf(Session& session, const Elements& elements);
Objects objectsOf(Session& session, const Resolved& resolved);  // none of a value

// How many elements of a class an object has; -1728 when it has none of that class.
long long countOf(Session& session, const Object& owner, FourCharCode elementClass);

}  // namespace quorin::host
