// `worksheet after worksheet 1`, `row before row 5`: the element next to an object.
#pragma once

#include <optional>

#include "host/model/Object.h"
#include "host/model/Session.h"

namespace quorin::host {

// The element of that class `step` places on, 1 or -1. Nothing at the end of the row, and for
// objects that have no neighbours of that class.
std::optional<Object> neighbour(Session& session, const Object& object, FourCharCode elementClass,
                                int step);

}  // namespace quorin::host
