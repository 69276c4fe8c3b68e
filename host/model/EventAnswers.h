// Answers Apple events as Excel does, over a spreadsheet. Used on the call thread; never throws:
// every failure is an error in the reply.
#pragma once

#include "host/model/Session.h"
#include "kit/value/AppleEvent.h"

namespace quorin::host {

// -1708 for an event that the object model does not know.
AppleEventReply answerEvent(Session& session, const AppleEvent& event);

}  // namespace quorin::host
