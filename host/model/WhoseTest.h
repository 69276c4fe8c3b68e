// `whose`: which elements a test of an object specifier picks.
#pragma once

#include "host/model/Object.h"
#include "host/model/Session.h"

namespace quorin::host {

// The objects that pass, in their order. Text compares without regard to case, and what cannot be
// compared does not pass. EventError -1726 for a test that is none.
Objects thoseThatPass(Session& session, Objects objects, const AppleEventDescriptor& test);

}  // namespace quorin::host
