// The commands that the object model understands, one function each: an event in, its result out,
// nothing for a command without one. Failures are EventError, or SpreadsheetError from below.
#pragma once

#include <optional>

#include "host/model/Session.h"
#include "kit/value/AppleEvent.h"

namespace quorin::host {

using CommandResult = std::optional<AppleEventDescriptor>;

// Standard suite.
CommandResult getCommand(Session& session, const AppleEvent& event);
CommandResult setCommand(Session& session, const AppleEvent& event);
CommandResult countCommand(Session& session, const AppleEvent& event);
CommandResult existsCommand(Session& session, const AppleEvent& event);

CommandResult makeCommand(Session& session, const AppleEvent& event);
CommandResult deleteCommand(Session& session, const AppleEvent& event);
CommandResult closeCommand(Session& session, const AppleEvent& event);

// Format conditions.
CommandResult modifyAppliesToRangeCommand(Session& session, const AppleEvent& event);
CommandResult setFirstPriorityCommand(Session& session, const AppleEvent& event);

// What moves the selection.
CommandResult selectCommand(Session& session, const AppleEvent& event);
CommandResult activateCommand(Session& session, const AppleEvent& event);
CommandResult activateObjectCommand(Session& session, const AppleEvent& event);
CommandResult goToCommand(Session& session, const AppleEvent& event);

// Ranges.
CommandResult unionCommand(Session& session, const AppleEvent& event);
CommandResult getAddressCommand(Session& session, const AppleEvent& event);
CommandResult specialCellsCommand(Session& session, const AppleEvent& event);

CommandResult evaluateCommand(Session& session, const AppleEvent& event);

// The direct parameter, or else the subject: the target of the tell. -1715 when there is neither.
const AppleEventDescriptor& directObject(const AppleEvent& event);

// A flag's value; what is absent or no boolean is `otherwise`.
bool flag(const AppleEvent& event, FourCharCode keyword, bool otherwise);

}  // namespace quorin::host
